#pragma once

/** Ctrl-C has ended a fit. */
class Interrupted
{};

/**
 * What Ctrl-C does to the program: outside of a fit it ends at once with the exit code 130, and
 * a file that is not yet whole does not appear; a fit is asked to end first, so that the terminal
 * is left in order. A second Ctrl-C does not wait for it.
 */
namespace Interruption {
constexpr int exitCode = 130;

void listen();

/** While one lives, Ctrl-C is only remembered. One at a time. */
class Postponed
{
public:
    Postponed();
    ~Postponed();

    Postponed(const Postponed&) = delete;
    Postponed& operator=(const Postponed&) = delete;

    /** @throw Interrupted if there was one. */
    static void check();
};
} // namespace Interruption
