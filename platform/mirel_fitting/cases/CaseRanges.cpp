#include <mirel_fitting/cases/CaseRanges.h>

#include <mirel_fitting/cases/ColumnScale.h>
#include <mirel_fitting/numerics/NumberText.h>
#include <mirel_fitting/numerics/TextPieces.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

std::string percent(double share)
{
    return NumberText::rounded(100.0 * share, 2) + " %";
}

/** "row 3", "rows 1, 2 and 5", "rows 1, 2, 3, 4, 5, 6, 7, 8, 9, 10 and 31 more", counted from 1;
 *  of a sample without how many more. */
std::string rowList(const std::vector<std::size_t>& rows, bool isSample)
{
    constexpr std::size_t most = 10;
    std::vector<std::string> numbers;
    for (std::size_t k = 0; k < std::min(rows.size(), most); ++k) {
        numbers.push_back(std::to_string(rows[k] + 1));
    }
    const std::size_t more = rows.size() - numbers.size();
    return (isSample ? "such as " : "") + std::string(rows.size() == 1 ? "row " : "rows ") +
           (more == 0 ? listedText(numbers, most) : joinedText(numbers)) +
           (isSample ? "" : andMore(more));
}

} // namespace

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
    const double magnitude = std::max(std::fabs(minima[input]), std::fabs(maxima[input]));
    return outside > ColumnScale::roundingOfConstant * magnitude
               ? std::numeric_limits<double>::infinity()
               : 0.0;
}

std::vector<double> CaseRanges::distances(const std::vector<double*>& points,
                                          std::size_t count) const
{
    std::vector<double> result(count);
    for (std::size_t k = 0; k < minima.size(); ++k) {
        for (std::size_t i = 0; i < count; ++i) {
            const double beyond = distance(k, points[k][i]);
            // A NaN is kept: no comparison with it is true.
            if (beyond > result[i] || std::isnan(beyond)) {
                result[i] = beyond;
            }
        }
    }
    return result;
}

void CaseRanges::clamp(std::size_t input, const double* values, std::size_t count,
                       double* clamped) const
{
    for (std::size_t i = 0; i < count; ++i) {
        // A NaN is kept: no comparison with it is true.
        clamped[i] = std::clamp(values[i], minima[input], maxima[input]);
    }
}

/** A polynomial or process that the cases determine does not change much within a hundredth of a
 *  range; and rounded to six digits, the one value of an input is a little beside itself. */
bool CaseRanges::isWorthAWarning(std::size_t input, double value, double distance) const
{
    if (isConstant[input]) {
        constexpr double sixDigits = 5e-6; // relative: half a unit of the sixth digit of 1.00000
        return distance > 0.0 &&
               std::fabs(value - minima[input]) > sixDigits * std::fabs(minima[input]);
    }
    constexpr double negligible = 0.01; // of the range
    return distance > negligible * (1.0 + 1e-9);
}

std::vector<char> CaseRanges::outside(const std::vector<double*>& points, std::size_t count,
                                      std::vector<char> isUnsupported) const
{
    for (std::size_t k = 0; k < minima.size(); ++k) {
        for (std::size_t i = 0; i < count; ++i) {
            const double value = points[k][i];
            if (isWorthAWarning(k, value, distance(k, value))) {
                isUnsupported[i] = 1;
            }
        }
    }
    return isUnsupported;
}

Extrapolation CaseRanges::extrapolation(const std::vector<double*>& points, std::size_t count,
                                        const InputNames& names,
                                        const std::vector<char>& isUnsupported) const
{
    std::vector<std::size_t> outside;
    std::size_t outsideByCombination = 0;
    std::size_t judged = 0;
    double farthest = 0.0;
    std::size_t farthestInput = 0;
    for (std::size_t i = 0; i < count; ++i) {
        bool isBeyond = false;
        for (std::size_t k = 0; k < minima.size(); ++k) {
            const double beyond = distance(k, points[k][i]);
            if (!isWorthAWarning(k, points[k][i], beyond)) {
                continue;
            }
            isBeyond = true;
            if (beyond > farthest) {
                farthest = beyond;
                farthestInput = k;
            }
        }
        const char flag = isUnsupported.empty() ? 0 : isUnsupported[i];
        judged += flag == notJudged ? 0 : 1;
        const bool isAlone = !isBeyond && flag == 1;
        outsideByCombination += isAlone ? 1 : 0;
        if (isBeyond || isAlone) {
            outside.push_back(i);
        }
    }
    if (outside.empty()) {
        return {};
    }
    // Shares, in case some points stand for all.
    const bool isSample = outsideByCombination > 0 && judged < count;
    const double byCombination = static_cast<double>(outsideByCombination) /
                                 static_cast<double>(std::max<std::size_t>(judged, 1));
    const double all = byCombination + static_cast<double>(outside.size() - outsideByCombination) /
                                           static_cast<double>(count);
    Extrapolation found;
    found.points = (isSample ? "About " + percent(all) : std::to_string(outside.size())) + " of " +
                   std::to_string(count) + (count == 1 ? " point" : " points") +
                   (outside.size() == 1 && !isSample ? " lies" : " lie") + " outside the cases";
    found.rows = count == 1 ? "" : rowList(outside, isSample);
    std::string& reason = found.reason;
    if (std::isinf(farthest)) {
        reason = names.input(farthestInput) + " has another value there than in all cases";
    } else if (farthest > 0.0) {
        reason = names.input(farthestInput) + " is up to " + NumberText::rounded(farthest, 2) +
                 " of its range beyond them";
    }
    if (outsideByCombination > 0) {
        const bool isAll = outsideByCombination == outside.size();
        reason += (isAll      ? ""
                   : isSample ? "; at about " + percent(byCombination / all) + " of them "
                              : "; at " + std::to_string(outsideByCombination) + " of them ") +
                  std::string("each input is in its range, but the cases do not support this "
                              "combination of values");
    }
    return found;
}
