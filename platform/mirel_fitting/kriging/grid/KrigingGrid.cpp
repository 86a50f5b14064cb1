#include <mirel_fitting/kriging/grid/KrigingGrid.h>

#include <mirel_fitting/ThreadCount.h>
#include <mirel_fitting/kriging/grid/AxisFactors.h>
#include <mirel_fitting/kriging/grid/AxisSums.h>
#include <mirel_fitting/kriging/grid/CondensedProduct.h>
#include <mirel_fitting/kriging/grid/GridRows.h>
#include <mirel_fitting/kriging/grid/GridSide.h>
#include <mirel_fitting/kriging/grid/KrigingGridWay.h>
#include <mirel_fitting/kriging/grid/KrigingLine.h>
#include <mirel_fitting/machine/AlignedBuffer.h>
#include <mirel_fitting/machine/OrderedChunks.h>
#include <mirel_fitting/machine/SingleThreadedBlas.h>

#include <cblas.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t largestTile = std::size_t{4} << 20; // bytes

std::vector<std::size_t> numbersFrom(std::size_t first, std::size_t last)
{
    std::vector<std::size_t> result(last - first);
    std::iota(result.begin(), result.end(), first);
    return result;
}

} // namespace

/** Computes the tiles of the result; a tile of the slow side serves all of the fast side. */
class KrigingGrid::ProductWorker : public OrderedChunks::Worker
{
public:
    ProductWorker(const KrigingGrid& grid, double* result)
        : grid(grid), fastTile(*grid.fast, grid.correlation(), grid.tileSize),
          slowTile(*grid.slow, grid.correlation(), grid.tileSize), result(result)
    {}

    void compute(std::size_t chunk) override
    {
        const std::size_t fastTiles = grid.tilesOf(*grid.fast);
        const std::size_t firstFast = chunk % fastTiles * grid.tileSize;
        const std::size_t firstSlow = chunk / fastTiles * grid.tileSize;
        const std::size_t fastCount = std::min(grid.tileSize, grid.fast->size - firstFast);
        const std::size_t slowCount = std::min(grid.tileSize, grid.slow->size - firstSlow);
        fastTile.fill(firstFast, fastCount);
        if (firstSlow != slowTileStart) {
            slowTile.fill(firstSlow, slowCount);
            slowTileStart = firstSlow;
        }

        double* corner = result + firstSlow * grid.fast->size + firstFast;
        cblas_dgemm(CblasColMajor, CblasTrans, CblasNoTrans, static_cast<int>(fastCount),
                    static_cast<int>(slowCount), static_cast<int>(fastTile.columns()), 1.0,
                    fastTile.data(), static_cast<int>(fastTile.stride()), slowTile.data(),
                    static_cast<int>(slowTile.stride()), 0.0, corner,
                    static_cast<int>(grid.fast->size));
        for (std::size_t s = 0; s < slowCount; ++s) {
            double* column = corner + s * grid.fast->size;
            for (std::size_t f = 0; f < fastCount; ++f) {
                column[f] = grid.parts.offset + grid.parts.scale * column[f];
            }
        }
    }

    // A tile is written where it belongs.
    void handOver(std::size_t) override {}

private:
    const KrigingGrid& grid;
    GridRows fastTile;
    GridRows slowTile;
    std::size_t slowTileStart = std::numeric_limits<std::size_t>::max();
    double* result;
};

/** Computes the results of a tile of slow combinations. */
class KrigingGrid::CondensingWorker : public OrderedChunks::Worker
{
public:
    CondensingWorker(const KrigingGrid& grid, double* result)
        : grid(grid), slowTile(*grid.slow, grid.correlation(), grid.tileSize),
          workspace(
              AlignedBuffer::uninitialised(grid.tileSize * grid.condensed->workspacePerRow())),
          result(result)
    {}

    void compute(std::size_t chunk) override
    {
        const std::size_t firstSlow = chunk * grid.tileSize;
        const std::size_t slowCount = std::min(grid.tileSize, grid.slow->size - firstSlow);
        slowTile.fill(firstSlow, slowCount);

        const std::size_t fastSize = grid.fast->size;
        double* target = result + firstSlow * fastSize;
        for (std::size_t s = 0; s < slowCount; ++s) {
            const double* slowTrend =
                slowTile.data() + s * slowTile.stride() + grid.correlation().cases();
            setTrend(slowTrend, target + s * fastSize);
        }
        grid.condensed->add(slowTile.data(), slowTile.stride(), slowCount, workspace.data(),
                            target);
        for (std::size_t i = 0; i < slowCount * fastSize; ++i) {
            target[i] = grid.parts.offset + grid.parts.scale * target[i];
        }
    }

    // A tile is written where it belongs.
    void handOver(std::size_t) override {}

private:
    void setTrend(const double* slowTrend, double* target) const
    {
        const std::size_t fastSize = grid.fast->size;
        const double* fastTrend = grid.fastTrend.data();
        for (std::size_t f = 0; f < fastSize; ++f) {
            target[f] = fastTrend[f] * slowTrend[0];
        }
        for (std::size_t t = 1; t < grid.fast->trend.size(); ++t) {
            fastTrend += fastSize;
            for (std::size_t f = 0; f < fastSize; ++f) {
                target[f] += fastTrend[f] * slowTrend[t];
            }
        }
    }

    const KrigingGrid& grid;
    GridRows slowTile;
    AlignedBuffer workspace;
    double* result;
};

/** Sums along one axis, for a tile of combinations of the others and a range of its panels. */
class KrigingGrid::SumWorker : public OrderedChunks::Worker
{
public:
    SumWorker(const KrigingGrid& grid, double* result)
        : grid(grid), sums(*grid.sums), rows(*grid.slow, grid.correlation(), grid.tileSize),
          states(AlignedBuffer::uninitialised(grid.tileSize * sums.stateSize())),
          values(AlignedBuffer::uninitialised(grid.tileSize * valuesAtATime)), result(result)
    {}

    void compute(std::size_t chunk) override
    {
        const std::size_t ranges = grid.panelRanges();
        const std::size_t firstRow = chunk / ranges * grid.tileSize;
        const std::size_t rowCount = std::min(grid.tileSize, grid.slow->size - firstRow);
        if (firstRow != tileStart) {
            condense(firstRow, rowCount);
            tileStart = firstRow;
        }
        const std::size_t firstPanel = chunk % ranges * grid.panelsPerRange;
        if (firstPanel != tablesStart) {
            tabulate(firstPanel);
            tablesStart = firstPanel;
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

    // Results are written where they belong.
    void handOver(std::size_t) override {}

private:
    static constexpr std::size_t valuesAtATime = 8 * AxisSums::panelSize;

    void condense(std::size_t firstRow, std::size_t rowCount)
    {
        rows.fill(firstRow, rowCount);
        // Behind the correlations: see splitTrend().
        const std::size_t cases = grid.correlation().cases();
        const bool hasSlope = grid.slow->trend.size() > 2;
        std::vector<AxisSums::Trend> trends(rowCount);
        for (std::size_t i = 0; i < rowCount; ++i) {
            const double* trend = rows.data() + i * rows.stride() + cases;
            trends[i] = {trend[0], hasSlope ? trend[2] : 0.0};
        }
        sums.condense(rows.data(), rows.stride(), trends, states.data());
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

    /** Where the row of a combination of the other axes begins in the result. */
    double* startOf(std::size_t row) const
    {
        const std::size_t stride = grid.summedStride;
        return result + row % stride + row / stride * stride * grid.fast->size;
    }

    void store(std::size_t firstRow, std::size_t rowCount, std::size_t firstValue)
    {
        const std::size_t count = std::min(valuesAtATime, grid.positions.size() - firstValue);
        const std::size_t* positions = grid.positions.data() + firstValue;
        const double offset = grid.parts.offset;
        const double scale = grid.parts.scale;
        const bool isContiguous = grid.summedStride == 1 &&
                                  positions[count - 1] - positions[0] == count - 1 &&
                                  std::is_sorted(positions, positions + count);
        if (isContiguous) {
            for (std::size_t i = 0; i < rowCount; ++i) {
                const double* row = values.data() + i * valuesAtATime;
                double* target = startOf(firstRow + i) + positions[0];
                for (std::size_t v = 0; v < count; ++v) {
                    target[v] = offset + scale * row[v];
                }
            }
            return;
        }
        // Neighbours in the result are neighbouring combinations, unless the axis is the fastest.
        for (std::size_t v = 0; v < count; ++v) {
            const std::size_t position = positions[v] * grid.summedStride;
            for (std::size_t i = 0; i < rowCount; ++i) {
                startOf(firstRow + i)[position] =
                    offset + scale * values.data()[i * valuesAtATime + v];
            }
        }
    }

    void fillWithNaN(std::size_t firstRow, std::size_t rowCount)
    {
        const std::vector<char>& isFinite = grid.fast->axes[0].isFinite;
        for (std::size_t v = 0; v < isFinite.size(); ++v) {
            for (std::size_t i = 0; !isFinite[v] && i < rowCount; ++i) {
                startOf(firstRow + i)[v * grid.summedStride] = notANumber;
            }
        }
    }

    const KrigingGrid& grid;
    const AxisSums& sums;
    GridRows rows;
    AlignedBuffer states;
    AlignedBuffer values;
    std::vector<AxisSums::Table> tables;
    std::size_t tileStart = std::numeric_limits<std::size_t>::max();
    std::size_t tablesStart = std::numeric_limits<std::size_t>::max();
    double* result;
};

bool KrigingGrid::isWorthwhile(const KrigingPredictor::Parts& parts, const ProductGrid& grid)
{
    return parts.correlation && KrigingGridWay::best(parts, grid).cost <
                                    0.75 * KrigingGridWay::costOfPoints(parts, grid);
}

KrigingGrid::KrigingGrid(const KrigingPredictor::Parts& parts, const std::vector<double*>& columns,
                         const ProductGrid& grid)
    : parts(parts), rows(grid.rowCount())
{
    using Method = KrigingGridWay::Method;
    const KrigingGridWay way = KrigingGridWay::best(parts, grid);
    const std::size_t axes = grid.axes().size();
    cost = way.cost;
    const auto makeSides = [&](const std::vector<std::size_t>& onFast,
                               const std::vector<std::size_t>& onSlow) {
        fast = std::make_unique<GridSide>(parts, columns, grid, onFast);
        slow = std::make_unique<GridSide>(parts, columns, grid, onSlow);
        slow->factors = parts.weights;
    };
    switch (way.method) {
    case Method::Line:
        line = std::make_unique<KrigingLine>(parts, columns, grid);
        return;
    case Method::Product: {
        const std::size_t split = KrigingGridWay::bestSplit(grid.axes(), rows);
        makeSides(numbersFrom(0, split), numbersFrom(split, axes));
        splitTrend(fixInputs(columns, grid));
        prepareProduct();
        return;
    }
    case Method::Sums: {
        std::vector<std::size_t> others = numbersFrom(0, axes);
        others.erase(others.begin() + static_cast<std::ptrdiff_t>(way.axis));
        makeSides({way.axis}, others);
        sortCases(fast->axes[0]);
        splitTrend(fixInputs(columns, grid));
        summedStride = grid.axes()[way.axis].stride;
        prepareSums();
        return;
    }
    case Method::Condensing:
        makeSides(numbersFrom(0, way.axis + 1), numbersFrom(way.axis + 1, axes));
        sortCases(fast->axes.back());
        splitTrend(fixInputs(columns, grid));
        prepareCondensing(GridSide(parts, columns, grid, numbersFrom(0, way.axis)));
        return;
    }
}

KrigingGrid::~KrigingGrid() = default;

const MaternCorrelation& KrigingGrid::correlation() const
{
    return sorted ? *sorted : *parts.correlation;
}

/** By the one input that varies along the axis. */
void KrigingGrid::sortCases(const GridAxis& axis)
{
    const std::size_t input = axis.inputs[0];
    const double* coordinates = parts.correlation->scaledCases(input);
    std::vector<std::size_t> order = numbersFrom(0, parts.weights.size());
    std::sort(order.begin(), order.end(), [coordinates](std::size_t a, std::size_t b) {
        return coordinates[a] != coordinates[b] ? coordinates[a] < coordinates[b] : a < b;
    });
    sorted = std::make_unique<MaternCorrelation>(parts.correlation->reordered(order));
    for (std::size_t j = 0; j < order.size(); ++j) {
        slow->factors[j] = parts.weights[order[j]];
    }
}

/** Multiplies the weights with the correlations of the inputs that do not vary, and gives the
 *  coordinates of those. */
std::vector<double> KrigingGrid::fixInputs(const std::vector<double*>& columns,
                                           const ProductGrid& grid)
{
    std::vector<double> fixed(parts.inputs.size(), 0.0);
    AlignedBuffer factor(correlation().correlationStride());
    for (const std::size_t column : grid.constantColumns()) {
        const double value = columns[column][grid.firstRow()];
        isNowhereFinite = isNowhereFinite || !std::isfinite(value);
        const auto input = std::find(parts.inputs.begin(), parts.inputs.end(), column);
        if (isNowhereFinite || input == parts.inputs.end()) {
            continue;
        }
        const auto k = static_cast<std::size_t>(input - parts.inputs.begin());
        fixed[k] = parts.coordinate(k, value);
        correlation().correlateInput(k, &fixed[k], 1, factor.data());
        for (std::size_t j = 0; j < slow->factors.size(); ++j) {
            slow->factors[j] *= factor.data()[j];
        }
    }
    return fixed;
}

void KrigingGrid::prepareProduct()
{
    constexpr std::size_t smallestTile = 64;
    constexpr std::size_t mostRows = 512;
    for (GridSide* side : {fast.get(), slow.get()}) {
        for (GridAxis& axis : side->axes) {
            axis.tabulate(correlation());
        }
    }
    tileSize = std::clamp(largestTile / sizeof(double) / correlation().correlationStride(),
                          smallestTile, mostRows);
}

void KrigingGrid::prepareSums()
{
    // Weights and moments of a tile, and the tables of a range, stay in the second-level cache.
    constexpr std::size_t tileBytes = std::size_t{512} << 10;
    constexpr std::size_t rangeBytes = std::size_t{1} << 20;
    constexpr std::size_t smallestTile = 8;
    constexpr std::size_t mostRows = 64;

    const GridAxis& axis = fast->axes[0];
    const std::size_t input = axis.inputs[0];
    AxisSums::Axis summed;
    const double* cases = correlation().scaledCases(input);
    summed.cases.assign(cases, cases + correlation().cases());

    std::vector<double> coordinates(axis.size);
    correlation().scale(input, axis.coordinates[0].data(), axis.size, coordinates.data());
    for (std::size_t v = 0; v < axis.size; ++v) {
        if (axis.isFinite[v]) {
            positions.push_back(v);
        }
    }
    const auto isBefore = [&](std::size_t a, std::size_t b) {
        return coordinates[a] < coordinates[b];
    };
    if (!std::is_sorted(positions.begin(), positions.end(), isBefore)) {
        std::stable_sort(positions.begin(), positions.end(), isBefore);
    }
    if (positions.empty()) {
        isNowhereFinite = true;
        return;
    }
    const auto inOrder = [this](const std::vector<double>& onAxis) {
        std::vector<double> result;
        result.reserve(positions.size());
        for (const std::size_t v : positions) {
            result.push_back(onAxis[v]);
        }
        return result;
    };
    summed.values = inOrder(coordinates);
    summed.offsets = inOrder(fast->trend[1].along(axis.size));
    if (fast->trend.size() > 2) {
        summed.slopes = inOrder(fast->trend[2].along(axis.size));
    }
    sums = std::make_unique<AxisSums>(std::move(summed));

    for (GridAxis& other : slow->axes) {
        if (other.size < slow->size) { // its values come back
            other.tabulate(correlation());
        }
    }
    const std::size_t perRow =
        (correlation().correlationStride() + sums->stateSize()) * sizeof(double);
    tileSize = std::clamp(tileBytes / perRow / smallestTile * smallestTile, smallestTile, mostRows);
    const std::size_t perPanel = sums->largestPanelTable() * sizeof(double);
    panelsPerRange = std::max<std::size_t>(rangeBytes / perPanel / 8 * 8, 8);
}

/** @param others the axes that are faster than the condensed one. */
void KrigingGrid::prepareCondensing(GridSide others)
{
    // What a tile works with stays in the second-level cache.
    constexpr std::size_t tileBytes = std::size_t{5} << 17;
    constexpr std::size_t smallestTile = CondensedProduct::rowsAtATime;
    constexpr std::size_t mostRows = 64;

    const GridAxis& axis = fast->axes.back();
    const std::size_t input = axis.inputs[0];
    std::vector<double> values(axis.size);
    correlation().scale(input, axis.coordinates[0].data(), axis.size, values.data());
    const double* const cases = correlation().scaledCases(input);
    const AxisFactors factors(values, axis.isFinite, {cases, cases + correlation().cases()});
    if (factors.columns() == 0) {
        isNowhereFinite = true;
        return;
    }

    for (GridSide* side : {&others, slow.get()}) {
        for (GridAxis& other : side->axes) {
            other.tabulate(correlation());
        }
    }
    others.trend = {GridSide::Polynomial{}}; // unused
    GridRows rowsOfOthers(others, correlation(), others.size);
    rowsOfOthers.fill(0, others.size);
    condensed = std::make_unique<CondensedProduct>(factors, rowsOfOthers.data(),
                                                   rowsOfOthers.stride(), others.size);

    for (const GridSide::Polynomial& polynomial : fast->trend) {
        for (std::size_t f = 0; f < fast->size; ++f) {
            fastTrend.push_back(fast->isFinite(f) ? polynomial.at(f) : notANumber);
        }
    }
    const std::size_t perRow = condensed->workspacePerRow() * sizeof(double);
    tileSize = std::clamp(tileBytes / perRow / smallestTile * smallestTile, smallestTile, mostRows);
}

std::size_t KrigingGrid::panelRanges() const
{
    return (sums->panels() + panelsPerRange - 1) / panelsPerRange;
}

/**
 * The trend as a sum of products of a polynomial on each side: 1 times the terms that do not vary
 * on the fast side; those that vary on it only, times 1; each fast input that occurs together with
 * slow ones, times what it is multiplied with.
 */
void KrigingGrid::splitTrend(const std::vector<double>& fixed)
{
    const GridSide::Polynomial one{{{1.0, {}}}};
    fast->trend = {one, {}};
    slow->trend = {{}, one};
    std::vector<std::size_t> columnOf(parts.inputs.size(), 0);
    for (std::size_t t = 0; t < parts.coefficients.size(); ++t) {
        const QuadraticBasis::Term term = parts.trend->keptTerms()[t];
        GridSide::Polynomial::Term onFast{1.0, {}};
        GridSide::Polynomial::Term onSlow{parts.coefficients[t], {}};
        std::size_t fastInput = 0;
        for (const std::size_t input : {term.first, term.second}) {
            if (input == QuadraticBasis::noInput) {
                continue;
            }
            const GridSide::Place fastPlace = fast->placeOf(input);
            const GridSide::Place slowPlace = slow->placeOf(input);
            if (fastPlace.axis) {
                onFast.factors.push_back(fastPlace);
                fastInput = input;
            } else if (slowPlace.axis) {
                onSlow.factors.push_back(slowPlace);
            } else {
                onSlow.coefficient *= KrigingTrend::centred(fixed[input]);
            }
        }
        if (onFast.factors.empty()) {
            slow->trend[0].terms.push_back(onSlow);
        } else if (onSlow.factors.empty()) {
            onFast.coefficient = onSlow.coefficient;
            fast->trend[1].terms.push_back(onFast);
        } else {
            if (columnOf[fastInput] == 0) {
                columnOf[fastInput] = fast->trend.size();
                fast->trend.push_back({{onFast}});
                slow->trend.emplace_back();
            }
            slow->trend[columnOf[fastInput]].terms.push_back(onSlow);
        }
    }
}

std::size_t KrigingGrid::tilesOf(const GridSide& side) const
{
    return (side.size + tileSize - 1) / tileSize;
}

void KrigingGrid::predict(double* result) const
{
    // Less is done before another thread has started.
    constexpr double worthAThread = 1.5e6;

    if (isNowhereFinite) {
        std::fill_n(result, rows, notANumber);
        return;
    }
    const int threads = cost > worthAThread ? threadCount() : 1;
    if (line) {
        line->predict(threads, result);
        return;
    }
    if (sums) {
        OrderedChunks::run(
            tilesOf(*slow) * panelRanges(), threads,
            [&] { return std::make_unique<SumWorker>(*this, result); }, nullptr);
        return;
    }
    const SingleThreadedBlas singleThreaded;
    if (condensed) {
        OrderedChunks::run(
            tilesOf(*slow), threads,
            [&] { return std::make_unique<CondensingWorker>(*this, result); }, nullptr);
        return;
    }
    OrderedChunks::run(
        tilesOf(*fast) * tilesOf(*slow), threads,
        [&] { return std::make_unique<ProductWorker>(*this, result); }, nullptr);
}
