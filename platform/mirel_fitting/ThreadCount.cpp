#include <mirel_fitting/ThreadCount.h>

#include <algorithm>
#include <atomic>
#include <thread>

namespace {

std::atomic<int> limit{0};

} // namespace

void setThreadCount(int count)
{
    limit = std::max(count, 0);
}

int threadCount()
{
    const int set = limit;
    return set > 0 ? set : std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}
