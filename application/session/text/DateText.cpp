#include "session/text/DateText.h"

#include "session/text/AsciiText.h"

#include <algorithm>
#include <cstddef>
#include <string>

namespace {
bool isMonth(const std::string& word)
{
    return word.size() >= 3 &&
           isOneOf(word.substr(0, 3), {"jan", "feb", "mar", "apr", "may", "jun", "jul", "aug",
                                       "sep", "oct", "nov", "dec", "mai", "okt", "dez"});
}

/** "1/8", "1:4", "0.5-1.5" and "2.5-", which have the signs of dates. */
bool isFractionOrSpan(std::string_view text)
{
    if (text.find_first_not_of("0123456789.-/:") != std::string_view::npos) {
        return false;
    }
    std::string signs;
    std::size_t longest = 0;
    std::size_t digits = 0;
    for (const char character : text) {
        digits = isDigit(character) ? digits + 1 : 0;
        longest = std::max(longest, digits);
        signs += isDigit(character) ? "" : std::string(1, character);
    }
    constexpr std::size_t digitsOfYear = 4;
    if (signs.find(':') != std::string::npos) {
        return text.size() < 3 || !isDigit(text[text.size() - 2]); // a time has two digits there
    }
    return signs.size() == 1 ? longest < digitsOfYear
                             : signs.find_first_not_of(signs[0]) != std::string::npos;
}

/** How many characters from `begin` on are of a kind. */
std::size_t countWhile(std::string_view text, std::size_t begin, bool (*isOfKind)(char))
{
    const auto* const first = text.begin() + begin;
    return static_cast<std::size_t>(std::find_if_not(first, text.end(), isOfKind) - first);
}
} // namespace

bool isDateOrTime(std::string_view text)
{
    if (isFractionOrSpan(text)) {
        return false;
    }
    std::size_t groups = 0;
    bool hasSeparator = false;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t digits = countWhile(text, i, isDigit);
        const std::size_t letters = countWhile(text, i, isLetter);
        const std::string word = lowerCaseText(text.substr(i, letters));
        const bool isSign = std::string_view(" -/.:,+").find(text[i]) != std::string_view::npos;
        if (digits == 0 && !isSign && !isMonth(word) &&
            !isOneOf(word, {"t", "z", "am", "pm", "utc", "gmt", "uhr"})) {
            return false;
        }
        groups += digits > 0 ? 1 : 0;
        hasSeparator = hasSeparator || isMonth(word) || std::string_view("-/.:").find(text[i]) < 4;
        i += std::max<std::size_t>(digits + letters, 1);
    }
    return groups >= 2 && hasSeparator;
}
