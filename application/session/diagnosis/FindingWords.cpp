#include "session/diagnosis/FindingWords.h"

#include "session/text/DecimalText.h"
#include "session/text/QuotedText.h"

#include <mirel_fitting/numerics/NumberText.h>
#include <mirel_fitting/numerics/TextPieces.h>

#include <cmath>
#include <utility>

std::string FindingWords::names(const std::vector<std::string>& names)
{
    std::vector<std::string> shown;
    shown.reserve(names.size());
    for (const std::string& name : names) {
        shown.push_back(shownText(name));
    }
    return shortList(std::move(shown));
}

std::string FindingWords::cases(const std::vector<std::size_t>& positions)
{
    std::vector<std::string> numbers;
    numbers.reserve(positions.size());
    for (const std::size_t position : positions) {
        numbers.push_back(std::to_string(position + 1));
    }
    return (positions.size() == 1 ? "case " : "cases ") + shortList(std::move(numbers));
}

std::string FindingWords::casesFirst(const std::vector<std::size_t>& positions)
{
    return 'C' + cases(positions).substr(1);
}

std::string FindingWords::percent(double share)
{
    constexpr double firstWhole = 0.01; // smaller shares would be 0 % or 1 %
    constexpr int digits = 2;
    return std::fabs(share) < firstWhole ? shownNumber(100.0 * share, digits) + " %"
                                         : NumberText::percent(share);
}
