#include "session/cases/VariableNames.h"

#include "session/text/AsciiText.h"
#include "session/text/NearestText.h"
#include "session/text/QuotedText.h"
#include "session/text/SessionErrors.h"

#include <mirel_fitting/numerics/TextPieces.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

namespace {
/** A message that lists more names than these is not read any more. */
constexpr std::size_t namesInMessage = 40;

std::string quoted(const std::string& name)
{
    return '"' + name + '"';
}

std::string trimmed(std::string_view text)
{
    return std::string(trimmedText(text));
}

/** The position of a name that was typed, in which a tab at the beginning of a heading is left out;
 *  that of the end if there is none. */
std::size_t positionIn(const std::vector<std::string>& names, std::string_view typed)
{
    auto found = std::find(names.begin(), names.end(), typed);
    if (found == names.end()) {
        found = std::find_if(names.begin(), names.end(), [&](const std::string& name) {
            return name[0] == '\t' && trimmedText(name) == typed;
        });
    }
    return static_cast<std::size_t>(found - names.begin());
}

/** Finds names in a comma list, with a way back where the longest name leads nowhere. */
class ListReader
{
public:
    ListReader(const std::vector<std::string>& known, const std::string& list)
        : names(known), text(list), isDeadEnd(list.size() + 2, false)
    {
        for (const std::string& name : names) {
            maxCommas = std::max(maxCommas, std::count(name.begin(), name.end(), ','));
        }
    }

    /** Reads from a position on; past the end means that everything has been read. */
    bool read(std::size_t begin)
    {
        if (begin > text.size()) {
            return true;
        }
        if (isDeadEnd[begin]) {
            return false;
        }
        // A name ends at one of the next commas, no further than it has commas itself.
        std::vector<std::size_t> ends = {std::min(text.find(',', begin), text.size())};
        for (auto commas = maxCommas; commas > 0 && ends.back() < text.size(); --commas) {
            ends.push_back(std::min(text.find(',', ends.back() + 1), text.size()));
        }
        for (auto end = ends.rbegin(); end != ends.rend(); ++end) {
            if (const auto position = find(trimmed(text.substr(begin, *end - begin)))) {
                found.push_back(*position);
                if (read(*end + 1)) {
                    return true;
                }
                found.pop_back();
            }
        }
        isDeadEnd[begin] = true;
        return false;
    }

    std::vector<std::size_t> found;

private:
    std::optional<std::size_t> find(const std::string& name) const
    {
        const std::size_t at = positionIn(names, name);
        return at == names.size() ? std::nullopt : std::optional<std::size_t>(at);
    }

    const std::vector<std::string>& names;
    const std::string& text;
    std::vector<bool> isDeadEnd;
    std::ptrdiff_t maxCommas = 0; ///< of a name
};
} // namespace

VariableNames::VariableNames(std::vector<std::string> names) : nameList(std::move(names)) {}

const std::vector<std::string>& VariableNames::names() const
{
    return nameList;
}

std::size_t VariableNames::position(const std::string& name) const
{
    const std::size_t found = positionIn(nameList, name);
    if (found == nameList.size()) {
        throw UsageError(unknownMessage(name));
    }
    return found;
}

std::vector<std::size_t> VariableNames::listed(const std::string& text) const
{
    ListReader reader(nameList, text);
    if (reader.read(0)) {
        return reader.found;
    }

    // The message names the first part that is no name by itself.
    for (const std::string_view part : partsBetweenCommas(text)) {
        position(std::string(part));
    }
    return reader.found;
}

std::pair<std::size_t, std::string> VariableNames::assignment(const std::string& text) const
{
    if (text.find('=') == std::string::npos) {
        throw UsageError("A value needs the name before it: NAME=VALUE, not \"" + text + "\".");
    }
    for (std::size_t equals = text.rfind('='); equals != std::string::npos;
         equals = equals == 0 ? std::string::npos : text.rfind('=', equals - 1)) {
        const std::size_t found = positionIn(nameList, trimmed(text.substr(0, equals)));
        if (found != nameList.size()) {
            return {found, text.substr(equals + 1)};
        }
    }
    throw UsageError(unknownMessage(trimmed(text.substr(0, text.find('=')))));
}

std::string VariableNames::unknownMessage(const std::string& name) const
{
    std::string message = "There is no variable " + quoted(name);
    if (nameList.empty()) {
        return message + '.';
    }
    auto nearest = nearestText(name, nameList);
    if (!nearest) {
        std::vector<std::string> withoutUnits;
        for (const std::string& known : nameList) {
            const std::string part = known.substr(0, known.find_first_of("[(", 1));
            withoutUnits.emplace_back(trimmedText(part));
        }
        nearest = nearestText(name, withoutUnits);
    }
    if (nearest) {
        message += "; the nearest name is " + quoted(nameList[*nearest]);
    }
    message += ". The variables are: ";
    std::vector<std::string> shown;
    for (std::size_t i = 0; i < std::min(nameList.size(), namesInMessage); ++i) {
        shown.push_back(quoted(nameList[i]));
    }
    return message + joinedText(shown) + andMore(nameList.size() - shown.size()) + '.';
}

std::vector<std::string> namesOf(const std::vector<VarPtr>& variables)
{
    std::vector<std::string> names;
    names.reserve(variables.size());
    for (const VarPtr& variable : variables) {
        names.push_back(variable.lock()->name());
    }
    return names;
}

std::vector<std::string> shownNamesOf(const std::vector<VarPtr>& variables)
{
    std::vector<std::string> names = namesOf(variables);
    std::transform(names.begin(), names.end(), names.begin(), shortText);
    return names;
}
