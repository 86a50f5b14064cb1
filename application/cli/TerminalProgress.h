#pragma once

#include "Interruption.h"

#include <chrono>
#include <memory>
#include <string>

class CaseSession;
class FitProgress;
struct CommandLine;

/**
 * While it lives, fits show how far they are as a bar on one line of the terminal, which it clears
 * at the end, and Ctrl-C ends them with Interrupted. If the standard error is no terminal, a fit
 * that takes longer than `patience` writes one line there: what it does.
 */
class TerminalProgress
{
public:
    /** @param task "Fitting Kriging to 614 cases". */
    TerminalProgress(bool isQuiet, const std::string& task,
                     std::chrono::milliseconds patience = std::chrono::seconds(2));
    ~TerminalProgress();

    TerminalProgress(const TerminalProgress&) = delete;
    TerminalProgress& operator=(const TerminalProgress&) = delete;

private:
    struct Line;
    Interruption::Postponed interruption;
    std::unique_ptr<Line> line;
    std::unique_ptr<FitProgress> progress;
};

/** Fits the session's model beneath a TerminalProgress. What uses the model comes after it: there
 *  Ctrl-C ends the program at once. */
void fitWithProgress(const CommandLine& line, CaseSession& session);
