#include "session/cases/CaseFolds.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <numeric>
#include <queue>
#include <random>
#include <utility>

namespace {
constexpr std::uint64_t seed = 20240229;

/** Compares cases by their columns, in order. */
int compared(const std::vector<const double*>& columns, std::size_t left, std::size_t right)
{
    for (const double* const column : columns) {
        if (column[left] != column[right]) {
            return column[left] < column[right] ? -1 : 1;
        }
    }
    return 0;
}

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
    std::vector<std::size_t> order(cases);
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        const int difference = compared(columns, left, right);
        return difference != 0 ? difference < 0 : left < right;
    });
    // Groups are numbered in the order of their first cases.
    std::vector<std::size_t> firsts(cases);
    for (std::size_t i = 0; i < cases; ++i) {
        const bool isNew = i == 0 || compared(columns, order[i - 1], order[i]) != 0;
        firsts[order[i]] = isNew ? order[i] : firsts[order[i - 1]];
    }
    for (std::size_t i = 0; i < cases; ++i) {
        if (firsts[i] == i) {
            groups[i] = groupSizes.size();
            groupSizes.push_back(0);
        } else {
            groups[i] = groups[firsts[i]];
        }
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
