#pragma once

#include <memory>

class FitProgress;

/** While it lives, fits show how far they are on one line of the terminal, which it clears at the
 *  end. It shows nothing if the standard error is no terminal. */
class TerminalProgress
{
public:
    explicit TerminalProgress(bool isQuiet);
    ~TerminalProgress();

    TerminalProgress(const TerminalProgress&) = delete;
    TerminalProgress& operator=(const TerminalProgress&) = delete;

private:
    struct Line;
    std::shared_ptr<Line> line;
    std::unique_ptr<FitProgress> progress;
};
