#pragma once

#include <cstddef>
#include <vector>

/**
 * What one evaluation of a Kriging likelihood with its gradient costs on this machine: the
 * unit that the times of fits are given in. Plain LAPACK, one n x n matrix for the correlations and
 * one for their inverse: Cholesky factor and inverse take n^3 multiplications, the gradient is
 * traced through the two matrices without a third. Tensor-product Matern 5/2 correlation, constant
 * trend. Rasmussen, Williams: Gaussian Processes for Machine Learning, MIT Press 2006, ch. 5.4.1.
 */
class LikelihoodUnit
{
public:
    /**
     * @param inputs one column of `output.size()` coordinates in [0, 1] per input; copied.
     */
    LikelihoodUnit(std::vector<std::vector<double>> inputs, std::vector<double> output);

    /**
     * The log-likelihood; its derivatives by the lengths are then in gradient().
     * @param lengths one per input, in units of the coordinates.
     * @param nugget  added to the diagonal.
     * @throw std::runtime_error if the matrix is not positive definite to working precision.
     */
    double evaluate(const std::vector<double>& lengths, double nugget);

    const std::vector<double>& gradient() const { return derivatives; }

private:
    void fillCorrelations(const std::vector<double>& lengths, double nugget);
    void factorise();
    double profile();
    void invert();
    void traceGradient(const std::vector<double>& lengths);

    std::vector<std::vector<double>> inputs;
    std::vector<double> output;
    std::size_t cases;
    std::vector<double> correlations; // lower triangle, column by column
    std::vector<double> work;         // the factor, then the inverse
    std::vector<double> weights;      // R^-1 (y - mean)
    double variance = 0.0;
    std::vector<double> derivatives;
};
