// Ctrl-C, whatever the program is about to do.

#include "ProgramFixture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <csignal>
#include <random>
#include <string>

#include <pty.h>

namespace {
// A job in the background of a script ignores Ctrl-C, and so would all that it starts.
const bool canBeInterrupted = std::signal(SIGINT, SIG_DFL) != SIG_ERR;

struct Interrupted
{
    const char* name;
    const char* arguments;
};

class InterruptionOfCommands : public Program, public ::testing::WithParamInterface<Interrupted>
{
protected:
    /** Starts it at a terminal, and presses Ctrl-C when that shows the progress of a fit. */
    Outcome runAndInterrupt(const std::string& arguments)
    {
        int terminal = -1;
        const pid_t process = forkpty(&terminal, nullptr, nullptr, nullptr);
        if (process == 0) {
            const std::string command = "cd '" + folder.path("") +
                                        "' && exec '" SURROGATE_PROGRAM "' " + arguments +
                                        " > out.txt";
            execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
            _exit(127);
        }
        std::string shown;
        char bytes[4096];
        bool isPressed = false;
        for (ssize_t count; (count = read(terminal, bytes, sizeof(bytes))) > 0;) {
            shown.append(bytes, static_cast<std::size_t>(count));
            if (!isPressed && shown.find('%') != std::string::npos) {
                isPressed = write(terminal, "\x03", 1) == 1;
            }
        }
        close(terminal);
        int status = 0;
        waitpid(process, &status, 0);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, folder.read("out.txt"), shown};
    }

    InterruptionOfCommands()
    {
        // Thousands of cases: the fit takes seconds, and the signal comes in its middle.
        std::mt19937_64 random(7);
        const auto uniform = [&] { return static_cast<double>(random() >> 11) * 0x1p-53; };
        std::string cases = "a,b,c,y\n";
        for (int i = 0; i < 3000; ++i) {
            const double a = uniform();
            const double b = uniform();
            const double c = uniform();
            for (const double cell : {a, b, c}) {
                cases += std::to_string(cell) + ',';
            }
            cases += std::to_string(std::sin(9.0 * a) * std::cos(7.0 * b) + c * c) + '\n';
        }
        folder.write("many.csv", cases);
    }
};

class Interruption : public Program
{};
} // namespace

TEST_P(InterruptionOfCommands, LeavesNothingBehind)
{
    folder.write("old.txt", "old");
    folder.write("out.txt", "");
    const std::size_t before = folder.fileCount();

    ASSERT_TRUE(canBeInterrupted);
    const Outcome ended = runAndInterrupt(GetParam().arguments);

    EXPECT_EQ(ended.exitCode, 130) << ended.err;
    EXPECT_EQ(ended.out, "");
    EXPECT_EQ(ended.err.substr(ended.err.rfind('\r')), "\r\033[K") << "the progress is wiped out";
    EXPECT_EQ(folder.fileCount(), before);
    EXPECT_EQ(folder.read("old.txt"), "old");
}

INSTANTIATE_TEST_SUITE_P(
    Commands, InterruptionOfCommands,
    ::testing::Values(
        Interrupted{"Fit", "fit many.csv -y y -m kriging -o old.txt --save many.surrogate.xml"},
        Interrupted{"FitToTheStandardOutput", "fit many.csv -y y -m kriging --json"},
        Interrupted{"Evaluate", "evaluate many.csv -y y -m kriging --count a=10 -o old.txt"},
        Interrupted{"Predict", "predict many.csv -y y -m kriging --points many.csv -o old.txt"},
        Interrupted{"Compare", "compare many.csv -y y -o old.txt"},
        Interrupted{"Plot", "plot many.csv -y y -m kriging --kind actual -o picture.svg"},
        Interrupted{"Export", "export many.csv -y y -m kriging --format json -o old.txt"}),
    [](const auto& interrupted) { return std::string(interrupted.param.name); });

TEST_F(Interruption, CtrlCEndsAPredictionAtOnce)
{
    // A quick fit, and standard errors at so many points that they take minutes: who waits for
    // them is killed.
    std::string cases = "a,y\n";
    for (int i = 0; i < 400; ++i) {
        cases += std::to_string(i) + ',' + std::to_string(std::sin(0.1 * i)) + '\n';
    }
    folder.write("waves.csv", cases);
    const std::size_t before = (run("--version"), folder.fileCount());

    const Outcome ended = run("--version > /dev/null; timeout --preserve-status -s INT -k 20 1 '" +
                              std::string(SURROGATE_PROGRAM) +
                              "' evaluate waves.csv -y y -m kriging --interval 95 "
                              "--threads 2 --count a=10000000 -o table.csv");

    EXPECT_EQ(ended.exitCode, 130);
    EXPECT_EQ(folder.fileCount(), before);
}
