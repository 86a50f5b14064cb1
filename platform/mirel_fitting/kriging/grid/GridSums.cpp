#include <mirel_fitting/kriging/grid/GridSums.h>

#include <mirel_fitting/kriging/grid/AxisGroupRows.h>
#include <mirel_fitting/machine/AlignedBuffer.h>
#include <mirel_fitting/machine/OrderedChunks.h>
#include <mirel_fitting/numerics/Picked.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/** The model with its cases in ascending order of the input that varies along the axis. */
FittedKriging sortedAlong(const ProductGrid::Axis& axis, FittedKriging model)
{
    const auto& inputs = model.inputs;
    const auto isOnAxis = [&](std::size_t column) {
        return std::find(axis.columns.begin(), axis.columns.end(), column) != axis.columns.end();
    };
    const auto input = static_cast<std::size_t>(
        std::find_if(inputs.begin(), inputs.end(), isOnAxis) - inputs.begin());
    const double* coordinates = model.correlation->scaledCases(input);
    std::vector<std::size_t> order(model.weights.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [coordinates](std::size_t a, std::size_t b) {
        return coordinates[a] != coordinates[b] ? coordinates[a] < coordinates[b] : a < b;
    });

    model.weights = picked(model.weights, order);
    model.correlation =
        std::make_shared<const MaternCorrelation>(model.correlation->reordered(order));
    return model;
}

} // namespace

/** Computes the results of a tile of combinations of the other axes and a range of panels of the
 *  axis, in their place. */
class GridSums::Worker
{
public:
    Worker(const GridSums& grid, double* result)
        : grid(grid), sums(*grid.sums), axis(grid.separated.fast.axes[0]),
          others(grid.separated.slow), rows(others, *grid.model.correlation, grid.tileSize),
          states(AlignedBuffer::uninitialised(grid.tileSize * sums.stateSize())),
          values(AlignedBuffer::uninitialised(grid.tileSize * valuesAtATime)), result(result)
    {}

    void compute(std::size_t chunk)
    {
        const std::size_t ranges = grid.panelRanges();
        const std::size_t firstRow = chunk / ranges * grid.tileSize;
        const std::size_t rowCount = std::min(grid.tileSize, others.size - firstRow);
        if (firstRow != summedTile) {
            sumMoments(firstRow, rowCount);
            summedTile = firstRow;
        }
        const std::size_t firstPanel = chunk % ranges * grid.panelsPerRange;
        if (firstPanel != tabulatedRange) {
            tabulate(firstPanel);
            tabulatedRange = firstPanel;
        }
        std::size_t firstValue = firstPanel * AxisSums::panelSize;
        for (const AxisSums::Table& table : tables) {
            sums.evaluate(table, rows.data(), rows.stride(), states.data(), rowCount, values.data(),
                          valuesAtATime);
            store(firstRow, rowCount, firstValue);
            firstValue += valuesAtATime;
        }
        if (firstPanel == 0) {
            fillWithNaN(firstRow, rowCount);
        }
    }

private:
    static constexpr std::size_t valuesAtATime = 8 * AxisSums::panelSize;

    void sumMoments(std::size_t firstRow, std::size_t rowCount)
    {
        rows.fill(firstRow, rowCount);
        // Polynomials q_0 and q_2 of SeparatedGrid; the axis has one input.
        const std::size_t cases = grid.model.weights.size();
        const bool hasSlope = others.trend.size() > 2;
        std::vector<AxisSums::Trend> trends(rowCount);
        for (std::size_t i = 0; i < rowCount; ++i) {
            const double* trend = rows.data() + i * rows.stride() + cases;
            trends[i] = {trend[0], hasSlope ? trend[2] : 0.0};
        }
        sums.sumMoments(rows.data(), rows.stride(), trends, states.data());
    }

    void tabulate(std::size_t firstPanel)
    {
        constexpr std::size_t panels = valuesAtATime / AxisSums::panelSize;
        const std::size_t lastPanel = std::min(firstPanel + grid.panelsPerRange, sums.panels());
        tables.clear();
        for (std::size_t p = firstPanel; p < lastPanel; p += panels) {
            tables.emplace_back(sums, p, std::min(panels, lastPanel - p));
        }
    }

    /** Where the values of a combination of the other axes begin in the result. */
    double* startOf(std::size_t row) const
    {
        const std::size_t stride = grid.axisStride;
        return result + row % stride + row / stride * stride * axis.size;
    }

    void store(std::size_t firstRow, std::size_t rowCount, std::size_t firstValue)
    {
        const std::size_t count = std::min(valuesAtATime, grid.positions.size() - firstValue);
        const std::size_t* positions = grid.positions.data() + firstValue;
        for (std::size_t i = 0; i < rowCount; ++i) {
            const double* row = values.data() + i * valuesAtATime;
            double* target = startOf(firstRow + i);
            for (std::size_t v = 0; v < count; ++v) {
                target[positions[v] * grid.axisStride] =
                    grid.model.offset + grid.model.scale * row[v];
            }
        }
    }

    void fillWithNaN(std::size_t firstRow, std::size_t rowCount)
    {
        for (std::size_t v = 0; v < axis.size; ++v) {
            for (std::size_t i = 0; !axis.isFinite[v] && i < rowCount; ++i) {
                startOf(firstRow + i)[v * grid.axisStride] = notANumber;
            }
        }
    }

    const GridSums& grid;
    const AxisSums& sums;
    const GridAxis& axis;
    const AxisGroup& others;
    AxisGroupRows rows;
    AlignedBuffer states;
    AlignedBuffer values;
    std::vector<AxisSums::Table> tables;
    std::size_t summedTile = std::numeric_limits<std::size_t>::max();
    std::size_t tabulatedRange = std::numeric_limits<std::size_t>::max();
    double* result;
};

GridSums::GridSums(const FittedKriging& given, const std::vector<double*>& columns,
                   const ProductGrid& grid, std::size_t axis)
    : model(sortedAlong(grid.axes()[axis], given)), separated(model, columns, grid, {axis}),
      axisStride(grid.axes()[axis].stride)
{
    prepareSums();
}

void GridSums::prepareSums()
{
    // Weights and states of a tile, and the tables of a range, stay in the second-level cache.
    constexpr std::size_t tileBytes = std::size_t{512} << 10;
    constexpr std::size_t rangeBytes = std::size_t{1} << 20;
    constexpr std::size_t minTile = 8;
    constexpr std::size_t maxTile = 64;

    const MaternCorrelation& correlation = *model.correlation;
    const GridAxis& axis = separated.fast.axes[0];
    const std::size_t input = axis.inputs[0];
    std::vector<double> coordinates(axis.size);
    correlation.scale(input, axis.coordinates[0].data(), axis.size, coordinates.data());
    for (std::size_t v = 0; v < axis.size; ++v) {
        if (axis.isFinite[v]) {
            positions.push_back(v);
        }
    }
    if (positions.empty()) {
        return;
    }
    std::stable_sort(positions.begin(), positions.end(),
                     [&](std::size_t a, std::size_t b) { return coordinates[a] < coordinates[b]; });

    AxisSums::Axis summed;
    const double* cases = correlation.scaledCases(input);
    summed.cases.assign(cases, cases + correlation.cases());
    summed.values = picked(coordinates, positions);
    summed.offsets = picked(separated.fast.trend[1].along(axis.size), positions);
    if (separated.fast.trend.size() > 2) {
        summed.slopes = picked(separated.fast.trend[2].along(axis.size), positions);
    }
    sums = std::make_unique<AxisSums>(std::move(summed));

    const std::size_t perRow =
        (correlation.correlationStride() + sums->stateSize()) * sizeof(double);
    tileSize = std::clamp(tileBytes / perRow / minTile * minTile, minTile, maxTile);
    const std::size_t perPanel = sums->largestPanelTable() * sizeof(double);
    panelsPerRange = std::max<std::size_t>(rangeBytes / perPanel / 8 * 8, 8);
}

std::size_t GridSums::panelRanges() const
{
    return (sums->panels() + panelsPerRange - 1) / panelsPerRange;
}

void GridSums::predict(int threads, double* result) const
{
    if (separated.isNowhereFinite || !sums) {
        std::fill_n(result, separated.fast.size * separated.slow.size, notANumber);
        return;
    }
    const std::size_t tiles = (separated.slow.size + tileSize - 1) / tileSize;
    OrderedChunks::runEach(tiles * panelRanges(), threads, [&] {
        const auto worker = std::make_shared<Worker>(*this, result);
        return [worker](std::size_t chunk) { worker->compute(chunk); };
    });
}
