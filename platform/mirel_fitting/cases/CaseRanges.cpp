#include <mirel_fitting/cases/CaseRanges.h>

#include <mirel_fitting/cases/ColumnScale.h>
#include <mirel_fitting/numerics/NumberText.h>

#include <algorithm>
#include <cmath>
#include <limits>

CaseRanges::CaseRanges(const std::vector<double*>& columns, std::size_t rows)
{
    for (const double* column : columns) {
        const ColumnScale scale(column, rows);
        minima.push_back(scale.smallestValue());
        maxima.push_back(scale.largestValue());
        isConstant.push_back(scale.isConstantUpToRounding());
    }
}

CaseRanges::CaseRanges(const std::vector<PredictorDescription::InputRange>& ranges)
{
    for (const PredictorDescription::InputRange& range : ranges) {
        minima.push_back(range.minimum);
        maxima.push_back(range.maximum);
        isConstant.push_back(range.isConstant);
    }
}

std::vector<PredictorDescription::InputRange> CaseRanges::ranges() const
{
    std::vector<PredictorDescription::InputRange> ranges;
    for (std::size_t k = 0; k < minima.size(); ++k) {
        ranges.push_back({minima[k], maxima[k], isConstant[k]});
    }
    return ranges;
}

double CaseRanges::distance(std::size_t input, double value) const
{
    if (!std::isfinite(value)) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    const double outside = std::max(minima[input] - value, value - maxima[input]);
    if (!isConstant[input]) {
        return std::max(outside / (maxima[input] - minima[input]), 0.0);
    }
    // The same constant, computed in another way, may differ by rounding.
    constexpr double rounding = 4.0 * std::numeric_limits<double>::epsilon();
    const double magnitude = std::max(std::fabs(minima[input]), std::fabs(maxima[input]));
    return outside > rounding * magnitude ? std::numeric_limits<double>::infinity() : 0.0;
}

void CaseRanges::distances(const std::vector<double*>& points, std::size_t count,
                           double* result) const
{
    std::fill_n(result, count, 0.0);
    for (std::size_t k = 0; k < minima.size(); ++k) {
        for (std::size_t i = 0; i < count; ++i) {
            const double beyond = distance(k, points[k][i]);
            // A NaN is kept: no comparison with it is true.
            if (beyond > result[i] || std::isnan(beyond)) {
                result[i] = beyond;
            }
        }
    }
}

/** Values that were typed or printed have six digits as a rule: rounded so, the smallest value of
 * an input may lie a little outside its range, which is no extrapolation. */
bool CaseRanges::isWorthAWarning(std::size_t input, double value, double distance) const
{
    if (isConstant[input]) {
        constexpr double sixDigits = 5e-6; // relative: half a unit of the sixth digit of 1.00000
        return distance > 0.0 &&
               std::fabs(value - minima[input]) > sixDigits * std::fabs(minima[input]);
    }
    constexpr double negligible = 1e-3; // of the range
    return distance > negligible;
}

std::string CaseRanges::warning(const std::vector<double*>& points, std::size_t count,
                                const InputNames& names) const
{
    std::size_t outside = 0;
    double farthest = 0.0;
    std::size_t farthestInput = 0;
    for (std::size_t i = 0; i < count; ++i) {
        bool isOutside = false;
        for (std::size_t k = 0; k < minima.size(); ++k) {
            const double beyond = distance(k, points[k][i]);
            if (!isWorthAWarning(k, points[k][i], beyond)) {
                continue;
            }
            isOutside = true;
            if (beyond > farthest) {
                farthest = beyond;
                farthestInput = k;
            }
        }
        outside += isOutside ? 1 : 0;
    }
    if (outside == 0) {
        return "";
    }
    const std::string name = names.input(farthestInput);
    const std::string start = std::to_string(outside) + " of " + std::to_string(count) +
                              (count == 1 ? " point" : " points") +
                              (outside == 1 ? " lies" : " lie") + " outside the cases: ";
    if (std::isinf(farthest)) {
        return start + name + " has another value there than in all cases.";
    }
    return start + name + " is up to " + NumberText::rounded(farthest, 2) +
           " of its range beyond them. Do not rely on predictions there.";
}
