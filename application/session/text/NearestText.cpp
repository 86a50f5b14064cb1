#include "session/text/NearestText.h"

#include "session/text/AsciiText.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace {
std::size_t editDistance(const std::string& left, const std::string& right)
{
    // Three rows: an exchange of neighbours looks back to the row before the last one.
    std::vector<std::size_t> beforeLast, last, row(right.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t(0));
    for (std::size_t i = 1; i <= left.size(); ++i) {
        beforeLast = std::exchange(last, row);
        row[0] = i;
        for (std::size_t j = 1; j <= right.size(); ++j) {
            const std::size_t replaced = last[j - 1] + (left[i - 1] == right[j - 1] ? 0 : 1);
            row[j] = std::min({replaced, last[j] + 1, row[j - 1] + 1});
            if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1]) {
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
            }
        }
    }
    return row.back();
}

std::optional<std::size_t> shortestBeginningWith(const std::string& wanted,
                                                 const std::vector<std::string>& known)
{
    std::optional<std::size_t> shortest;
    for (std::size_t i = 0; i < known.size(); ++i) {
        if (beginsWith(known[i], wanted) &&
            (!shortest || known[i].size() < known[*shortest].size())) {
            shortest = i;
        }
    }
    return shortest;
}

std::optional<std::size_t> fewestEdits(const std::string& wanted,
                                       const std::vector<std::string>& known)
{
    std::optional<std::size_t> nearest;
    std::size_t fewest = wanted.size() / 3;
    for (std::size_t i = 0; i < known.size(); ++i) {
        const std::size_t edits = editDistance(wanted, known[i]);
        if (edits < fewest || (edits == fewest && !nearest)) {
            fewest = edits;
            nearest = i;
        }
    }
    return nearest;
}
} // namespace

std::optional<std::size_t> nearestText(const std::string& wanted,
                                       const std::vector<std::string>& known)
{
    if (wanted.empty()) {
        return std::nullopt;
    }
    if (const auto found = shortestBeginningWith(wanted, known)) {
        return found;
    }
    const std::string lowerWanted = lowerCaseText(wanted);
    std::vector<std::string> lowerKnown;
    lowerKnown.reserve(known.size());
    for (const std::string& text : known) {
        lowerKnown.push_back(lowerCaseText(text));
    }
    if (const auto found = shortestBeginningWith(lowerWanted, lowerKnown)) {
        return found;
    }
    return fewestEdits(lowerWanted, lowerKnown);
}
