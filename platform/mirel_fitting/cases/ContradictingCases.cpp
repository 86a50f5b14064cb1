#include <mirel_fitting/cases/ContradictingCases.h>

#include <mirel_fitting/FitProgress.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <numeric>
#include <vector>

namespace {

/** One group number per case. The sorted values are split into groups at every gap that is wider
 *  than nearness(). */
std::vector<std::uint32_t> groupsOf(const double* values, std::size_t count)
{
    struct Entry
    {
        double value;
        std::size_t index;
    };
    std::vector<Entry> order;
    order.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        order.push_back({values[i], i});
    }
    std::sort(order.begin(), order.end(),
              [](const Entry& a, const Entry& b) { return a.value < b.value; });
    std::vector<std::uint32_t> groups(count);
    std::uint32_t group = 0;
    for (std::size_t i = 1; i < count; ++i) {
        const double gap = order[i].value - order[i - 1].value;
        group += gap > ContradictingCases::nearness() ? 1 : 0;
        groups[order[i].index] = group;
    }
    return groups;
}

/** Those of the cases that are not alone in their group. */
std::vector<std::size_t> notAlone(const std::vector<std::size_t>& cases,
                                  const std::vector<std::uint32_t>& groups)
{
    std::vector<std::uint32_t> sizes(groups.size());
    for (const std::size_t index : cases) {
        ++sizes[groups[index]];
    }
    std::vector<std::size_t> result;
    std::copy_if(cases.begin(), cases.end(), std::back_inserter(result),
                 [&](std::size_t index) { return sizes[groups[index]] > 1; });
    return result;
}

} // namespace

double ContradictingCases::nearness()
{
    return 1e-9;
}

std::size_t ContradictingCases::places(const KrigingData& data)
{
    constexpr double largestChange = 1e-6; // in standard deviations of the output

    // A case that has no neighbour along one input has none at all: most drop out soon.
    std::vector<std::size_t> order(data.cases);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::vector<std::vector<std::uint32_t>> groups;
    for (std::size_t k = 0; k < data.inputs && !order.empty(); ++k) {
        FitProgress::advance();
        groups.push_back(groupsOf(data.coordinates.data() + k * data.cases, data.cases));
        order = notAlone(order, groups.back());
    }
    const auto compare = [&](std::size_t a, std::size_t b) {
        for (const std::vector<std::uint32_t>& group : groups) {
            if (group[a] != group[b]) {
                return group[a] < group[b] ? -1 : 1;
            }
        }
        return 0;
    };
    FitProgress::advance();
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
        count += largest - smallest > largestChange ? 1 : 0;
    }
    return count;
}
