#pragma once

#include <cstddef>
#include <vector>

/**
 * A concave quadratic model of a function, g'x - x'Hx / 2, and its maximum within a box that
 * contains the origin.
 *
 * Which variables end on the box is guessed, and the guess corrected by all variables whose slope
 * or place contradicts it; that nearly always settles in a few rounds, each of which costs one
 * Cholesky factor, however many variables there are. Where it does not, a primal active-set method
 * goes on from the origin: the model rises with every round, so that the point leads uphill
 * wherever it ends. Hintermueller, Ito, Kunisch: The primal-dual active set strategy as a
 * semismooth Newton method, SIAM J. Optim. 13 (2002); Nocedal, Wright: Numerical Optimization, 2nd
 * ed., Springer 2006, section 16.5.
 */
class BoxedQuadratic
{
public:
    /**
     * @param hessian positive definite, by rows; borrowed for life.
     * @param slope   g, borrowed for life.
     */
    BoxedQuadratic(const std::vector<double>& hessian, const std::vector<double>& slope);

    /** @param lowest, highest the box: at most and at least 0. */
    std::vector<double> maximum(const std::vector<double>& lowest,
                                const std::vector<double>& highest) const;

private:
    bool guess(const std::vector<double>& lowest, const std::vector<double>& highest,
               std::vector<double>& point) const;
    std::vector<double> climb(const std::vector<double>& lowest,
                              const std::vector<double>& highest) const;
    std::vector<double> towardsMaximum(const std::vector<double>& rest,
                                       std::vector<std::size_t> unknowns,
                                       const std::vector<double>& point,
                                       const std::vector<double>& lowest,
                                       const std::vector<double>& highest) const;
    std::vector<double> slopeAt(const std::vector<double>& point) const;
    bool solve(const std::vector<std::size_t>& unknowns, std::vector<double>& right) const;

    const std::vector<double>& hessian;
    const std::vector<double>& slope;
    std::size_t size;
};
