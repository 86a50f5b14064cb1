#include <mirel_fitting/kriging/grid/KrigingGridWay.h>

#include <mirel_fitting/kriging/grid/AxisFactors.h>
#include <mirel_fitting/kriging/grid/AxisSums.h>

#include <algorithm>
#include <limits>

namespace {

/** A correlation, its exponential included, of as many cases with one value. */
double costOfCorrelations(std::size_t cases, std::size_t inputs)
{
    return static_cast<double>(cases) * (18.0 + 3.0 * static_cast<double>(inputs)) / 8.0;
}

/** By the matrix product of two groups of axes. */
double costOfProduct(const KrigingPredictor::Parts& parts, const ProductGrid& grid)
{
    if (grid.axes().size() < 2) {
        return std::numeric_limits<double>::infinity();
    }
    const std::size_t rows = grid.rowCount();
    const std::size_t fastSize = grid.axes()[KrigingGridWay::bestSplit(grid.axes(), rows)].stride;
    if (fastSize > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        return std::numeric_limits<double>::infinity();
    }
    const std::size_t slowSize = rows / fastSize;
    return static_cast<double>(rows) * static_cast<double>(parts.weights.size()) * 1.2 / 8.0 +
           static_cast<double>(fastSize + slowSize) * costOfCorrelations(parts.weights.size(), 1);
}

bool hasOneInput(const KrigingPredictor::Parts& parts, const ProductGrid::Axis& axis)
{
    const auto& inputs = parts.inputs;
    return std::count_if(axis.columns.begin(), axis.columns.end(), [&](std::size_t column) {
               return std::find(inputs.begin(), inputs.end(), column) != inputs.end();
           }) == 1;
}

/** By the matrix product of the axes before one of them, condensed by that one, and those after. */
double costOfCondensing(const KrigingPredictor::Parts& parts, const ProductGrid& grid,
                        std::size_t axis)
{
    // Products of narrower matrices are slow, and the fast combinations are copied for each factor.
    constexpr std::size_t fewest = 8;
    constexpr double mostNumbers = 2e6;

    const ProductGrid::Axis& condensed = grid.axes()[axis];
    const std::size_t slowSize = grid.rowCount() / condensed.stride / condensed.size;
    const auto cases = static_cast<double>(parts.weights.size());
    const auto fastSize = static_cast<double>(condensed.stride);
    const double columns = AxisFactors::columnsFor(condensed.size);
    const double factors = AxisFactors::factorsPerCase(condensed.size) * cases;
    if (condensed.stride < fewest || slowSize < fewest || !hasOneInput(parts, condensed) ||
        factors * fastSize > mostNumbers || columns * fastSize > mostNumbers) {
        return std::numeric_limits<double>::infinity();
    }
    const double combinations = fastSize * static_cast<double>(slowSize);
    double cost = 150.0 * cases + combinations * factors * 1.4 / 8.0 +
                  static_cast<double>(grid.rowCount()) * columns * 1.4 / 8.0 +
                  (fastSize * factors + static_cast<double>(slowSize) * cases) / 2.0;
    for (std::size_t a = 0; a < grid.axes().size(); ++a) {
        cost +=
            static_cast<double>(grid.axes()[a].size) * costOfCorrelations(parts.weights.size(), 1);
    }
    return cost;
}

/** By sums along one axis. */
double costOfSums(const KrigingPredictor::Parts& parts, const ProductGrid& grid, std::size_t axis)
{
    const ProductGrid::Axis& summed = grid.axes()[axis];
    if (!hasOneInput(parts, summed)) {
        return std::numeric_limits<double>::infinity();
    }
    const std::size_t cases = parts.weights.size();
    const std::size_t others = grid.rowCount() / summed.size;
    // Sorting the cases and tabulating the axis.
    double cost = 150.0 * static_cast<double>(cases) + 20.0 * static_cast<double>(summed.size);
    for (std::size_t a = 0; a < grid.axes().size(); ++a) {
        if (a != axis) {
            cost += static_cast<double>(grid.axes()[a].size) * costOfCorrelations(cases, 1);
        }
    }
    return cost + static_cast<double>(others) *
                      (AxisSums::costPerRow(cases, summed.size) + static_cast<double>(cases) / 2.0);
}

/** Along a line. */
double costOfLine(const KrigingPredictor::Parts& parts, const ProductGrid& grid)
{
    if (grid.axes().size() != 1 || !hasOneInput(parts, grid.axes()[0])) {
        return std::numeric_limits<double>::infinity();
    }
    return 300.0 * static_cast<double>(parts.weights.size()) +
           8.0 * static_cast<double>(grid.rowCount());
}

} // namespace

std::size_t KrigingGridWay::bestSplit(const std::vector<ProductGrid::Axis>& axes, std::size_t rows)
{
    std::size_t best = 1;
    std::size_t fewest = std::numeric_limits<std::size_t>::max();
    for (std::size_t split = 1; split < axes.size(); ++split) {
        const std::size_t combinations = axes[split].stride + rows / axes[split].stride;
        if (combinations < fewest) {
            fewest = combinations;
            best = split;
        }
    }
    return best;
}

double KrigingGridWay::costOfPoints(const KrigingPredictor::Parts& parts, const ProductGrid& grid)
{
    return static_cast<double>(grid.rowCount()) *
           costOfCorrelations(parts.weights.size(), parts.inputs.size());
}

KrigingGridWay KrigingGridWay::best(const KrigingPredictor::Parts& parts, const ProductGrid& grid)
{
    if (grid.axes().size() == 1) {
        return {costOfLine(parts, grid), Method::Line, 0};
    }
    KrigingGridWay best{costOfProduct(parts, grid), Method::Product, 0};
    const auto consider = [&best](const KrigingGridWay& way) {
        best = way.cost < best.cost ? way : best;
    };
    for (std::size_t a = 0; a < grid.axes().size(); ++a) {
        consider({costOfSums(parts, grid, a), Method::Sums, a});
        consider({costOfCondensing(parts, grid, a), Method::Condensing, a});
    }
    return best;
}
