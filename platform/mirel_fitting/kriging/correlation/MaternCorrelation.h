#pragma once

#include <mirel_fitting/kriging/correlation/MaternKernels.h>
#include <mirel_fitting/machine/AlignedBuffer.h>

#include <cstddef>
#include <vector>

/**
 * Tensor-product Matern 5/2 correlation of n fixed cases:
 *
 *   c(x, x') = product over the inputs k of (1 + z + z^2 / 3) exp(-z),
 *   z = sqrt(5) |x_k - x'_k| / length_k.
 *
 * Rasmussen, Williams: Gaussian Processes for Machine Learning, MIT Press 2006, section 4.2.1. The
 * product form is separable over grids. Matrices are n x n, stored by columns, and only their lower
 * triangle is used.
 */
class MaternCorrelation
{
public:
    /** @param coordinates by columns, `cases` values for each of the inputs; copied.
     *  @param lengths     as of setLengths(); none yet if empty. */
    MaternCorrelation(std::size_t cases, std::size_t inputs, const double* coordinates,
                      const std::vector<double>& lengths = {});

    std::size_t cases() const { return caseCount; }
    std::size_t inputs() const { return inputCount; }

    /** @param lengths one positive number per input, in the unit of its coordinates; infinity for
     *                 an input without influence. */
    void setLengths(const std::vector<double>& lengths);
    const std::vector<double>& lengths() const { return chosenLengths; }

    // The following take the columns from `first` to before `last`. Threads may call them at once
    // with results of their own.

    /** Writes the lower triangle of the correlation matrix, the ones of its diagonal included. */
    void fillLower(std::size_t first, std::size_t last, double* matrix) const;

    /** Length of a column of the products below: cases(), padded. */
    std::size_t productStride() const { return stride; }

    /**
     * Both sums of a likelihood's gradient over the derivatives dc_ij / d ln(length_k), in one
     * pass. Adds the elements of these columns below the diagonal to sums[k]: the sum over i > j of
     * (a_i a_j factor - inverse_ij) dc_ij / d ln(length_k), and, together with the elements that
     * mirror them above it, to products[k productStride() + i]: the sum over j of a_j dc_ij / d
     * ln(length_k).
     * @param correlation what fillLower() wrote for the present lengths.
     * @param inverse     columns of `inverseStride` elements; the first element is that of the
     *                    diagonal in column `first`.
     * @param a           productStride() elements, zero behind the last case.
     */
    void addDerivatives(std::size_t first, std::size_t last, const double* correlation,
                        const double* inverse, std::size_t inverseStride, const double* a,
                        double factor, double* sums, double* products) const;

    // The points of the following functions have finite coordinates.

    /**
     * result[i] += sum over the cases j of weights[j] c(point i, case j). The bits of a result do
     * not depend on the other points.
     * @param points one array of `count` coordinates per input.
     * @param weights one per case.
     */
    void addWeightedSums(const std::vector<const double*>& points, std::size_t count,
                         const double* weights, double* result) const;

    /**
     * gradients[k][i] += derivative of that sum at point i by the coordinate of input k.
     * @param gradients one array of `count` numbers per input.
     */
    void addWeightedGradients(const std::vector<const double*>& points, std::size_t count,
                              const double* weights, const std::vector<double*>& gradients) const;

    /** Distance between the rows that correlate() writes: cases(), padded to whole registers. */
    std::size_t correlationStride() const { return AlignedBuffer::padded(caseCount); }

    /** result[i * correlationStride() + j] = c(point i, case j); `result` is aligned like
     *  AlignedBuffer. */
    void correlate(const std::vector<const double*>& points, std::size_t count,
                   double* result) const;

    /** The same for the factor of one input. */
    void correlateInput(std::size_t input, const double* coordinates, std::size_t count,
                        double* result) const;

    /** The coordinates of one input at the cases, in units of length / sqrt(5). */
    const double* scaledCases(std::size_t input) const
    {
        return scaledColumns.data() + input * stride;
    }
    /** result[i * resultStep] = coordinate i of a point in these units, clamped to where
     *  correlations are 0 so that no polynomial overflows. */
    void scale(std::size_t input, const double* coordinates, std::size_t count, double* result,
               std::size_t resultStep = 1) const;

    /** The same cases in another order: `order[j]` is the present number of case j. */
    MaternCorrelation reordered(const std::vector<std::size_t>& order) const;

private:
    class PointBlock;

    void scaleCases();
    MaternKernels::Cases casesFrom(std::size_t first, std::size_t count) const;

    std::size_t caseCount;
    std::size_t inputCount;
    std::size_t stride; // of a column: room for reading whole lanes behind the last case
    std::vector<double> columns;
    std::vector<double> smallestCoordinates; // of each input
    std::vector<double> largestCoordinates;
    AlignedBuffer scaledColumns;    // times sqrt(5) / length
    std::vector<double> scaledRows; // the same, case by case
    std::vector<double> chosenLengths;
    std::vector<double> scales;
    // Scaled coordinates of points are clamped to these limits; beyond, all correlations are 0.
    std::vector<double> lowest;
    std::vector<double> highest;
    bool isCapped = false; // see MaternKernels::addWeightedSums()
};
