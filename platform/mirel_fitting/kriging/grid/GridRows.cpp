#include <mirel_fitting/kriging/grid/GridRows.h>

#include <mirel_fitting/machine/SimdLanes.h>

#include <algorithm>
#include <limits>

namespace {

/** result = a * b */
SURROGATE_SIMD void multiply(const double* a, const double* b, std::size_t count, double* result)
{
    for (std::size_t i = 0; i < count; ++i) {
        result[i] = a[i] * b[i];
    }
}

} // namespace

GridRows::GridRows(const GridSide& side, const MaternCorrelation& correlation, std::size_t rows)
    : side(side), correlation(correlation), cases(correlation.cases()),
      tableStride(correlation.correlationStride()),
      rowStride(AlignedBuffer::padded(cases + side.trend.size())),
      buffer(AlignedBuffer::uninitialised(rows * rowStride)), shared(cases)
{
    for (const GridAxis& axis : side.axes) {
        const bool isComputedHere = !axis.inputs.empty() && !axis.hasTable;
        const std::size_t values = std::min(axis.size, rows / axis.stride + 2);
        partialTables.push_back(
            {AlignedBuffer::uninitialised(isComputedHere ? values * tableStride : 0), false});
    }
}

void GridRows::fill(std::size_t firstCombination, std::size_t count)
{
    first = firstCombination;
    for (std::size_t a = 0; a < side.axes.size(); ++a) {
        if (!side.axes[a].inputs.empty() && !side.axes[a].hasTable) {
            computeTable(a, count);
        }
    }
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t combination = first + i;
        if (i == 0 || side.axes.empty() || side.axes[0].valueAt(combination) == 0) {
            multiplySlowerAxes(combination);
        }
        double* row = buffer.data() + i * rowStride;
        const double* fastest = side.axes.empty() ? nullptr : correlationsOf(0, combination);
        if (fastest) {
            multiply(shared.data(), fastest, cases, row);
        } else {
            std::copy_n(shared.data(), cases, row);
        }
        for (std::size_t t = 0; t < side.trend.size(); ++t) {
            row[cases + t] = side.trend[t].at(combination);
        }
        if (!side.isFinite(combination)) {
            row[cases] = std::numeric_limits<double>::quiet_NaN();
        }
    }
}

/** Of the values that the combinations from `first` on pass through, and no others. */
void GridRows::computeTable(std::size_t a, std::size_t count)
{
    const GridAxis& axis = side.axes[a];
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
const double* GridRows::correlationsOf(std::size_t a, std::size_t combination) const
{
    const GridAxis& axis = side.axes[a];
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

void GridRows::multiplySlowerAxes(std::size_t combination)
{
    if (side.factors.empty()) {
        std::fill_n(shared.data(), cases, 1.0);
    } else {
        std::copy_n(side.factors.data(), cases, shared.data());
    }
    for (std::size_t a = side.axes.size(); a-- > 1;) {
        if (const double* row = correlationsOf(a, combination)) {
            multiply(shared.data(), row, cases, shared.data());
        }
    }
}
