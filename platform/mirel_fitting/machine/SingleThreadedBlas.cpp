#include <mirel_fitting/machine/SingleThreadedBlas.h>

#include <cblas.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstddef>
#include <mutex>
#include <new>
#include <vector>

// Of OpenBLAS, which exports them without declaring them: a buffer of a call, and its return. What
// is returned stays mapped for later calls.
extern "C" void* blas_memory_alloc(int position);
extern "C" void blas_memory_free(void* buffer);

namespace {

std::mutex mutex;
int objects = 0;
int previousThreads = 1;

/** The buffers that OpenBLAS has mapped, as far as they are known. */
int buffers = 0;

bool canMap(std::size_t bytes)
{
    void* const memory =
        mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return memory != MAP_FAILED && munmap(memory, bytes) == 0;
}

/** Has OpenBLAS map buffers for so many calls, or for as many as there is memory for.
 *  @return whether for all. */
bool reserveBuffers(int wanted)
{
    constexpr std::size_t megabyte = std::size_t{1} << 20;
    constexpr std::size_t size = 129 * megabyte;    // a buffer, and the pages around it
    constexpr std::size_t forCases = 64 * megabyte; // rather than for a second thread

    if (wanted <= buffers) {
        return true;
    }
    std::vector<void*> taken;
    taken.reserve(static_cast<std::size_t>(wanted));
    for (int k = 0; k < wanted && (k < buffers || canMap(k == 0 ? size : size + forCases)); ++k) {
        taken.push_back(blas_memory_alloc(0));
    }
    for (void* const buffer : taken) {
        blas_memory_free(buffer);
    }
    buffers = static_cast<int>(taken.size());
    return buffers == wanted;
}

} // namespace

int SingleThreadedBlas::affordableThreads(int wanted)
{
    constexpr int maxReserved = 64; // OpenBLAS has room for 256

    const std::lock_guard<std::mutex> lock(mutex);
    return reserveBuffers(std::min(wanted, maxReserved)) ? wanted : std::max(1, buffers);
}

SingleThreadedBlas::SingleThreadedBlas()
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (!reserveBuffers(1)) {
        throw std::bad_alloc(); // there may be memory later
    }
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
