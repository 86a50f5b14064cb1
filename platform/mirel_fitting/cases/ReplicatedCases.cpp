#include <mirel_fitting/cases/ReplicatedCases.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/cases/ColumnScale.h>

#include <boost/functional/hash.hpp>

#include <algorithm>
#include <cassert>
#include <cmath>
#include <limits>
#include <unordered_map>
#include <utility>

namespace {

/** The numbers of cells of ReplicatedCases::nearness of the range that the values lie in. */
std::vector<double> cellsOf(const double* values, std::size_t count)
{
    // Levels lie at simple fractions of the range: a cell begins at none of them.
    constexpr double offset = 0.381966;
    const ColumnScale scale(values, count);
    std::vector<double> result(count, 0.0);
    for (std::size_t k = 0; k < count && scale.halfRange() > 0.0; ++k) {
        const double fromCentre = (values[k] - scale.centre()) / (2.0 * scale.halfRange());
        result[k] = std::floor(fromCentre / ReplicatedCases::nearness + offset);
    }
    return result;
}

} // namespace

ReplicatedCases::ReplicatedCases(const std::vector<const double*>& values, std::size_t cases)
{
    constexpr std::size_t rowsPerReport = 100000; // some hundredths of a second
    assert(cases <= std::numeric_limits<std::uint32_t>::max());
    std::vector<std::vector<double>> columns;
    for (const double* const column : values) {
        columns.push_back(cellsOf(column, cases));
    }
    const auto hash = [&](std::uint32_t row) {
        std::size_t seed = 0;
        for (const std::vector<double>& column : columns) {
            boost::hash_combine(seed, column[row]);
        }
        return seed;
    };
    const auto isSame = [&](std::uint32_t a, std::uint32_t b) {
        return std::all_of(columns.begin(), columns.end(), [&](const std::vector<double>& column) {
            return column[a] == column[b];
        });
    };
    std::unordered_map<std::uint32_t, std::uint32_t, decltype(hash), decltype(isSame)> pointOfFirst(
        cases, hash, isSame); // by the first case of each point
    for (std::uint32_t row = 0; row < cases; ++row) {
        if (row % rowsPerReport == 0) {
            FitProgress::advance();
        }
        const auto point = static_cast<std::uint32_t>(pointOfFirst.size());
        pointOfCase.push_back(pointOfFirst.emplace(row, point).first->second);
    }
    points = pointOfFirst.size();
    if (points == cases) {
        *this = {};
    }
}

std::size_t ReplicatedCases::contradictions(const double* values, double largestChange) const
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    std::vector<std::pair<double, double>> extremes(points, {infinity, -infinity});
    for (std::size_t row = 0; row < pointOfCase.size(); ++row) {
        auto& [smallest, largest] = extremes[pointOfCase[row]];
        smallest = std::min(smallest, values[row]);
        largest = std::max(largest, values[row]);
    }
    return static_cast<std::size_t>(
        std::count_if(extremes.begin(), extremes.end(), [=](const auto& extreme) {
            return extreme.second - extreme.first > largestChange;
        }));
}

double ReplicatedCases::withinSquares(const double* values,
                                      const std::vector<double>& weights) const
{
    const auto weight = [&](std::size_t row) { return weights.empty() ? 1.0 : weights[row]; };
    std::vector<double> first(points);
    std::vector<double> means(points, 0.0);
    std::vector<double> counts(points, 0.0);
    for (std::size_t row = 0; row < pointOfCase.size(); ++row) {
        const std::size_t point = pointOfCase[row];
        if (counts[point] == 0.0) {
            first[point] = values[row];
        }
        // Relative to the point's first value, so that a large mean costs no digits.
        counts[point] += weight(row);
        means[point] += weight(row) * (values[row] - first[point]);
    }
    double squares = 0.0;
    for (std::size_t row = 0; row < pointOfCase.size(); ++row) {
        const std::size_t point = pointOfCase[row];
        const double deviation = values[row] - first[point] - means[point] / counts[point];
        squares += weight(row) * deviation * deviation;
    }
    return squares;
}
