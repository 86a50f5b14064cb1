#include <mirel_fitting/machine/SingleThreadedBlas.h>

#include <cblas.h>

#include <mutex>

namespace {

std::mutex mutex;
int objects = 0;
int previousThreads = 1;

} // namespace

SingleThreadedBlas::SingleThreadedBlas()
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (objects == 0) {
        previousThreads = openblas_get_num_threads();
        openblas_set_num_threads(1);
    }
    ++objects;
}

SingleThreadedBlas::~SingleThreadedBlas()
{
    const std::lock_guard<std::mutex> lock(mutex);
    --objects;
    if (objects == 0) {
        openblas_set_num_threads(previousThreads);
    }
}
