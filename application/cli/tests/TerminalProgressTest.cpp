#include "../TerminalProgress.h"

#include <mirel_fitting/FitProgress.h>

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

#include <fcntl.h>
#include <pty.h>
#include <unistd.h>

namespace {
/** What a terminal in the place of the standard error receives. */
class Terminal
{
public:
    Terminal()
    {
        openpty(&receiver, &sender, nullptr, nullptr, nullptr);
        fcntl(receiver, F_SETFL, O_NONBLOCK);
        dup2(sender, STDERR_FILENO);
    }

    ~Terminal()
    {
        dup2(before, STDERR_FILENO);
        for (const int file : {before, receiver, sender}) {
            close(file);
        }
    }

    std::string received() const
    {
        std::string text(4096, '\0');
        const ssize_t count = read(receiver, text.data(), text.size());
        text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return text;
    }

private:
    int before = dup(STDERR_FILENO);
    int receiver = -1;
    int sender = -1;
};

const std::string task = "Fitting Kriging to 11 cases";

/** Reports once the first line is due. */
void reportLater(double fraction)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(110));
    FitProgress::report(fraction, "Searching");
}
} // namespace

TEST(TerminalProgress, ShowsABarAndClearsItAtTheEnd)
{
    const Terminal terminal;
    {
        const TerminalProgress progress(false, task);
        reportLater(0.5);
        EXPECT_EQ(terminal.received(),
                  "\r\x1B[K[" + std::string(15, '#') + std::string(15, '.') + "]  50 % Searching");
    }
    EXPECT_EQ(terminal.received(), "\r\x1B[K");
}

TEST(TerminalProgress, ShowsNothingOfAFitThatIsDoneAtOnce)
{
    const Terminal terminal;
    {
        const TerminalProgress progress(false, task);
        FitProgress::report(0.5, "Searching");
    }
    EXPECT_EQ(terminal.received(), "");
}

TEST(TerminalProgress, ShowsNothingWhereQuietIsWanted)
{
    const Terminal terminal;
    {
        const TerminalProgress progress(true, task);
        reportLater(0.5);
    }
    EXPECT_EQ(terminal.received(), "");
}

TEST(TerminalProgress, NamesALongFitOnceWithoutATerminal)
{
    testing::internal::CaptureStderr();
    {
        const TerminalProgress progress(false, task, std::chrono::seconds(0));
        FitProgress::report(0.4, "Searching");
        FitProgress::report(0.5, "Searching");
        const TerminalProgress quiet(true, task, std::chrono::seconds(0));
        FitProgress::report(0.6, "Searching");
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), task + " ...\n");
}

TEST(TerminalProgress, ShowsNothingOfAShortFitWithoutATerminal)
{
    testing::internal::CaptureStderr();
    {
        const TerminalProgress progress(false, task, std::chrono::hours(1));
        reportLater(0.5);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}
