#pragma once

#include <mirel_fitting/kriging/grid/AxisGroup.h>

#include <cstddef>
#include <vector>

/**
 * The standardised predictions over a product grid, separated by two groups of its axes. The
 * correlation is a product over the inputs, so with f a combination of the fast group and s one of
 * the slow group they are
 *
 *   sum over the cases j of a_j(f) b_j(s) + sum over t of p_t(f) q_t(s).
 *
 * a_j is the correlation by the inputs that vary in the fast group. b_j is that by the inputs of
 * the slow group times the weight of the case and its correlation by the inputs that do not vary.
 * p_t and q_t are polynomials whose products sum up to the trend: p_0 is 1, q_0 all terms without a
 * fast input; p_1 all terms of fast inputs only, q_1 1; each other p_t is one fast input, q_t what
 * it is multiplied with.
 */
struct SeparatedGrid
{
    /** @param fastAxes positions of axes, ascending; the others are the slow group. */
    SeparatedGrid(const FittedKriging& model, const std::vector<double*>& columns,
                  const ProductGrid& grid, const std::vector<std::size_t>& fastAxes);

    AxisGroup fast;
    AxisGroup slow;
    bool isNowhereFinite = false; ///< a column that does not vary has no finite value

private:
    std::vector<double> fixInputs(const FittedKriging& model, const std::vector<double*>& columns,
                                  const ProductGrid& grid);
    void separateTrend(const FittedKriging& model, const std::vector<double>& fixed);
};
