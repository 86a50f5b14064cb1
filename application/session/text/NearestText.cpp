#include "session/text/NearestText.h"

#include <algorithm>
#include <numeric>
#include <utility>

std::size_t editDistance(const std::string& left, const std::string& right)
{
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t(0));
    for (std::size_t i = 1; i <= left.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i);
        for (std::size_t j = 1; j <= right.size(); ++j) {
            const std::size_t replaced = diagonal + (left[i - 1] == right[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row.back();
}

std::size_t nearestText(const std::string& wanted, const std::vector<std::string>& known)
{
    const auto nearest = std::min_element(
        known.begin(), known.end(), [&](const std::string& left, const std::string& right) {
            return editDistance(wanted, left) < editDistance(wanted, right);
        });
    return static_cast<std::size_t>(nearest - known.begin());
}
