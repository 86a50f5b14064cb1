#include "session/diagnosis/FindingWords.h"

#include "session/text/NumberText.h"
#include "session/text/QuotedText.h"

#include <cmath>

namespace {
constexpr std::size_t maxShown = 5;

std::string list(const std::vector<std::string>& texts)
{
    std::string text;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        text += (i == 0 ? "" : i + 1 == texts.size() ? " and " : ", ") + texts[i];
    }
    return text;
}

/** One more would take no more room than "and 1 more". */
std::vector<std::string> shortened(std::vector<std::string> texts)
{
    if (texts.size() > maxShown + 1) {
        const std::string rest = std::to_string(texts.size() - maxShown) + " more";
        texts.resize(maxShown);
        texts.push_back(rest);
    }
    return texts;
}
} // namespace

std::string FindingWords::names(const std::vector<std::string>& names)
{
    std::vector<std::string> shown;
    shown.reserve(names.size());
    for (const std::string& name : names) {
        shown.push_back(shownText(name));
    }
    return list(shortened(shown));
}

std::string FindingWords::cases(const std::vector<std::size_t>& positions)
{
    std::vector<std::string> numbers;
    numbers.reserve(positions.size());
    for (const std::size_t position : positions) {
        numbers.push_back(std::to_string(position + 1));
    }
    return (positions.size() == 1 ? "case " : "cases ") + list(shortened(numbers));
}

std::string FindingWords::figure(double number)
{
    constexpr double longest = 1e6;
    constexpr double shortest = 1e4;
    if (std::fabs(number) >= shortest && std::fabs(number) < longest) {
        return std::to_string(std::lround(number));
    }
    constexpr int digits = 4;
    return shownNumber(number, digits);
}

std::string FindingWords::percent(double share)
{
    return std::to_string(std::lround(100.0 * share)) + " %";
}
