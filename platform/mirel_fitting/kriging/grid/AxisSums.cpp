#include <mirel_fitting/kriging/grid/AxisSums.h>

#include <mirel_fitting/kriging/correlation/MaternKernels.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

// A state: the moments of the cases on the right, of those on the left, and the trend.
constexpr std::size_t onRight = 0;
constexpr std::size_t onLeft = 3;
constexpr std::size_t trend = 6;
constexpr std::size_t momentCount = 3;
constexpr std::size_t leftAndTrend = 5;

/** Correlations beyond are 0 to every digit. */
double capped(double distance)
{
    return std::min(distance, MaternKernels::farthest);
}

std::size_t panelsFor(std::size_t values)
{
    return (values + AxisSums::panelSize - 1) / AxisSums::panelSize;
}

/** Balances the cost of carrying moments, two steps of laneCount columns per block, against that of
 *  the cases inside of a block, which each of its panels sums one by one. Blocks of fewer than two
 *  cases gain nothing. */
std::size_t blockCountFor(std::size_t cases, std::size_t panels)
{
    const double best = std::sqrt(static_cast<double>(panels) * static_cast<double>(cases) /
                                  static_cast<double>(laneCount));
    const std::size_t most = std::min(panels, std::max<std::size_t>(cases / 2, 1));
    return std::clamp<std::size_t>(static_cast<std::size_t>(best), 1, most);
}

/** A product of a panel, a matrix of laneCount rows, with a matrix. Both are stored by columns. */
struct PanelProduct
{
    const double* left;
    std::size_t leftStride;
    const double* right;
    std::size_t rightStride;
    std::size_t count; ///< columns of the left, rows of the right matrix
};

template <std::size_t columns>
SURROGATE_LANE_OPERATION addTo(const PanelProduct* products, std::size_t productCount,
                               const double* start, std::size_t startStride, double* result,
                               std::size_t stride, std::size_t firstColumn)
{
    Lanes total[columns];
    for (std::size_t i = 0; i < columns; ++i) {
        loadLanes(start + (firstColumn + i) * startStride, total[i]);
    }
    for (std::size_t p = 0; p < productCount; ++p) {
        const PanelProduct& product = products[p];
        const double* right = product.right + firstColumn * product.rightStride;
        for (std::size_t k = 0; k < product.count; ++k) {
            Lanes left;
            loadLanes(product.left + k * product.leftStride, left);
            for (std::size_t i = 0; i < columns; ++i) {
                total[i] += left * right[i * product.rightStride + k];
            }
        }
    }
    for (std::size_t i = 0; i < columns; ++i) {
        storeLanes(total[i], result + (firstColumn + i) * stride);
    }
}

/**
 * result[i * stride + r] = start[i * startStride + r] + sum over the products, over k, of
 * left[k * leftStride + r] * right[i * rightStride + k], for r < laneCount and i < columns. The
 * bits of a column do not depend on the others. `start` and `result` may be the same. Faster
 * than BLAS, which is made for larger matrices.
 */
SURROGATE_SIMD void addPanelProducts(const PanelProduct* products, std::size_t productCount,
                                     const double* start, std::size_t startStride,
                                     std::size_t columns, double* result, std::size_t stride)
{
    // Eight sums hide the latency of an addition.
    constexpr std::size_t columnsAtOnce = 8;
    std::size_t i = 0;
    for (; i + columnsAtOnce <= columns; i += columnsAtOnce) {
        addTo<columnsAtOnce>(products, productCount, start, startStride, result, stride, i);
    }
    for (; i < columns; ++i) {
        addTo<1>(products, productCount, start, startStride, result, stride, i);
    }
}

} // namespace

AxisSums::AxisSums(Axis givenAxis)
    : axis(std::move(givenAxis)), panelCount(panelsFor(axis.values.size())),
      values(panelCount * panelSize), offsets(panelCount * panelSize)
{
    axis.slopes.resize(panelCount * panelSize, 0.0);
    std::copy(axis.values.begin(), axis.values.end(), values.data());
    std::fill(values.data() + axis.values.size(), values.data() + panelCount * panelSize,
              axis.values.back());
    std::copy(axis.offsets.begin(), axis.offsets.end(), offsets.data());
    placeBlocks();
    computeMoments();
    computeShifts();
}

double AxisSums::costPerRow(std::size_t cases, std::size_t values)
{
    const std::size_t panels = panelsFor(values);
    const std::size_t blockCount = blockCountFor(cases, panels);
    const double perPanel =
        static_cast<double>(cases) / static_cast<double>(blockCount) + laneCount + 4;
    return static_cast<double>(cases) + 12.0 * static_cast<double>(blockCount) +
           static_cast<double>(panels) * perPanel;
}

void AxisSums::placeBlocks()
{
    const std::size_t count = blockCountFor(axis.cases.size(), panelCount);
    const auto boundAt = [this](double anchor) {
        return static_cast<std::size_t>(
            std::upper_bound(axis.cases.begin(), axis.cases.end(), anchor) - axis.cases.begin());
    };
    bounds.push_back(0);
    for (std::size_t b = 0; b < count; ++b) {
        const std::size_t firstPanel = b * panelCount / count;
        anchors.push_back(values.data()[firstPanel * panelSize]);
        bounds.push_back(boundAt(anchors.back()));
        blocks.push_back({firstPanel, (b + 1) * panelCount / count, 0, 0});
    }
    anchors.push_back(axis.values.back());
    bounds.push_back(boundAt(anchors.back()));
    bounds.push_back(axis.cases.size());
    for (std::size_t b = 0; b < count; ++b) {
        blocks[b].firstCase = bounds[b + 1];
        blocks[b].lastCase = bounds[b + 2];
    }
}

/** The moments of each case: about the next anchor, for points to its right, and about the one
 *  before, for points to its left. */
void AxisSums::computeMoments()
{
    moments = AlignedBuffer(axis.cases.size() * laneCount);
    for (std::size_t h = 0; h + 1 < bounds.size(); ++h) {
        for (std::size_t j = bounds[h]; j < bounds[h + 1]; ++j) {
            double* moment = moments.data() + j * laneCount;
            const auto add = [&](std::size_t lane, double distance) {
                const double t = capped(distance);
                const double decay = std::exp(-t);
                moment[lane] = decay;
                moment[lane + 1] = t * decay;
                moment[lane + 2] = t * t * decay;
            };
            if (h < anchors.size()) {
                add(onLeft, anchors[h] - axis.cases[j]);
            }
            if (h > 0) {
                add(onRight, axis.cases[j] - anchors[h - 1]);
            }
        }
    }
}

/**
 * Moments about an anchor that is d further away: m_q becomes the sum of the binomials times
 * d^(q - p) m_p, times exp(-d). Five columns, for the moments on the left and the trend, then three
 * for those on the right, of the step from each location to the next.
 */
void AxisSums::computeShifts()
{
    constexpr std::size_t columns = leftAndTrend + momentCount;
    const std::size_t steps = bounds.size() - 1;
    shifts = AlignedBuffer(steps * columns * laneCount);
    // The rounding of the factors must not accumulate: each compensates for those before it.
    long double missing = 0.0L;
    for (std::size_t h = 0; h < steps; ++h) {
        double* shift = shifts.data() + h * columns * laneCount;
        for (std::size_t q = 0; q < 2; ++q) {
            shift[(momentCount + q) * laneCount + trend + q] = 1.0;
        }
        if (h == 0 || h >= anchors.size()) {
            continue; // nothing lies beyond
        }
        const double d = capped(anchors[h] - anchors[h - 1]);
        const double decay = static_cast<double>(std::exp(missing - d));
        missing = decay > 0.0 ? missing - d - std::log(static_cast<long double>(decay)) : 0.0L;
        const double columnsOfMoments[momentCount][momentCount] = {
            {decay, d * decay, d * d * decay}, {0.0, decay, 2.0 * d * decay}, {0.0, 0.0, decay}};
        for (std::size_t q = 0; q < momentCount; ++q) {
            std::copy_n(columnsOfMoments[q], momentCount, shift + q * laneCount + onLeft);
            std::copy_n(columnsOfMoments[q], momentCount,
                        shift + (leftAndTrend + q) * laneCount + onRight);
        }
    }
}

void AxisSums::sumMoments(const double* weights, std::size_t stride,
                          const std::vector<Trend>& trends, double* states) const
{
    constexpr std::size_t shiftSize = (leftAndTrend + momentCount) * laneCount;
    const std::size_t rows = trends.size();
    const AlignedBuffer zeros(laneCount);
    for (std::size_t i = 0; i < rows; ++i) {
        double* state = states + i * stateSize();
        std::fill_n(state, laneCount, 0.0);
        state[trend] = trends[i].constant;
        state[trend + 1] = trends[i].slope;
    }

    // From left to right: moments on the left of all cases, on the right of those of the location.
    // Then from right to left: those on the right of all cases.
    const std::size_t locations = bounds.size() - 1;
    for (std::size_t h = 0; h < locations; ++h) {
        double* state = states + h * laneCount;
        const PanelProduct products[] = {
            {shifts.data() + h * shiftSize, laneCount, state + onLeft, stateSize(), leftAndTrend},
            {moments.data() + bounds[h] * laneCount, laneCount, weights + bounds[h], stride,
             bounds[h + 1] - bounds[h]}};
        addPanelProducts(products, 2, zeros.data(), 0, rows, state + laneCount, stateSize());
    }
    for (std::size_t h = anchors.size() - 1; h >= 2; --h) {
        double* state = states + (h + 1) * laneCount;
        const PanelProduct product = {shifts.data() + h * shiftSize + leftAndTrend * laneCount,
                                      laneCount, state + laneCount + onRight, stateSize(),
                                      momentCount};
        addPanelProducts(&product, 1, state, stateSize(), rows, state, stateSize());
    }
}

std::size_t AxisSums::tableSize(const Block& block, std::size_t panels) const
{
    return (laneCount + block.lastCase - block.firstCase) * panels * panelSize;
}

std::size_t AxisSums::largestPanelTable() const
{
    std::size_t largest = 0;
    for (const Block& block : blocks) {
        largest = std::max(largest, tableSize(block, 1));
    }
    return largest;
}

/** By rows of as many numbers as there are values: moments on the right, moments on the left,
 * trend, cases. */
void AxisSums::tabulate(const Block& block, std::size_t firstPanel, std::size_t panels,
                        double* table) const
{
    const auto number = static_cast<std::size_t>(&block - blocks.data());
    const std::size_t count = panels * panelSize;
    const double* x = values.data() + firstPanel * panelSize;
    const MaternKernels::Points points{x, count, count};

    const auto tabulateAnchor = [&](double anchor, double* rows) {
        MaternKernels::correlate(points, {&anchor, 1, 1}, rows, count);
        for (std::size_t v = 0; v < count; ++v) {
            const double u = capped(std::fabs(x[v] - anchor));
            const double unit = rows[v] / (3.0 + u * (3.0 + u));
            rows[count + v] = unit * (3.0 + 2.0 * u);
            rows[2 * count + v] = unit;
        }
    };
    tabulateAnchor(anchors[number + 1], table + onRight * count);
    tabulateAnchor(anchors[number], table + onLeft * count);
    std::fill_n(table + trend * count, count, 1.0);
    std::copy_n(axis.slopes.data() + firstPanel * panelSize, count, table + (trend + 1) * count);
    MaternKernels::correlate(
        points, {axis.cases.data() + block.firstCase, 1, block.lastCase - block.firstCase},
        table + laneCount * count, count);
}

AxisSums::Table::Table(const AxisSums& sums, std::size_t firstPanel, std::size_t panelCount)
{
    const std::size_t lastPanel = firstPanel + panelCount;
    std::size_t position = 0;
    auto block = std::partition_point(
        sums.blocks.begin(), sums.blocks.end(),
        [firstPanel](const Block& candidate) { return candidate.lastPanel <= firstPanel; });
    for (std::size_t p = firstPanel; p < lastPanel; ++block) {
        const std::size_t panels = std::min(lastPanel, block->lastPanel) - p;
        stretches.push_back(
            {static_cast<std::size_t>(block - sums.blocks.begin()), p, panels, position});
        position += sums.tableSize(*block, panels);
        p += panels;
    }
    buffer = AlignedBuffer::uninitialised(position);
    for (const Stretch& stretch : stretches) {
        sums.tabulate(sums.blocks[stretch.block], stretch.firstPanel, stretch.panels,
                      buffer.data() + stretch.position);
    }
}

void AxisSums::evaluate(const Table& table, const double* weights, std::size_t stride,
                        const double* states, std::size_t rows, double* result,
                        std::size_t resultStride) const
{
    const std::size_t first = table.stretches.front().firstPanel;
    for (const Table::Stretch& stretch : table.stretches) {
        const Block& block = blocks[stretch.block];
        const std::size_t leftStride = stretch.panels * panelSize;
        const double* state = states + (stretch.block + 1) * laneCount;
        for (std::size_t p = 0; p < stretch.panels; ++p) {
            const double* left = table.buffer.data() + stretch.position + p * panelSize;
            const PanelProduct products[] = {
                {left + onRight * leftStride, leftStride, state + 2 * laneCount + onRight,
                 stateSize(), momentCount},
                {left + onLeft * leftStride, leftStride, state + onLeft, stateSize(), leftAndTrend},
                {left + laneCount * leftStride, leftStride, weights + block.firstCase, stride,
                 block.lastCase - block.firstCase}};
            const std::size_t panel = stretch.firstPanel + p;
            addPanelProducts(products, 3, offsets.data() + panel * panelSize, 0, rows,
                             result + (panel - first) * panelSize, resultStride);
        }
    }
}
