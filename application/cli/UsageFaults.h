#pragma once

#include <session/text/SessionErrors.h>

#include <string>

namespace CLI {
class App;
class ParseError;
} // namespace CLI

/** What is wrong with the arguments of a program with commands, in sentences that name what was
 *  probably meant. */
class UsageFaults
{
public:
    /** @param app borrowed; its subcommands but "help" are the commands. */
    explicit UsageFaults(CLI::App& app) : app(app) {}

    /** @throw UsageError if there is none. */
    CLI::App& command(const std::string& name) const;

    /** The parser's error in a sentence of our own. */
    UsageError sentenceOf(const CLI::ParseError& error) const;

    /** @throw UsageError if no command or option has taken an argument. */
    void refuseExtras() const;

private:
    void refuseExtrasOf(const CLI::App& command) const;
    UsageError unknownCommand(const std::string& name) const;
    UsageError unknownOption(const std::string& option, const CLI::App& command) const;

    CLI::App& app;
};
