#include "TerminalProgress.h"

#include "CommandLine.h"

#include <session/model/CaseSession.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/numerics/TextPieces.h>

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <string>

#include <unistd.h>

struct TerminalProgress::Line
{
    /** Frequent enough to show progress, rare enough to cost no time. */
    static constexpr std::chrono::milliseconds interval = std::chrono::milliseconds(100);

    /** Of the bar, in characters. */
    static constexpr std::size_t width = 30;

    void show(double fraction, const std::string& message)
    {
        const auto now = std::chrono::steady_clock::now();
        if (now - shownAt < interval) {
            return;
        }
        shownAt = now;
        isShown = true;
        const auto done = static_cast<std::size_t>(fraction * static_cast<double>(width));
        const std::string bar = std::string(done, '#') + std::string(width - done, '.');
        // "erase to the end of the line", then the text, without a line end.
        std::fprintf(stderr, "\r\033[K[%s] %3.0f %% %s", bar.c_str(), 100.0 * fraction,
                     message.c_str());
        std::fflush(stderr);
    }

    void clear() const
    {
        if (isShown) {
            std::fputs("\r\033[K", stderr);
        }
    }

    // The first line waits too: a fit that is done by then shows nothing.
    std::chrono::steady_clock::time_point shownAt = std::chrono::steady_clock::now();
    bool isShown = false;
};

TerminalProgress::TerminalProgress(bool isQuiet, const std::string& task,
                                   std::chrono::milliseconds patience)
{
    const bool isTerminal = isatty(STDERR_FILENO) != 0;
    if (!isQuiet && isTerminal) {
        line = std::make_unique<Line>();
    }
    progress = std::make_unique<FitProgress>(
        [shown = line.get(), sentence = isQuiet || isTerminal ? "" : task + " ...\n",
         due = std::chrono::steady_clock::now() + patience](double fraction,
                                                            const std::string& message) mutable {
            Interruption::Postponed::check();
            if (shown != nullptr) {
                shown->show(fraction, message);
            } else if (!sentence.empty() && std::chrono::steady_clock::now() >= due) {
                std::fputs(sentence.c_str(), stderr);
                sentence.clear();
            }
            return true;
        });
}

TerminalProgress::~TerminalProgress()
{
    if (line) {
        line->clear();
    }
}

void fitWithProgress(const CommandLine& line, CaseSession& session)
{
    const bool isKriging = session.modelType() == CaseSession::Kriging;
    const TerminalProgress progress(
        line.isQuiet, std::string("Fitting ") + (isKriging ? "Kriging" : "a response surface") +
                          " to " + countedText(session.counts().valid, "case"));
    session.model();
}
