#pragma once

#include <vector>

/**
 * Where s'w + sum of l_k w_k^2 is largest among all w of a given length: a quadratic polynomial in
 * the directions of its eigenvectors, without its constant. The maximum is at
 * w_k = s_k / (2 (m - l_k)) with a multiplier m above all eigenvalues l_k, which follows from the
 * length; the length falls as m rises. If the slope along the direction of the largest eigenvalue
 * is 0, lengths beyond that of m = l are reached along that direction, to its positive side.
 * Draper: Ridge analysis of response surfaces, Technometrics 5 (1963).
 */
class RidgeAnalysis
{
public:
    /** @param eigenvalues, slopes as many, at least one; a slope of 0 is one up to rounding. */
    RidgeAnalysis(std::vector<double> eigenvalues, std::vector<double> slopes);

    /** @param length 0 or more. */
    std::vector<double> largest(double length) const;

private:
    double lengthAt(double gap) const;
    std::vector<double> pointAt(double gap) const;

    std::vector<double> eigenvalues;
    std::vector<double> slopes;
    std::size_t top; ///< of the largest eigenvalue
};
