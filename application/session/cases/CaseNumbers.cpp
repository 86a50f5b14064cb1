#include "session/cases/CaseNumbers.h"

#include "session/text/AsciiText.h"
#include "session/text/SessionErrors.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <system_error>
#include <utility>

namespace {
[[noreturn]] void refuse(std::string_view item)
{
    throw UsageError("\"" + std::string(item) +
                     "\" is no case number or range of them; write them like 3,7-9.");
}

std::size_t readNumber(std::string_view text, std::string_view item, std::size_t cases)
{
    std::size_t number = 0;
    text = trimmedText(text);
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (read.ec == std::errc::invalid_argument || read.ptr != text.data() + text.size()) {
        refuse(item);
    }
    if (read.ec == std::errc::result_out_of_range || number < 1 || number > cases) {
        throw UsageError("There is no case " + std::string(text) + " to exclude: the cases are " +
                         (cases == 0 ? "none." : "1 to " + std::to_string(cases) + '.'));
    }
    return number;
}

/** Both ends, counted from 1. */
using Range = std::pair<std::size_t, std::size_t>;

/** Each number comes once, however often the ranges hold it: what a text can ask for is bounded by
 *  the number of cases. */
std::vector<std::size_t> positionsIn(std::vector<Range> ranges)
{
    std::sort(ranges.begin(), ranges.end());
    std::vector<std::size_t> positions;
    std::size_t next = 1;
    for (const auto& [first, last] : ranges) {
        for (next = std::max(next, first); next <= last; ++next) {
            positions.push_back(next - 1);
        }
    }
    return positions;
}
} // namespace

std::vector<std::size_t> readCaseNumbers(const std::string& text, std::size_t cases)
{
    std::vector<Range> ranges;
    for (const std::string_view item : partsBetweenCommas(text)) {
        const std::size_t dash = std::min(item.find('-'), item.size());
        const std::size_t first = readNumber(item.substr(0, dash), item, cases);
        const std::size_t last =
            dash == item.size() ? first : readNumber(item.substr(dash + 1), item, cases);
        if (last < first) {
            refuse(item);
        }
        ranges.emplace_back(first, last);
    }
    return positionsIn(std::move(ranges));
}

std::string caseNumbersText(const std::vector<std::size_t>& positions)
{
    std::string text;
    for (std::size_t i = 0; i < positions.size();) {
        std::size_t last = i;
        while (last + 1 < positions.size() && positions[last + 1] == positions[last] + 1) {
            ++last;
        }
        const bool isRange = last - i > 1;
        last = isRange ? last : i;
        text += (text.empty() ? "" : ",") + std::to_string(positions[i] + 1);
        if (isRange) {
            text += '-' + std::to_string(positions[last] + 1);
        }
        i = last + 1;
    }
    return text;
}
