#pragma once

#include "Program.h"

#include "../../session/tests/TemporaryFolder.h"

#include <mirel_property/tests/TextParts.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <wordexp.h>

using Json = nlohmann::json;

/** What one run of the program came to. */
struct Outcome
{
    int exitCode = -1;
    std::string out;
    std::string err;
};

/** NIST/SEMATECH e-Handbook of Statistical Methods, 5.4.7.3 (Czitrom and Spagon 1997). */
inline const std::string cvd =
    "Pressure,H2/WF6,Uniformity,Stress\n80,6,4.6,8.04\n42,6,6.2,7.78\n"
    "68.87,3.17,3.4,7.58\n15.13,8.83,6.9,7.27\n4,6,7.3,6.49\n42,6,6.4,7.69\n"
    "15.13,3.17,8.6,6.66\n42,2,6.3,7.16\n68.87,8.83,5.1,8.33\n"
    "42,10,5.4,8.19\n42,6,5.0,7.9\n";

/** y = 1 + 2 x - z, exactly. */
inline const std::string plane = "x,z,y\n0,0,1\n1,0,3\n0,1,0\n2,1,4\n1,2,1\n3,3,4\n";

/** Runs the program in a folder of its own that holds two case files. */
class Program : public ::testing::Test
{
protected:
    Program()
    {
        folder.write("cvd.csv", cvd);
        folder.write("plane.csv", plane);
    }

    /** Runs it in the test's folder: in a copy of this process, as loading the program takes longer
     *  than most commands; what `arguments` redirect and pipe is left to the shell. */
    Outcome run(const std::string& arguments)
    {
        wordexp_t words = {};
        if (wordexp(arguments.c_str(), &words, WRDE_NOCMD) != 0) {
            return runAs("'" SURROGATE_PROGRAM "'", arguments);
        }
        std::fflush(nullptr);
        const pid_t copy = fork();
        if (copy == 0) {
            std::filesystem::current_path(folder.path(""));
            dup2(creat("out.txt", 0666), STDOUT_FILENO);
            dup2(creat("err.txt", 0666), STDERR_FILENO);
            std::exit(runProgram({words.we_wordv, words.we_wordv + words.we_wordc}));
        }
        wordfree(&words);
        int status = 0;
        waitpid(copy, &status, 0);
        return outcomeOf(status);
    }

    /** Through the shell, in the test's folder. */
    Outcome runAs(const std::string& program, const std::string& arguments)
    {
        const std::string command = "cd '" + folder.path("") + "' && { " + program + ' ' +
                                    arguments + "; } > out.txt 2> err.txt";
        return outcomeOf(std::system(command.c_str()));
    }

    Outcome outcomeOf(int status) const
    {
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, folder.read("out.txt"),
                withoutProgress(folder.read("err.txt"))};
    }

    /** Without what a long fit does, which depends on the time: "Fitting Kriging to 11 cases ..."
     */
    static std::string withoutProgress(const std::string& text)
    {
        const std::string end = " ...\n";
        std::string kept;
        for (std::size_t begin = 0; begin < text.size();) {
            const std::size_t next = std::min(text.find('\n', begin), text.size() - 1) + 1;
            const std::string line = text.substr(begin, next - begin);
            const bool isProgress =
                (line.rfind("Fitting ", 0) == 0 || line.rfind("Comparing ", 0) == 0) &&
                line.size() > end.size() && line.substr(line.size() - end.size()) == end;
            kept += isProgress ? "" : line;
            begin = next;
        }
        return kept;
    }

    /** What a run that succeeds prints. */
    std::string outputOf(const std::string& arguments)
    {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << arguments << ": " << outcome.err;
        return outcome.out;
    }

    /** What a run that succeeds prints as an object. */
    Json jsonOf(const std::string& arguments)
    {
        return Json::parse(outputOf(arguments + " --json"));
    }

    void expectFailure(const std::string& arguments, int exitCode, const std::string& message)
    {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, exitCode) << arguments;
        EXPECT_EQ(outcome.err, "surrogate: " + message + "\n") << arguments;
        EXPECT_EQ(outcome.out, "") << arguments;
    }

    TemporaryFolder folder;
};

inline std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        lines.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return lines;
}
