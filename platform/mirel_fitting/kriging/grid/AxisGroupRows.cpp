#include <mirel_fitting/kriging/grid/AxisGroupRows.h>

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

AxisGroupRows::AxisGroupRows(const AxisGroup& group, const MaternCorrelation& correlation,
                             std::size_t maxRows)
    : group(group), correlation(correlation), cases(correlation.cases()),
      tableStride(correlation.correlationStride()),
      rowStride(AlignedBuffer::padded(cases + group.trend.size())),
      buffer(AlignedBuffer::uninitialised(maxRows * rowStride)), shared(cases)
{
    for (const GridAxis& axis : group.axes) {
        if (axis.inputs.empty()) {
            tables.emplace_back();
            continue;
        }
        // The values of a short axis come again in most fills.
        const bool isWhole = axis.size <= 2 * maxRows;
        const std::size_t values = isWhole ? axis.size : maxRows / axis.stride + 2;
        tables.push_back({AlignedBuffer::uninitialised(values * tableStride), isWhole});
        if (isWhole) {
            axis.correlate(correlation, 0, axis.size, tables.back().rows.data());
        }
    }
}

void AxisGroupRows::fill(std::size_t firstCombination, std::size_t count)
{
    first = firstCombination;
    for (std::size_t a = 0; a < group.axes.size(); ++a) {
        if (!group.axes[a].inputs.empty() && !tables[a].isWhole) {
            computePassed(a, count);
        }
    }
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t combination = first + i;
        if (i == 0 || group.axes.empty() || group.axes[0].valueAt(combination) == 0) {
            multiplySlowerAxes(combination);
        }
        double* row = buffer.data() + i * rowStride;
        const double* fastest = group.axes.empty() ? nullptr : correlationsOf(0, combination);
        if (fastest) {
            multiply(shared.data(), fastest, cases, row);
        } else {
            std::copy_n(shared.data(), cases, row);
        }
        for (std::size_t t = 0; t < group.trend.size(); ++t) {
            row[cases + t] = group.trend[t].at(combination);
        }
        if (!group.isFinite(combination)) {
            row[cases] = std::numeric_limits<double>::quiet_NaN();
        }
    }
}

/** The correlations of the axis' values in the `count` combinations from `first` on. */
void AxisGroupRows::computePassed(std::size_t a, std::size_t count)
{
    const GridAxis& axis = group.axes[a];
    double* table = tables[a].rows.data();
    const std::size_t passed = (first + count - 1) / axis.stride - first / axis.stride + 1;
    const std::size_t start = axis.valueAt(first);
    const std::size_t untilEnd = std::min(passed, axis.size - start);
    axis.correlate(correlation, start, untilEnd, table);
    axis.correlate(correlation, 0, passed - untilEnd, table + untilEnd * tableStride);
}

/** The correlations of the axis' value in that combination; null if no input varies along it. */
const double* AxisGroupRows::correlationsOf(std::size_t a, std::size_t combination) const
{
    const GridAxis& axis = group.axes[a];
    if (axis.inputs.empty()) {
        return nullptr;
    }
    const std::size_t row = tables[a].isWhole ? axis.valueAt(combination)
                                              : combination / axis.stride - first / axis.stride;
    return tables[a].rows.data() + row * tableStride;
}

void AxisGroupRows::multiplySlowerAxes(std::size_t combination)
{
    if (group.factors.empty()) {
        std::fill_n(shared.data(), cases, 1.0);
    } else {
        std::copy_n(group.factors.data(), cases, shared.data());
    }
    for (std::size_t a = group.axes.size(); a-- > 1;) {
        if (const double* row = correlationsOf(a, combination)) {
            multiply(shared.data(), row, cases, shared.data());
        }
    }
}
