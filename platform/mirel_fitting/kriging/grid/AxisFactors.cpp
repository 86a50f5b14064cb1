#include <mirel_fitting/kriging/grid/AxisFactors.h>

#include <mirel_fitting/kriging/correlation/MaternKernels.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr std::size_t momentCount = 3;

/** Correlations beyond are 0 to every digit. */
double distance(double a, double b)
{
    return std::min(std::fabs(a - b), MaternKernels::farthest);
}

double correlation(double z)
{
    return (1.0 + z * (1.0 + z / 3.0)) * std::exp(-z);
}

std::size_t columnsOfSide(std::size_t values)
{
    return std::min(values, momentCount);
}

} // namespace

AxisFactors::AxisFactors(const std::vector<double>& values, const std::vector<char>& isFinite,
                         const std::vector<double>& cases)
{
    std::vector<Value> ascending;
    for (std::size_t v = 0; v < values.size(); ++v) {
        if (isFinite[v]) {
            ascending.push_back({values[v], v});
        }
    }
    std::sort(ascending.begin(), ascending.end(), [](const Value& a, const Value& b) {
        return a.x != b.x ? a.x < b.x : a.position < b.position;
    });

    std::size_t firstCase = 0;
    for (std::size_t below = 0; below <= ascending.size(); ++below) {
        const auto last = below == ascending.size()
                              ? cases.end()
                              : std::lower_bound(cases.begin(), cases.end(), ascending[below].x);
        const auto lastCase = static_cast<std::size_t>(last - cases.begin());
        if (lastCase > firstCase) {
            addGroup(ascending, below, cases, firstCase, lastCase);
            firstCase = lastCase;
        }
    }

    ofValues.assign(values.size() * columnCount, 0.0);
    for (const ValueFactor& entry : collected) {
        ofValues[entry.position * columnCount + entry.column] = entry.factor;
    }
    collected.clear();
}

double AxisFactors::factorsPerCase(std::size_t values)
{
    double sum = 0.0;
    for (std::size_t below = 1; below < values; ++below) {
        sum += static_cast<double>(columnsOfSide(below) + columnsOfSide(values - below));
    }
    return values > 1 ? sum / static_cast<double>(values - 1) : 1.0;
}

double AxisFactors::columnsFor(std::size_t values)
{
    return factorsPerCase(values) * static_cast<double>(values - 1) +
           2.0 * static_cast<double>(columnsOfSide(values));
}

/** Of the cases with `below` values below them. */
void AxisFactors::addGroup(const std::vector<Value>& ascending, std::size_t below,
                           const std::vector<double>& cases, std::size_t firstCase,
                           std::size_t lastCase)
{
    const auto middle = ascending.begin() + static_cast<std::ptrdiff_t>(below);
    Group group{firstCase, lastCase, columnCount, 0, {}};
    addSide(Side(std::make_reverse_iterator(middle), ascending.rend()), cases, group);
    addSide(Side(middle, ascending.end()), cases, group);
    columnCount += group.columns;
    groupList.push_back(std::move(group));
}

void AxisFactors::addSide(const Side& side, const std::vector<double>& cases, Group& group)
{
    const std::size_t firstColumn = group.firstColumn + group.columns;
    group.columns += columnsOfSide(side.size());
    if (side.size() <= momentCount) {
        for (std::size_t k = 0; k < side.size(); ++k) {
            collected.push_back({side[k].position, firstColumn + k, 1.0});
            for (std::size_t j = group.firstCase; j < group.lastCase; ++j) {
                group.caseFactors.push_back(correlation(distance(side[k].x, cases[j])));
            }
        }
        return;
    }
    const double anchor = side.front().x;
    for (const Value& value : side) {
        const double u = distance(value.x, anchor);
        const double decay = std::exp(-u);
        collected.push_back({value.position, firstColumn, (1.0 + u * (1.0 + u / 3.0)) * decay});
        collected.push_back({value.position, firstColumn + 1, (1.0 + u * (2.0 / 3.0)) * decay});
        collected.push_back({value.position, firstColumn + 2, decay / 3.0});
    }
    for (std::size_t q = 0; q < momentCount; ++q) {
        for (std::size_t j = group.firstCase; j < group.lastCase; ++j) {
            const double t = distance(cases[j], anchor);
            const double power = q == 0 ? 1.0 : q == 1 ? t : t * t;
            group.caseFactors.push_back(power * std::exp(-t));
        }
    }
}
