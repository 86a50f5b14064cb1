#pragma once

#include <mirel_fitting/machine/SimdLanes.h>

#include <cmath>
#include <cstddef>

/**
 * The inner loops over product Matern 5/2 correlations, eight points at a time. All coordinates are
 * finite and scaled, by sqrt(5) / length.
 *
 * A correlation has a relative error of at most 3 units in the last place, 1.5 per input, and 0.15
 * per unit of the summed distance, beside the rounding of the scaled coordinates; it is exactly 1
 * where all coordinates are equal. The bits are the same on every processor.
 */
struct MaternKernels
{
    /** Coordinates are multiplied by it and divided by the length. */
    static inline const double rootOfFive = std::sqrt(5.0);

    /** Beyond this distance by one input the correlation is 0 to every digit that counts. */
    static constexpr double farthest = 1000.0;

    struct Points
    {
        const double* coordinates; ///< by columns, one per input; readable in whole lanes
        std::size_t stride;        ///< from column to column
        std::size_t count;
    };
    struct Cases
    {
        const double* coordinates; ///< case by case
        std::size_t inputs;
        std::size_t count;
    };

    /**
     * sums[i] += sum over j of weights[j] c(point i, case j); sums of whole lanes are written.
     * @param isCapped whether a point can be farther than 2 * `farthest` from a case by an input:
     *                 distances are capped then, so that no polynomial overflows. Capping takes
     *                 some 18 % of the time; the other functions, of less weight, always do it.
     */
    static void addWeightedSums(const Points& points, const Cases& cases, bool isCapped,
                                const double* weights, double* sums);

    /** result[j * stride + i] = c(point i, case j). */
    static void correlate(const Points& points, const Cases& cases, double* result,
                          std::size_t stride);

    /**
     * gradients[k * stride + i] += sum over j of weights[j] dc(point i, case j) / dx_ik, where x_ik
     * is the scaled coordinate; whole lanes are written.
     */
    static void addWeightedGradients(const Points& points, const Cases& cases,
                                     const double* weights, double* gradients, std::size_t stride);

    /** A block of rows of one column of the correlation matrix; see addDerivatives(). */
    struct ColumnBlock
    {
        const double* coordinates; ///< by columns
        std::size_t stride;        ///< from input to input
        std::size_t inputs;
        std::size_t column;         ///< the case of the column
        std::size_t first;          ///< row
        std::size_t count;          ///< rows, a multiple of laneCount
        const double* correlations; ///< of the rows; 0 behind the last case
        const double* weights;      ///< of the rows; 0 behind the last case
        const double* a;            ///< one per case
    };

    /**
     * Adds for each input k, with d the derivatives dc / d ln(length_k) of the block's elements,
     * sums[laneCount * k ...] += weight d, products[k * stride + row] += a[column] d and
     * columnProducts[laneCount * k ...] += a[row] d. Lanes are summed apart.
     */
    static void addDerivatives(const ColumnBlock& block, double* products, double* sums,
                               double* columnProducts);
};
