#include "CommandOptions.h"

#include "CommandDescriptions.h"
#include "HelpPages.h"
#include "OptionTypes.h"
#include "ShellWord.h"
#include "UsageFaults.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <optional>
#include <utility>

namespace {
constexpr std::size_t helpColumn = 30; ///< where the descriptions of options begin

const char* const about =
    "Fits surrogate models (response surfaces, Kriging) to tables of cases and evaluates them.";

const char* const exitCodes = R"(Exit codes:
  0 done    1 the model cannot be fitted or evaluated    2 wrong use
  3 bad case data, or a project or an exported model that cannot be used
  4 bad distribution text    5 a file cannot be read or written    130 ended by Ctrl-C)";

/** The description, with one subcommand for each command. */
class Parser
{
    using HelpFormat = std::string (HelpPages::*)() const;

public:
    explicit Parser(CommandLine& line) : app(about, "surrogate"), faults(app)
    {
        app.set_version_flag("--version", "surrogate " SURROGATE_VERSION);
        app.footer("surrogate COMMAND --help describes a command and its options.\n\n" +
                   std::string(exitCodes));
        app.allow_extras();
        // A file may be called like a command.
        app.require_subcommand(0, 1);
        app.get_formatter()->column_width(helpColumn);
        app.get_formatter()->label("OPTIONS", "options");
        app.get_formatter()->label("SUBCOMMAND", "COMMAND");
        app.get_formatter()->label("Positionals", "Arguments");
        app.get_formatter()->label("Excludes", "not with");
        for (const CommandDescription& command : commandDescriptions()) {
            CLI::App* const described =
                app.add_subcommand(command.name, command.description)->allow_extras();
            described->group("Commands");
            command.describe(*described, line);
            for (CLI::Option* const option : described->get_options()) {
                if (option->get_expected_max() == 0) {
                    option->disable_flag_override();
                }
            }
        }
        help = app.add_subcommand("help", "describes a command")->group("Commands");
        help->add_option("COMMAND", helpTopic)->type_name("");
        OptionTypes::addWord<HelpFormat>(
            *help, "--format",
            "all of it as a manual page (man), or the completion file of\n"
            "a shell: bash, zsh or fish",
            "F", "man, bash, zsh or fish",
            {{"man", &HelpPages::man},
             {"bash", &HelpPages::bash},
             {"zsh", &HelpPages::zsh},
             {"fish", &HelpPages::fish}},
            helpFormat);
    }

    /** @throw CLI::ParseError, UsageError */
    void parse(std::vector<std::string> arguments, CommandLine& line)
    {
        std::reverse(arguments.begin(), arguments.end());
        app.parse(arguments);
        if (help->parsed()) {
            if (helpFormat) {
                line.text = (HelpPages(app, SURROGATE_VERSION).**helpFormat)();
                return;
            }
            // help() of the whole would describe the command help.
            line.text = helpTopic.empty() ? app.get_formatter()->make_help(
                                                &app, app.get_name(), CLI::AppFormatMode::Normal)
                                          : faults.command(helpTopic).help(app.get_name());
            return;
        }
        for (const CommandDescription& command : commandDescriptions()) {
            if (app.get_subcommand(command.name)->parsed()) {
                line.command = command.value;
            }
        }
        const CLI::App& check = *app.get_subcommand("check");
        const bool hasText = check.count("TEXT") > 0;
        // A text that begins with a minus sign looks like an unknown option.
        const std::vector<std::string> extras = check.remaining();
        if (!hasText && extras.size() == 1 && isNegative(extras.front())) {
            line.subject = extras.front();
            return;
        }
        faults.refuseExtras();
        if (line.command == CommandLine::Check && !hasText) {
            throw UsageError("The command check needs the text to check.");
        }
    }

    std::string helpText() const { return app.help(); }

    UsageError sentenceOf(const CLI::ParseError& error) const { return faults.sentenceOf(error); }

private:
    static bool isNegative(const std::string& text)
    {
        return text.find_first_of("0123456789.") == 1 && text[0] == '-';
    }

    CLI::App app;
    UsageFaults faults;
    CLI::App* help = nullptr;
    std::string helpTopic;
    std::optional<HelpFormat> helpFormat;
};
} // namespace

CommandLine CommandOptions::parse(const std::vector<std::string>& arguments)
{
    CommandLine line;
    line.typed = "surrogate";
    for (const std::string& argument : arguments) {
        line.typed += ' ' + shellWord(argument);
    }
    Parser parser(line);
    try {
        parser.parse(arguments, line);
    } catch (const CLI::CallForHelp&) {
        line.command = CommandLine::Help;
        line.text = parser.helpText();
    } catch (const CLI::CallForVersion& version) {
        line.command = CommandLine::Version;
        line.text = std::string(version.what()) + '\n';
    } catch (const CLI::ParseError& error) {
        throw parser.sentenceOf(error);
    }
    line.check();
    return line;
}

std::string CommandOptions::shortHelp()
{
    std::string text = std::string(about) + "\n\n    surrogate COMMAND CASES.csv [options]\n\n";
    for (const CommandDescription& command : commandDescriptions()) {
        std::string name = command.name;
        name.resize(12, ' ');
        text += "  " + name + command.description + '\n';
    }
    return text + "\nsurrogate COMMAND --help describes a command, surrogate --help all.\n";
}
