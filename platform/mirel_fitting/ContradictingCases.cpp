#include <mirel_fitting/ContradictingCases.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <vector>

namespace {

/** A number for each case: that of its group of values of which each is near the next. */
std::vector<std::uint32_t> groupsOf(const double* values, std::size_t count)
{
    std::vector<std::size_t> order(count);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return values[a] < values[b]; });
    std::vector<std::uint32_t> groups(count);
    std::uint32_t group = 0;
    for (std::size_t i = 1; i < count; ++i) {
        const double gap = values[order[i]] - values[order[i - 1]];
        group += gap > ContradictingCases::nearness() ? 1 : 0;
        groups[order[i]] = group;
    }
    return groups;
}

} // namespace

double ContradictingCases::nearness()
{
    return 1e-9;
}

std::size_t ContradictingCases::places(const KrigingData& data)
{
    constexpr double steepest = 1e-6; // of the output's deviation, over such a distance

    std::vector<std::vector<std::uint32_t>> groups;
    for (std::size_t k = 0; k < data.inputs; ++k) {
        groups.push_back(groupsOf(data.coordinates.data() + k * data.cases, data.cases));
    }
    const auto compare = [&](std::size_t a, std::size_t b) {
        for (const std::vector<std::uint32_t>& group : groups) {
            if (group[a] != group[b]) {
                return group[a] < group[b] ? -1 : 1;
            }
        }
        return 0;
    };
    std::vector<std::size_t> order(data.cases);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return compare(a, b) < 0; });

    std::size_t count = 0;
    for (std::size_t first = 0, last; first < order.size(); first = last) {
        double smallest = data.output[order[first]];
        double largest = smallest;
        for (last = first + 1; last < order.size() && compare(order[first], order[last]) == 0;
             ++last) {
            smallest = std::min(smallest, data.output[order[last]]);
            largest = std::max(largest, data.output[order[last]]);
        }
        count += largest - smallest > steepest ? 1 : 0;
    }
    return count;
}
