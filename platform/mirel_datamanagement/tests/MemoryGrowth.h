#pragma once

#include <algorithm>
#include <cstddef>

#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

/** Of the run time of the address sanitizer, whichever compiler it comes with. */
extern "C" void __asan_init() __attribute__((weak));

/** Whether the memory that a process holds says anything of what it asked for. */
inline const bool memoryCanBeMeasured = &__asan_init == nullptr;

/** The most memory that this process has held so far. */
inline std::size_t mostBytesHeld()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

/** The memory that this process has asked for and not given back, large blocks included. */
inline std::size_t bytesInUse()
{
    const struct mallinfo2 all = mallinfo2();
    return all.uordblks + all.hblkhd;
}

/** By how many megabytes (at most 254, -1 after a crash) a function makes a process grow. */
template <class Function>
int megabytesGrownBy(const Function& run)
{
    // What was freed would be there for the function without any growth.
    malloc_trim(0);
    const pid_t child = fork();
    if (child == 0) {
        const std::size_t before = mostBytesHeld();
        run();
        _exit(static_cast<int>(std::min<std::size_t>((mostBytesHeld() - before) >> 20, 254)));
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
