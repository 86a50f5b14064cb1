#include <mirel_fitting/BlasThreads.h>

#include <mirel_fitting/ThreadCount.h>

#include <cblas.h>

namespace {

// Below this order waking the threads takes longer than they save.
constexpr std::size_t smallestThreadedOrder = 500;

} // namespace

BlasThreads::BlasThreads(std::size_t order) : before(openblas_get_num_threads())
{
    openblas_set_num_threads(order < smallestThreadedOrder ? 1 : threadCount());
}

BlasThreads::~BlasThreads()
{
    openblas_set_num_threads(before);
}
