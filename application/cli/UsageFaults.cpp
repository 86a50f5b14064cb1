#include "UsageFaults.h"

#include <session/text/NearestText.h>

#include <mirel_fitting/numerics/TextPieces.h>

#include <CLI/CLI.hpp>

#include <vector>

namespace {
std::string suggestion(const std::string& word, const std::vector<std::string>& known)
{
    const auto nearest = nearestText(word, known);
    return nearest ? "; the nearest is " + known[*nearest] : "";
}

/** The names of the commands; those that have an option, if one is given. */
std::vector<std::string> commandsOf(const CLI::App& app, const std::string& option = "")
{
    std::vector<std::string> names;
    for (const CLI::App* const command : app.get_subcommands(nullptr)) {
        if (command->get_name() != "help" &&
            (option.empty() || command->get_option_no_throw(option) != nullptr)) {
            names.push_back(command->get_name());
        }
    }
    return names;
}
} // namespace

CLI::App& UsageFaults::command(const std::string& name) const
{
    for (CLI::App* const command : app.get_subcommands(nullptr)) {
        if (command->get_name() == name) {
            return *command;
        }
    }
    throw unknownCommand(name);
}

UsageError UsageFaults::sentenceOf(const CLI::ParseError& error) const
{
    const std::string text = error.what();
    const std::string excludes = " excludes ";
    const std::size_t excluding = text.find(excludes);
    if (excluding != std::string::npos) {
        return UsageError(text.substr(0, excluding) + " and " +
                          text.substr(excluding + excludes.size()) +
                          " exclude each other: give one of them.");
    }
    // Messages begin with the name of the option, that of a flag without its dashes.
    const std::string first = text.substr(0, text.find_first_of(": "));
    const std::string name = first.rfind('-', 0) == 0 ? first : "--" + first;
    for (const CLI::App* const command : app.get_subcommands()) {
        const CLI::Option* const option = command->get_option_no_throw(name);
        if (option == nullptr) {
            continue;
        }
        if (option->get_expected_max() == 0) {
            return UsageError(name + " takes no value.");
        }
        return UsageError(option->results().size() > 1
                              ? name + " is given more than once: give it once."
                              : name + " needs a value: " + name + ' ' + option->get_type_name() +
                                    '.');
    }
    return UsageError("The arguments cannot be read (" + text +
                      "). surrogate COMMAND --help lists the options.");
}

void UsageFaults::refuseExtras() const
{
    refuseExtrasOf(app);
    for (const CLI::App* const command : app.get_subcommands()) {
        refuseExtrasOf(*command);
    }
}

void UsageFaults::refuseExtrasOf(const CLI::App& command) const
{
    for (const std::string& argument : command.remaining()) {
        if (argument == "--") {
            continue;
        }
        const bool isOption = argument.size() > 1 && argument[0] == '-';
        if (isOption) {
            throw unknownOption(argument.substr(0, argument.find('=')), command);
        }
        if (&command == &app) {
            throw unknownCommand(argument);
        }
        throw UsageError("\"" + argument + "\" is one argument too many for " + command.get_name() +
                         "; quote texts that hold blanks.");
    }
}

UsageError UsageFaults::unknownCommand(const std::string& name) const
{
    const std::vector<std::string> names = commandsOf(app);
    return UsageError("There is no command \"" + name + '"' + suggestion(name, names) +
                      ". The commands are: " + joinedText(names) +
                      "; surrogate --help describes them.");
}

UsageError UsageFaults::unknownOption(const std::string& option, const CLI::App& command) const
{
    if (&command == &app) {
        return UsageError("Options come after the command: surrogate COMMAND " + option + " ...");
    }
    std::vector<std::string> owners = commandsOf(app, option);
    if (!owners.empty()) {
        const std::string last = owners.back();
        owners.pop_back();
        return UsageError(option + " belongs to the command" +
                          (owners.empty() ? " " : "s " + joinedText(owners) + " and ") + last +
                          '.');
    }
    std::vector<std::string> known;
    for (const CLI::Option* const own : command.get_options()) {
        if (!own->get_lnames().empty()) {
            known.push_back("--" + own->get_lnames().front());
        }
    }
    return UsageError("There is no option \"" + option + '"' + suggestion(option, known) +
                      ". surrogate " + command.get_name() + " --help lists the options.");
}
