#pragma once

#include <session/CaseSession.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/** What the user asks the program to do, as typed; names are looked up later, in the file. */
struct CommandLine
{
    enum Command
    {
        Summary,
        Fit,
        Evaluate,
        Predict,
        Equations,
        Check,
        Help,
        Version
    };

    Command command = Help;
    std::string subject; ///< the case file, or the text to check
    std::optional<char> separator;
    std::vector<std::string> inputs;
    std::vector<std::string> outputs;
    std::vector<std::string> excluded;
    CaseSession::Model model = CaseSession::ResponseSurface;
    std::vector<std::string> sweeps;
    std::vector<std::string> counts;
    std::vector<std::string> values;
    std::string points;
    std::string output = "-";
    bool asJson = false;
    bool isQuiet = false;
    int threads = 0; ///< 0: all cores

    /** @param arguments without the program's name. @throw UsageError */
    static CommandLine parse(const std::vector<std::string>& arguments);
};
