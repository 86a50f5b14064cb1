#include "Interruption.h"
#include "Program.h"

#include <sched.h>
#include <sys/mman.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <new>
#include <string>
#include <vector>

namespace {
cpu_set_t allowedCpus;
bool isOneCpu = false;

/** As runProgram() does, but without allocating. */
[[noreturn]] void refuseForLackOfMemory()
{
    constexpr char message[] = "surrogate: There is not enough memory for this.\n";
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, message, sizeof(message) - 1);
    _exit(1);
}

/**
 * Runs before the libraries initialise themselves. OpenBLAS starts a thread per CPU of the
 * process as it is loaded, each of which maps 128 MB and where it gets none tries again for ever;
 * the program calls it with one thread. Its settings are environment variables, and this is too
 * early to set one: it sees one CPU instead, until main() begins.
 *
 * What the libraries' initialisers throw for lack of memory would end the program with a signal.
 */
void prepareLoading(int, char**, char**)
{
    constexpr std::size_t forInitialisers = std::size_t{24} << 20;
    void* const memory =
        mmap(nullptr, forInitialisers, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        refuseForLackOfMemory();
    }
    munmap(memory, forInitialisers);

    const int cpu = sched_getcpu();
    if (cpu >= 0 && cpu < CPU_SETSIZE &&
        sched_getaffinity(0, sizeof(allowedCpus), &allowedCpus) == 0) {
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(static_cast<std::size_t>(cpu), &one);
        isOneCpu = sched_setaffinity(0, sizeof(one), &one) == 0;
    }
}

/** For what is thrown where nothing may be: by a library's destructor that needs memory. */
[[noreturn]] void endWithoutMemory()
{
    try {
        if (const std::exception_ptr reason = std::current_exception()) {
            std::rethrow_exception(reason);
        }
    } catch (const std::bad_alloc&) {
        refuseForLackOfMemory();
    } catch (...) {
        // A mistake of the program, which is to be seen.
    }
    std::abort();
}
} // namespace

__attribute__((section(".preinit_array"), used)) void (*const atLoading)(int, char**,
                                                                         char**) = prepareLoading;

int main(int argc, char* argv[])
{
    if (isOneCpu) {
        sched_setaffinity(0, sizeof(allowedCpus), &allowedCpus);
    }
    std::set_terminate(endWithoutMemory);
    // A reader that has seen enough (head) is no failure: writing reports it, nothing kills us.
    std::signal(SIGPIPE, SIG_IGN);
    // Likewise a file that grows longer than a limit set for it.
    std::signal(SIGXFSZ, SIG_IGN);
    Interruption::listen();
    return runProgram(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
}
