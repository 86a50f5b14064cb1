#include "session/cases/CaseFolds.h"

#include <mirel_fitting/cases/ReplicatedCases.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <numeric>
#include <queue>
#include <random>
#include <utility>

namespace {
constexpr std::uint64_t seed = 20240229;

/** Fisher-Yates. std::shuffle gives another order with every standard library; the generator gives
 *  the same numbers with all of them. */
void shuffle(std::vector<std::size_t>& values)
{
    std::mt19937_64 generator(seed);
    for (std::size_t i = values.size(); i > 1; --i) {
        // The remainder of a 64-bit number is uniform up to 1 in 2^64 / i.
        std::swap(values[i - 1], values[static_cast<std::size_t>(generator() % i)]);
    }
}
} // namespace

CaseFolds::CaseFolds(const std::vector<const double*>& columns, std::size_t cases) : groups(cases)
{
    if (cases == 0) {
        return;
    }
    const ReplicatedCases copies(columns, cases);
    groupSizes.assign(cases - copies.degreesOfFreedom(), 0);
    for (std::size_t i = 0; i < cases; ++i) {
        groups[i] = copies.pointOf(i);
        ++groupSizes[groups[i]];
    }
}

std::size_t CaseFolds::max() const
{
    return groupSizes.size();
}

std::vector<std::size_t> CaseFolds::split(std::size_t folds) const
{
    std::vector<std::size_t> order(groupSizes.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    shuffle(order);

    // Each group goes to the smallest fold, the first of several.
    using Fold = std::pair<std::size_t, std::size_t>;
    std::priority_queue<Fold, std::vector<Fold>, std::greater<>> smallest;
    for (std::size_t i = 0; i < folds; ++i) {
        smallest.push({0, i});
    }
    std::vector<std::size_t> foldOfGroup(groupSizes.size());
    for (const std::size_t group : order) {
        const auto [size, fold] = smallest.top();
        smallest.pop();
        smallest.push({size + groupSizes[group], fold});
        foldOfGroup[group] = fold;
    }

    std::vector<std::size_t> result(groups.size());
    std::transform(groups.begin(), groups.end(), result.begin(),
                   [&](std::size_t group) { return foldOfGroup[group]; });
    return result;
}
