#pragma once

#include <sys/wait.h>
#include <unistd.h>

/**
 * Runs a function in a process of its own, for what cannot be undone here: limits, users, roots.
 * @param run answers the exit code.
 * @return the exit code, -1 if the process was ended by a signal.
 */
template <class Function>
int exitCodeOf(const Function& run)
{
    const pid_t child = fork();
    if (child == 0) {
        _exit(run());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
