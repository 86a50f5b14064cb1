#pragma once

#include <string>
#include <vector>

struct CommandLine;

/**
 * The commands and options of the program, each described once: from this description come parsing
 * and every help text. What an option's value may be is checked here, which options go together
 * with what kind of file in CommandLine.
 */
class CommandOptions
{
public:
    /**
     * Reads the arguments, without the program's name. A request for help or the version becomes a
     * command of its own, with the text to print.
     * @throw UsageError that names the argument, with the nearest command or option where one is
     *        misspelt.
     */
    static CommandLine parse(const std::vector<std::string>& arguments);

    /** The commands in one screen: what `surrogate` alone prints. */
    static std::string shortHelp();
};
