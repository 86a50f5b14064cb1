#pragma once

#include <session/text/QuotedText.h>
#include <session/text/SessionErrors.h>

#include <CLI/CLI.hpp>

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

/** Options by the kind of their values, which are checked as they are parsed. What is passed as the
 *  target of a value is borrowed until then. */
namespace OptionTypes {
/** Has the parser check an option's value. @param wanted completes "OPTION needs ...". */
template <class Accepts>
void require(CLI::Option* option, const std::string& wanted, Accepts accepts)
{
    const std::string names = option->get_name(false, true);
    const std::string name = names.substr(0, names.find(','));
    option->check([=](const std::string& text) {
        if (!accepts(text)) {
            throw UsageError(name + " needs " + wanted + ", not " + quotedText(text) + '.');
        }
        return std::string();
    });
}

/** The number that a text is as a whole, with a decimal point. */
template <class Number>
std::optional<Number> numberIn(const std::string& text)
{
    Number number = 0;
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    return read.ec == std::errc() && read.ptr == end ? std::make_optional(number) : std::nullopt;
}

template <class Target>
CLI::Option* addValue(CLI::App& command, const std::string& name, const std::string& description,
                      const std::string& type, Target& target)
{
    return command.add_option(name, target, description)->type_name(type);
}

/** A whole number within bounds, both included. */
template <class Target>
void addCount(CLI::App& command, const std::string& name, const std::string& description,
              const std::string& type, std::size_t least, std::size_t most, Target& target)
{
    require(addValue(command, name, description, type, target),
            "a whole number from " + std::to_string(least) + " to " + std::to_string(most),
            [=](const std::string& text) {
                const auto number = numberIn<std::size_t>(text);
                return number && *number >= least && *number <= most;
            });
}

/** May be repeated. One value per mention: "-x A B" must not take B. */
inline void addList(CLI::App& command, const std::string& name, const std::string& description,
                    const std::string& type, std::vector<std::string>& values)
{
    command.add_option(name, values, description)->type_name(type)->allow_extra_args(false);
}

/** A value that is one of these words. @param wanted the words in a sentence. */
template <typename T>
void addWord(CLI::App& command, const std::string& name, const std::string& description,
             const std::string& type, const std::string& wanted,
             const std::map<std::string, T>& meanings, std::optional<T>& value)
{
    const auto take = [=, &value](const std::string& word) { value = meanings.at(word); };
    require(command.add_option_function<std::string>(name, take, description)->type_name(type),
            wanted, [=](const std::string& word) { return meanings.count(word) > 0; });
}

/** A text that is given its meaning at once. */
inline CLI::Option* addText(CLI::App& command, const std::string& name,
                            const std::string& description, const std::string& type,
                            const std::function<void(const std::string&)>& take)
{
    return command.add_option_function<std::string>(name, take, description)->type_name(type);
}

/** A pair of flags that overrides what is recognised. */
inline void addAnswer(CLI::App& command, const std::string& name, const std::string& description,
                      const std::string& otherDescription, std::optional<bool>& answer)
{
    CLI::Option* const yes = command.add_flag_function(
        "--" + name, [&answer](std::int64_t) { answer = true; }, description);
    command
        .add_flag_function(
            "--no-" + name, [&answer](std::int64_t) { answer = false; }, otherDescription)
        ->excludes(yes);
}
} // namespace OptionTypes
