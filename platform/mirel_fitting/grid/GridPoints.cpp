#include <mirel_fitting/grid/GridPoints.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace {

const double notANumber = std::numeric_limits<double>::quiet_NaN();

bool areAllFinite(const double* x, std::size_t count)
{
    // Sums of zeros, NaN as soon as one number is not finite; several, which do not wait for each
    // other.
    constexpr std::size_t atATime = 16;
    double zeros[atATime] = {};
    std::size_t i = 0;
    for (; i + atATime <= count; i += atATime) {
        for (std::size_t k = 0; k < atATime; ++k) {
            zeros[k] += 0.0 * x[i + k];
        }
    }
    for (; i < count; ++i) {
        zeros[0] += 0.0 * x[i];
    }
    return std::all_of(zeros, zeros + atATime, [](double zero) { return zero == 0.0; });
}

/** The largest number of rows after which alone x changes, as far as finite neighbours tell. */
std::size_t commonRun(const double* x, std::size_t count)
{
    std::size_t run = count;
    for (std::size_t i = 1; i < count && run > 1; ++i) {
        if (x[i - 1] != x[i] && std::isfinite(x[i - 1]) && std::isfinite(x[i])) {
            run = std::gcd(run, i);
        }
    }
    return run;
}

/** One value per run, NaN for a run without a finite one. */
std::vector<double> valuesOfRuns(const double* x, std::size_t count, std::size_t run)
{
    std::vector<double> values;
    for (std::size_t start = 0; start < count; start += run) {
        const double* found =
            std::find_if(x + start, x + start + run, [](double v) { return std::isfinite(v); });
        values.push_back(found == x + start + run ? notANumber : *found);
    }
    return values;
}

bool repeatsAfter(const std::vector<double>& values, std::size_t period)
{
    for (std::size_t i = period; i < values.size(); ++i) {
        const double difference = values[i] - values[i - period];
        if (difference != 0.0 && !std::isnan(difference)) {
            return false;
        }
    }
    return true;
}

/** Fills what is NaN from the other periods, in the shortest period that there is. */
void fillFromPeriods(std::vector<double>& values)
{
    std::size_t period = 1;
    while (values.size() % period != 0 || !repeatsAfter(values, period)) {
        ++period; // at the latest, all values are one period
    }
    for (std::size_t i = 0; i < period; ++i) {
        double known = notANumber;
        for (std::size_t j = i; j < values.size() && std::isnan(known); j += period) {
            known = values[j];
        }
        for (std::size_t j = i; j < values.size(); j += period) {
            values[j] = std::isnan(values[j]) ? known : values[j];
        }
    }
}

} // namespace

GridPoints::GridPoints(const std::vector<double*>& columns, std::size_t count)
    : pointers(columns), pointCount(count), gridList(ProductGrid::split(columns, count))
{
    if (!mayHideGrid()) {
        return;
    }
    bool isAnyFilled = false;
    for (std::size_t k = 0; k < columns.size(); ++k) {
        isAnyFilled = fill(k) || isAnyFilled;
    }
    if (isAnyFilled) {
        gridList = ProductGrid::split(pointers, count);
    }
}

/** Columns that vary together are no grid of their own: by nature, or by a cell. */
bool GridPoints::mayHideGrid() const
{
    return std::any_of(gridList.begin(), gridList.end(), [](const ProductGrid& grid) {
        return std::any_of(grid.axes().begin(), grid.axes().end(),
                           [](const ProductGrid::Axis& axis) { return axis.columns.size() > 1; });
    });
}

/** Whether there was anything to fill. */
bool GridPoints::fill(std::size_t column)
{
    const double* x = pointers[column];
    if (areAllFinite(x, pointCount)) {
        return false;
    }
    const std::size_t run = commonRun(x, pointCount);
    std::vector<double> values = valuesOfRuns(x, pointCount, run);
    fillFromPeriods(values);

    std::vector<double> copy(x, x + pointCount);
    for (std::size_t i = 0; i < pointCount; ++i) {
        if (!std::isfinite(copy[i])) {
            copy[i] = values[i / run];
            filledRows.push_back(i);
        }
    }
    copies.push_back(std::move(copy));
    pointers[column] = copies.back().data();
    return true;
}

void GridPoints::markFilled(double* result) const
{
    for (const std::size_t row : filledRows) {
        result[row] = notANumber;
    }
}
