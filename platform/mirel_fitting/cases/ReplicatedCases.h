#pragma once

#include <mirel_fitting/Export.h>

#include <cstddef>
#include <cstdint>
#include <vector>

/** Replicates, cases with the same inputs up to a billionth of each input's range, as 0.3 and
 * 0.1 + 0.2: their outputs differ by pure error, which no model of these inputs explains. Inputs
 * that differ by rounding lie in one cell of that width; one pair in some ten million is divided by
 * an edge and counts as different, which sorting a million cases for would cost seconds. */
class MIREL_FITTING_EXPORT ReplicatedCases
{
public:
    /** The largest distance of replicates along an input, relative to its range. */
    static constexpr double nearness = 1e-9;

    /** No replicates. */
    ReplicatedCases() = default;

    /**
     * O(cases) time, with FitProgress::advance() every few hundredths of a second; 8 bytes per
     * value and some 50 per case during construction, and 4 later if there are replicates.
     * @param columns one array of `cases` finite values per input, borrowed for the call. Without
     *                inputs, all cases are replicates of each other.
     * @param cases   less than 2^32.
     */
    ReplicatedCases(const std::vector<const double*>& columns, std::size_t cases);

    /** Whether there are replicates. */
    bool any() const { return !pointOfCase.empty(); }

    /** Cases minus distinct points. */
    std::size_t degreesOfFreedom() const { return pointOfCase.size() - points; }

    /** Cases with the same number are replicates; numbers are less than the number of cases. */
    std::size_t pointOf(std::size_t row) const { return any() ? pointOfCase[row] : row; }

    /**
     * The weighted sum of squares of an output about its means at the points; 0 without replicates.
     * @param values  one finite value per case, borrowed for the call.
     * @param weights one per case; empty: all 1.
     */
    double withinSquares(const double* values, const std::vector<double>& weights = {}) const;

    /** The number of points whose values differ by more than `largestChange`.
     *  @param values one per case, borrowed for the call. */
    std::size_t contradictions(const double* values, double largestChange) const;

private:
    std::vector<std::uint32_t> pointOfCase;
    std::size_t points = 0;
};
