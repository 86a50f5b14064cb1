#include "Interruption.h"

#include <csignal>

#include <unistd.h>

namespace {
volatile std::sig_atomic_t isPostponed = 0;
volatile std::sig_atomic_t isWanted = 0;

[[noreturn]] void end()
{
    _exit(Interruption::exitCode);
}

void handle(int)
{
    if (isPostponed == 0 || isWanted != 0) {
        end();
    }
    isWanted = 1;
}
} // namespace

void Interruption::listen()
{
    struct sigaction old = {};
    // Started with the signal ignored (nohup, a shell's background job), it stays so.
    if (sigaction(SIGINT, nullptr, &old) != 0 || old.sa_handler == SIG_IGN) {
        return;
    }
    struct sigaction action = {};
    action.sa_handler = handle;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
}

Interruption::Postponed::Postponed()
{
    isPostponed = 1;
}

Interruption::Postponed::~Postponed()
{
    isPostponed = 0;
    if (isWanted != 0) {
        // The fit was done before it could look.
        end();
    }
}

void Interruption::Postponed::check()
{
    if (isWanted != 0) {
        isWanted = 0;
        throw Interrupted();
    }
}
