#include <mirel_fitting/KrigingGrid.h>

#include <mirel_fitting/AlignedBuffer.h>
#include <mirel_fitting/OrderedChunks.h>
#include <mirel_fitting/SingleThreadedBlas.h>
#include <mirel_fitting/ThreadCount.h>

#include <cblas.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t largestTable = std::size_t{16} << 20; // bytes, of one axis
constexpr std::size_t largestTile = std::size_t{4} << 20;   // bytes

/** How many of the axes, from the fastest, form the fast group: both groups have as few
 *  combinations as possible, since each is a row of correlations to be computed. */
std::size_t bestSplit(const std::vector<ProductGrid::Axis>& axes, std::size_t rows)
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

} // namespace

/** The values of one axis, and their correlations with the cases. */
class KrigingGrid::Axis
{
public:
    Axis(const KrigingPredictor::Parts& parts, const std::vector<double*>& columns,
         std::size_t firstRow, const ProductGrid::Axis& axis, std::size_t strideInGroup)
        : size(axis.size), stride(strideInGroup), isFinite(axis.size, 1)
    {
        for (const std::size_t column : axis.columns) {
            for (std::size_t v = 0; v < size; ++v) {
                const double value = columns[column][firstRow + v * axis.stride];
                isFinite[v] = isFinite[v] && std::isfinite(value);
            }
        }
        for (std::size_t k = 0; k < parts.inputs.size(); ++k) {
            const auto& on = axis.columns;
            if (std::find(on.begin(), on.end(), parts.inputs[k]) == on.end()) {
                continue;
            }
            inputs.push_back(k);
            std::vector<double> values(size, 0.0);
            for (std::size_t v = 0; v < size; ++v) {
                if (isFinite[v]) {
                    const std::size_t row = firstRow + v * axis.stride;
                    values[v] = parts.coordinate(k, columns[parts.inputs[k]][row]);
                }
            }
            coordinates.push_back(std::move(values));
        }
        const std::size_t rowSize = parts.correlation->correlationStride();
        if (!inputs.empty() && size <= largestTable / sizeof(double) / rowSize) {
            table = AlignedBuffer::uninitialised(size * rowSize);
            correlate(*parts.correlation, 0, size, table.data());
            hasTable = true;
        }
    }

    /** Rows of correlations for `count` values from `first` on; of some kilobytes beside. */
    void correlate(const MaternCorrelation& correlation, std::size_t first, std::size_t count,
                   double* rows) const
    {
        constexpr std::size_t valuesAtATime = 64;
        const std::size_t rowSize = correlation.correlationStride();
        AlignedBuffer factor(inputs.size() > 1 ? valuesAtATime * rowSize : 0);
        for (std::size_t v = 0; v < count; v += valuesAtATime) {
            const std::size_t values = std::min(valuesAtATime, count - v);
            double* target = rows + v * rowSize;
            correlation.correlateInput(inputs[0], coordinates[0].data() + first + v, values,
                                       target);
            for (std::size_t q = 1; q < inputs.size(); ++q) {
                correlation.correlateInput(inputs[q], coordinates[q].data() + first + v, values,
                                           factor.data());
                for (std::size_t i = 0; i < values * rowSize; ++i) {
                    target[i] *= factor.data()[i];
                }
            }
        }
    }

    std::size_t valueAt(std::size_t combination) const { return combination / stride % size; }

    std::size_t size;
    std::size_t stride; // in combinations of its group
    std::vector<char> isFinite;
    std::vector<std::size_t> inputs;              // that vary along it, as indices of the parts
    std::vector<std::vector<double>> coordinates; // of those, one per value
    bool hasTable = false;
    AlignedBuffer table;
};

/**
 * One of the two groups of axes. Each of its combinations is a row: correlations with the cases,
 * then what the trend takes from the group.
 */
class KrigingGrid::Side
{
public:
    Side(const KrigingPredictor::Parts& parts, const std::vector<double*>& columns,
         const ProductGrid& grid, std::size_t firstAxis, std::size_t lastAxis)
    {
        for (std::size_t a = firstAxis; a < lastAxis; ++a) {
            axes.emplace_back(parts, columns, grid.firstRow(), grid.axes()[a], size);
            size *= grid.axes()[a].size;
        }
    }

    struct Place
    {
        const Axis* axis;
        std::size_t index; // of the input on its axis
        double centred(std::size_t combination) const
        {
            return KrigingTrend::centred(axis->coordinates[index][axis->valueAt(combination)]);
        }
    };
    /** Where the input varies; no axis if it does not vary on this side. */
    Place placeOf(std::size_t input) const
    {
        for (const Axis& axis : axes) {
            const auto found = std::find(axis.inputs.begin(), axis.inputs.end(), input);
            if (found != axis.inputs.end()) {
                return {&axis, static_cast<std::size_t>(found - axis.inputs.begin())};
            }
        }
        return {nullptr, 0};
    }

    bool isFinite(std::size_t combination) const
    {
        return std::all_of(axes.begin(), axes.end(), [combination](const Axis& axis) {
            return axis.isFinite[axis.valueAt(combination)];
        });
    }

    /** The sum of some terms of the trend, of which only factors on this side remain. */
    struct Polynomial
    {
        struct Term
        {
            double coefficient;
            std::vector<Place> factors;
        };
        std::vector<Term> terms;

        double at(std::size_t combination) const
        {
            double sum = 0.0;
            for (const Term& term : terms) {
                double value = term.coefficient;
                for (const Place& place : term.factors) {
                    value *= place.centred(combination);
                }
                sum += value;
            }
            return sum;
        }
    };

    std::vector<Axis> axes; // from the fastest
    std::size_t size = 1;   // number of combinations
    /** What every row of correlations is multiplied with; empty: nothing. */
    std::vector<double> factors;
    /** What follows the correlations in a row. */
    std::vector<Polynomial> trend;
};

/** Rows of some consecutive combinations of a side. */
class KrigingGrid::Tile
{
public:
    Tile(const Side& side, const MaternCorrelation& correlation, std::size_t rows)
        : side(side), correlation(correlation), cases(correlation.cases()),
          tableStride(correlation.correlationStride()),
          rowStride(AlignedBuffer::padded(cases + side.trend.size())),
          buffer(AlignedBuffer::uninitialised(rows * rowStride)), shared(cases)
    {
        for (const Axis& axis : side.axes) {
            const bool isComputedHere = !axis.inputs.empty() && !axis.hasTable;
            const std::size_t values = std::min(axis.size, rows / axis.stride + 2);
            partialTables.push_back(
                {AlignedBuffer::uninitialised(isComputedHere ? values * tableStride : 0), false});
        }
    }

    void fill(std::size_t firstCombination, std::size_t count)
    {
        first = firstCombination;
        for (std::size_t a = 0; a < side.axes.size(); ++a) {
            if (!side.axes[a].inputs.empty() && !side.axes[a].hasTable) {
                computeTable(a, count);
            }
        }
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t combination = first + i;
            if (i == 0 || side.axes[0].valueAt(combination) == 0) {
                multiplySlowerAxes(combination);
            }
            double* row = buffer.data() + i * rowStride;
            const double* fastest = rowOf(0, combination);
            for (std::size_t j = 0; j < cases; ++j) {
                row[j] = fastest ? shared[j] * fastest[j] : shared[j];
            }
            for (std::size_t t = 0; t < side.trend.size(); ++t) {
                row[cases + t] = side.trend[t].at(combination);
            }
            if (!side.isFinite(combination)) {
                row[cases] = notANumber;
            }
        }
    }

    const double* rows() const { return buffer.data(); }
    std::size_t stride() const { return rowStride; }
    std::size_t columns() const { return cases + side.trend.size(); }

private:
    /** Of the values that the combinations from `first` on pass through, and no others. */
    void computeTable(std::size_t a, std::size_t count)
    {
        const Axis& axis = side.axes[a];
        double* table = partialTables[a].rows.data();
        const std::size_t passed = (first + count - 1) / axis.stride - first / axis.stride + 1;
        partialTables[a].isWhole = passed >= axis.size;
        if (partialTables[a].isWhole) {
            axis.correlate(correlation, 0, axis.size, table);
            return;
        }
        const std::size_t start = axis.valueAt(first);
        const std::size_t untilEnd = std::min(passed, axis.size - start);
        axis.correlate(correlation, start, untilEnd, table);
        axis.correlate(correlation, 0, passed - untilEnd, table + untilEnd * tableStride);
    }

    /** The correlations of the value that an axis has there; null if no input varies along it. */
    const double* rowOf(std::size_t a, std::size_t combination) const
    {
        const Axis& axis = side.axes[a];
        if (axis.inputs.empty()) {
            return nullptr;
        }
        if (axis.hasTable) {
            return axis.table.data() + axis.valueAt(combination) * tableStride;
        }
        const std::size_t row = partialTables[a].isWhole
                                    ? axis.valueAt(combination)
                                    : combination / axis.stride - first / axis.stride;
        return partialTables[a].rows.data() + row * tableStride;
    }

    void multiplySlowerAxes(std::size_t combination)
    {
        if (side.factors.empty()) {
            shared.assign(cases, 1.0);
        } else {
            shared = side.factors;
        }
        for (std::size_t a = side.axes.size(); a-- > 1;) {
            const double* row = rowOf(a, combination);
            for (std::size_t j = 0; row && j < cases; ++j) {
                shared[j] *= row[j];
            }
        }
    }

    /** Of an axis that is too long for a table of all its values. */
    struct PartialTable
    {
        AlignedBuffer rows;
        bool isWhole; // nevertheless, since all its values are passed through
    };

    const Side& side;
    const MaternCorrelation& correlation;
    std::size_t cases;
    std::size_t tableStride;
    std::size_t rowStride;
    AlignedBuffer buffer;
    std::vector<PartialTable> partialTables;
    std::vector<double> shared; // by the combinations that differ in the fastest axis only
    std::size_t first = 0;
};

/** Computes the tiles of the result; a tile of the slow side serves all of the fast side. */
class KrigingGrid::Worker : public OrderedChunks::Worker
{
public:
    Worker(const KrigingGrid& grid, double* result)
        : grid(grid), fastTile(*grid.fast, *grid.parts.correlation, grid.tileSize),
          slowTile(*grid.slow, *grid.parts.correlation, grid.tileSize), result(result)
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
                    fastTile.rows(), static_cast<int>(fastTile.stride()), slowTile.rows(),
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
    Tile fastTile;
    Tile slowTile;
    std::size_t slowTileStart = std::numeric_limits<std::size_t>::max();
    double* result;
};

bool KrigingGrid::isWorthwhile(const KrigingPredictor::Parts& parts, const ProductGrid& grid)
{
    if (!parts.correlation || grid.axes().size() < 2) {
        return false;
    }
    const std::size_t rows = grid.rowCount();
    const std::size_t fastSize = grid.axes()[bestSplit(grid.axes(), rows)].stride;
    return fastSize <= static_cast<std::size_t>(std::numeric_limits<int>::max()) &&
           fastSize + rows / fastSize <= rows - rows / 4;
}

KrigingGrid::KrigingGrid(const KrigingPredictor::Parts& parts, const std::vector<double*>& columns,
                         const ProductGrid& grid)
    : parts(parts), rows(grid.rowCount())
{
    constexpr std::size_t smallestTile = 64;
    constexpr std::size_t mostRows = 512;

    const std::size_t split = bestSplit(grid.axes(), rows);
    fast = std::make_unique<Side>(parts, columns, grid, 0, split);
    slow = std::make_unique<Side>(parts, columns, grid, split, grid.axes().size());
    tileSize = std::clamp(largestTile / sizeof(double) / parts.correlation->correlationStride(),
                          smallestTile, mostRows);

    std::vector<double> fixed(parts.inputs.size(), 0.0);
    slow->factors = parts.weights;
    AlignedBuffer factor(parts.correlation->correlationStride());
    for (const std::size_t column : grid.constantColumns()) {
        const double value = columns[column][grid.firstRow()];
        isNowhereFinite = isNowhereFinite || !std::isfinite(value);
        const auto input = std::find(parts.inputs.begin(), parts.inputs.end(), column);
        if (isNowhereFinite || input == parts.inputs.end()) {
            continue;
        }
        const auto k = static_cast<std::size_t>(input - parts.inputs.begin());
        fixed[k] = parts.coordinate(k, value);
        parts.correlation->correlateInput(k, &fixed[k], 1, factor.data());
        for (std::size_t j = 0; j < slow->factors.size(); ++j) {
            slow->factors[j] *= factor.data()[j];
        }
    }
    splitTrend(fixed);
}

KrigingGrid::~KrigingGrid() = default;

/**
 * The trend as a sum of products of a polynomial on each side: 1 times the terms that do not vary
 * on the fast side; those that vary on it only, times 1; each fast input that occurs together with
 * slow ones, times what it is multiplied with.
 */
void KrigingGrid::splitTrend(const std::vector<double>& fixed)
{
    const Side::Polynomial one{{{1.0, {}}}};
    fast->trend = {one, {}};
    slow->trend = {{}, one};
    std::vector<std::size_t> columnOf(parts.inputs.size(), 0);
    for (std::size_t t = 0; t < parts.coefficients.size(); ++t) {
        const QuadraticBasis::Term term = parts.trend->keptTerms()[t];
        Side::Polynomial::Term onFast{1.0, {}};
        Side::Polynomial::Term onSlow{parts.coefficients[t], {}};
        std::size_t fastInput = 0;
        for (const std::size_t input : {term.first, term.second}) {
            if (input == QuadraticBasis::noInput) {
                continue;
            }
            const Side::Place fastPlace = fast->placeOf(input);
            const Side::Place slowPlace = slow->placeOf(input);
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

std::size_t KrigingGrid::tilesOf(const Side& side) const
{
    return (side.size + tileSize - 1) / tileSize;
}

void KrigingGrid::predict(double* result) const
{
    // Fewer multiplications are done before another thread has started.
    constexpr std::size_t worthAThread = 10000000;

    if (isNowhereFinite) {
        std::fill_n(result, rows, notANumber);
        return;
    }
    const SingleThreadedBlas singleThreaded;
    const bool isLarge = rows > worthAThread / std::max<std::size_t>(parts.weights.size(), 1);
    OrderedChunks::run(
        tilesOf(*fast) * tilesOf(*slow), isLarge ? threadCount() : 1,
        [&] { return std::make_unique<Worker>(*this, result); }, nullptr);
}
