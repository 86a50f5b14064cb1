#pragma once

#include <string>

namespace CLI {
class App;
}

/**
 * Pages that describe a program with commands, made of the same description that parses them.
 */
class HelpPages
{
public:
    /** @param app borrowed; its subcommands are the commands. */
    HelpPages(const CLI::App& app, std::string version);

    /** A manual page in the macros of man(7). */
    std::string man() const;

    /** Completion of commands, options and names of files, to be read by the shell. */
    std::string bash() const;
    std::string zsh() const;
    std::string fish() const;

private:
    const CLI::App& app;
    std::string version;
};
