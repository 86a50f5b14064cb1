#include <mirel_fitting/kriging/grid/GridMethod.h>

#include <mirel_fitting/kriging/grid/AxisSums.h>

#include <algorithm>
#include <limits>

namespace {

constexpr double impossible = std::numeric_limits<double>::infinity();

// Costs in operations on eight numbers at once. The factors are fitted to the times of grids of 2
// to 8 inputs and 100 to 1000 cases with AVX-512; only their ratios matter.
constexpr double pairsAtOnce = 8.0;
constexpr double costOfExponential = 18.0;
constexpr double costOfInput = 3.0;        // one factor of a correlation
constexpr double costOfMultiplyAdd = 1.2;  // in a matrix product, its memory traffic included
constexpr double costOfRowElement = 0.5;   // multiplying the correlations of two axes
constexpr double costOfSortedCase = 150.0; // sorting, reordering and scaling one case
constexpr double costOfTabulatedValue = 20.0;

/** Correlations of all cases with one point. */
double costOfCorrelations(std::size_t cases, std::size_t inputs)
{
    return static_cast<double>(cases) *
           (costOfExponential + costOfInput * static_cast<double>(inputs)) / pairsAtOnce;
}

bool hasOneInput(const FittedKriging& model, const ProductGrid::Axis& axis)
{
    const auto& inputs = model.inputs;
    return std::count_if(axis.columns.begin(), axis.columns.end(), [&](std::size_t column) {
               return std::find(inputs.begin(), inputs.end(), column) != inputs.end();
           }) == 1;
}

} // namespace

std::size_t GridMethod::fastAxes(const ProductGrid& grid)
{
    std::size_t best = 1;
    std::size_t fewest = std::numeric_limits<std::size_t>::max();
    for (std::size_t axes = 1; axes < grid.axes().size(); ++axes) {
        const std::size_t fastSize = grid.axes()[axes].stride;
        const std::size_t combinations = fastSize + grid.rowCount() / fastSize;
        if (combinations < fewest) {
            fewest = combinations;
            best = axes;
        }
    }
    return best;
}

GridMethod GridMethod::scattered(const FittedKriging& model, const ProductGrid& grid)
{
    return {Kind::Scattered, static_cast<double>(grid.rowCount()) *
                                 costOfCorrelations(model.weights.size(), model.inputs.size())};
}

GridMethod GridMethod::matrixProduct(const FittedKriging& model, const ProductGrid& grid)
{
    // BLAS takes int.
    constexpr std::size_t largestSize = std::numeric_limits<int>::max();

    if (!model.correlation || grid.axes().size() < 2) {
        return {Kind::MatrixProduct, impossible};
    }
    const std::size_t fastSize = grid.axes()[fastAxes(grid)].stride;
    if (fastSize > largestSize) {
        return {Kind::MatrixProduct, impossible};
    }
    const std::size_t cases = model.weights.size();
    const std::size_t slowSize = grid.rowCount() / fastSize;
    const double product = static_cast<double>(grid.rowCount()) * static_cast<double>(cases) *
                           costOfMultiplyAdd / pairsAtOnce;
    const double rows = static_cast<double>(fastSize + slowSize) * costOfCorrelations(cases, 1);
    return {Kind::MatrixProduct, product + rows};
}

GridMethod GridMethod::axisSums(const FittedKriging& model, const ProductGrid& grid,
                                std::size_t axis)
{
    if (!model.correlation || axis >= grid.axes().size() ||
        !hasOneInput(model, grid.axes()[axis])) {
        return {Kind::AxisSums, impossible, axis};
    }
    const std::size_t cases = model.weights.size();
    const std::size_t values = grid.axes()[axis].size;
    double cost = costOfSortedCase * static_cast<double>(cases) +
                  costOfTabulatedValue * static_cast<double>(values);
    for (std::size_t other = 0; other < grid.axes().size(); ++other) {
        if (other != axis) {
            cost += static_cast<double>(grid.axes()[other].size) * costOfCorrelations(cases, 1);
        }
    }
    const double perRow =
        AxisSums::costPerRow(cases, values) + costOfRowElement * static_cast<double>(cases);
    return {Kind::AxisSums, cost + static_cast<double>(grid.rowCount() / values) * perRow, axis};
}

GridMethod GridMethod::cheapest(const FittedKriging& model, const ProductGrid& grid)
{
    // The estimates are rough: what they find only slightly cheaper may be slower.
    constexpr double clearlyCheaper = 0.75;

    const GridMethod point = scattered(model, grid);
    GridMethod best = matrixProduct(model, grid);
    for (std::size_t axis = 0; axis < grid.axes().size(); ++axis) {
        const GridMethod sums = axisSums(model, grid, axis);
        best = sums.cost < best.cost ? sums : best;
    }
    return best.cost < clearlyCheaper * point.cost ? best : point;
}
