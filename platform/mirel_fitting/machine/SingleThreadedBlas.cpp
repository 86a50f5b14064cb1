#include <mirel_fitting/machine/SingleThreadedBlas.h>

#include <cblas.h>

#include <mutex>

namespace {

std::mutex mutex;
int living = 0;
int before = 1;

} // namespace

SingleThreadedBlas::SingleThreadedBlas()
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (living == 0) {
        before = openblas_get_num_threads();
        openblas_set_num_threads(1);
    }
    ++living;
}

SingleThreadedBlas::~SingleThreadedBlas()
{
    const std::lock_guard<std::mutex> lock(mutex);
    --living;
    if (living == 0) {
        openblas_set_num_threads(before);
    }
}
