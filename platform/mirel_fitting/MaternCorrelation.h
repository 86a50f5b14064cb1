#pragma once

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
    /** @param coordinates by columns, `cases` values for each of the inputs; copied. */
    MaternCorrelation(std::size_t cases, std::size_t inputs, const double* coordinates);

    std::size_t cases() const;
    std::size_t inputs() const;

    /** @param lengths one positive number per input, in the unit of its coordinates; infinity for
     *                 an input without influence. */
    void setLengths(const std::vector<double>& lengths);

    /** Writes the lower triangle of the correlation matrix, the ones of its diagonal included. */
    void fillLower(double* matrix) const;

    /**
     * result[k] = sum over i > j of weight_ij dc_ij / d ln(length_k), with
     * weight_ij = a_i a_j factor - inverse_ij: one pass over both matrices for all the inputs.
     * @param correlation what fillLower() wrote for the present lengths.
     */
    void weightedDerivatives(const double* correlation, const double* inverse, const double* a,
                             double factor, std::vector<double>& result) const;

    /**
     * result[i] += sum over the cases j of weights[j] c(point i, case j).
     * @param points one array of `count` coordinates per input.
     * @param weights one per case.
     */
    void addWeightedSums(const std::vector<const double*>& points, std::size_t count,
                         const double* weights, double* result) const;

private:
    std::size_t caseCount;
    std::size_t inputCount;
    std::size_t stride; // of a column: room for reading whole lanes behind the last case
    std::vector<double> columns;
    std::vector<double> scaledColumns; // times sqrt(5) / length
    std::vector<double> scales;
};
