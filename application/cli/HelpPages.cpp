#include "HelpPages.h"

#include "ShellWord.h"

#include <boost/algorithm/string.hpp>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <utility>
#include <vector>

namespace {
using boost::algorithm::join;
using boost::algorithm::replace_all_copy;

std::string inOneLine(const std::string& text)
{
    return replace_all_copy(text, "\n", " ");
}

/** What a list of completions has room for: the description up to its first stop. */
std::string firstClause(const std::string& description)
{
    const std::string text = inOneLine(description);
    return text.substr(0, std::min({text.find(". "), text.find("; "), text.find(": "),
                                    text.find(" ("), text.size()}));
}

/** In the input of roff a backslash is \e, a minus sign \-, and no line begins with a dot. */
std::string roff(const std::string& text)
{
    std::string escaped = replace_all_copy(replace_all_copy(text, "\\", "\\e"), "-", "\\-");
    escaped = replace_all_copy(escaped, "\n.", "\n\\&.");
    escaped = replace_all_copy(escaped, "\n'", "\n\\&'");
    return !escaped.empty() && (escaped[0] == '.' || escaped[0] == '\'') ? "\\&" + escaped
                                                                         : escaped;
}

std::vector<const CLI::App*> commandsOf(const CLI::App& app)
{
    return app.get_subcommands([](const CLI::App*) { return true; });
}

std::vector<const CLI::Option*> optionsOf(const CLI::App& command)
{
    return command.get_options([](const CLI::Option* option) { return option->nonpositional(); });
}

/** Its spellings with dashes, short ones first. */
std::vector<std::string> spellings(const CLI::Option& option)
{
    std::vector<std::string> names;
    for (const std::string& name : option.get_snames()) {
        names.push_back('-' + name);
    }
    for (const std::string& name : option.get_lnames()) {
        names.push_back("--" + name);
    }
    return names;
}

bool takesValue(const CLI::Option& option)
{
    return option.get_expected_max() > 0;
}

std::string commandNames(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::App* const command : commandsOf(app)) {
        names.push_back(command->get_name());
    }
    return join(names, " ");
}

void addOptions(const CLI::App& command, std::string& page)
{
    for (const CLI::Option* const option : command.get_options()) {
        const std::string type = takesValue(*option) ? option->get_type_name() : "";
        const std::string name =
            option->get_positional() ? option->get_name(true) : join(spellings(*option), ", ");
        page += ".TP\n\\fB" + roff(name) + "\\fR" + (type.empty() ? "" : " \\fI" + roff(type)) +
                "\\fR\n" + roff(option->get_description()) + '\n';
    }
}
} // namespace

HelpPages::HelpPages(const CLI::App& app, std::string version)
    : app(app), version(std::move(version))
{}

std::string HelpPages::man() const
{
    const std::string name = app.get_name();
    std::string page = ".TH " + boost::algorithm::to_upper_copy(name) + " 1 \"\" \"" + name + ' ' +
                       version + "\"\n.SH NAME\n" + name + " \\- " +
                       roff(firstClause(app.get_description())) + "\n.SH SYNOPSIS\n.B " + name +
                       "\n.I COMMAND\n[\\fIoptions\\fR]\n.SH DESCRIPTION\n" +
                       roff(app.get_description()) + "\n.SH COMMANDS\n";
    for (const CLI::App* const command : commandsOf(app)) {
        page += ".SS " + name + ' ' + command->get_name() + '\n' +
                roff(command->get_description()) + '\n';
        addOptions(*command, page);
        if (!command->get_footer().empty()) {
            page += ".PP\n.nf\n" + roff(command->get_footer()) + "\n.fi\n";
        }
    }
    return page + ".SH NOTES\n.nf\n" + roff(app.get_footer()) + "\n.fi\n";
}

std::string HelpPages::bash() const
{
    const std::string name = app.get_name();
    std::string page = '_' + name +
                       "()\n{\n    local current=\"${COMP_WORDS[COMP_CWORD]}\" words=\n"
                       "    if [ \"$COMP_CWORD\" -eq 1 ]; then\n        words=\"" +
                       commandNames(app) +
                       "\"\n    elif [[ \"$current\" == -* ]]; then\n"
                       "        case \"${COMP_WORDS[1]}\" in\n";
    for (const CLI::App* const command : commandsOf(app)) {
        std::vector<std::string> words;
        for (const CLI::Option* const option : optionsOf(*command)) {
            words.push_back(join(spellings(*option), " "));
        }
        page += "        " + command->get_name() + ") words=\"" + join(words, " ") + "\" ;;\n";
    }
    return page +
           "        esac\n    fi\n"
           "    COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n}\n"
           "complete -o default -F _" +
           name + ' ' + name + '\n';
}

std::string HelpPages::zsh() const
{
    const auto described = [](const std::string& name, const std::string& description) {
        return singleQuoted(name + ':' + replace_all_copy(firstClause(description), ":", "\\:"));
    };
    const std::string name = app.get_name();
    std::string page = "#compdef " + name +
                       "\nlocal -a choices\nif ((CURRENT == 2)); then\n"
                       "    choices=(\n";
    for (const CLI::App* const command : commandsOf(app)) {
        page += "        " + described(command->get_name(), command->get_description()) + '\n';
    }
    page += "    )\n    _describe command choices\n    return\nfi\ncase \"$words[2]\" in\n";
    for (const CLI::App* const command : commandsOf(app)) {
        page += command->get_name() + ")\n    choices=(\n";
        for (const CLI::Option* const option : optionsOf(*command)) {
            for (const std::string& spelling : spellings(*option)) {
                page += "        " + described(spelling, option->get_description()) + '\n';
            }
        }
        page += "    ) ;;\n";
    }
    return page + "esac\nif [[ \"$PREFIX\" == -* ]]; then\n    _describe option choices\nelse\n"
                  "    _files\nfi\n";
}

std::string HelpPages::fish() const
{
    const std::string complete = "complete -c " + app.get_name();
    // fish escapes a single quote by a backslash.
    const auto quoted = [](const std::string& text) {
        return '\'' + replace_all_copy(replace_all_copy(text, "\\", "\\\\"), "'", "\\'") + '\'';
    };
    std::string page;
    for (const CLI::App* const command : commandsOf(app)) {
        page += complete + " -f -n __fish_use_subcommand -a " + command->get_name() + " -d " +
                quoted(firstClause(command->get_description())) + '\n';
        for (const CLI::Option* const option : optionsOf(*command)) {
            page += complete + " -n '__fish_seen_subcommand_from " + command->get_name() + '\'';
            for (const std::string& letter : option->get_snames()) {
                page += " -s " + letter;
            }
            for (const std::string& word : option->get_lnames()) {
                page += " -l " + word;
            }
            page += std::string(takesValue(*option) ? " -r" : "") + " -d " +
                    quoted(firstClause(option->get_description())) + '\n';
        }
    }
    return page;
}
