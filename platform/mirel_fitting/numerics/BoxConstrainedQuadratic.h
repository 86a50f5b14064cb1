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
 *
 * Of more than `mostFewVariables` both begin where sweeps over the variables lead, one variable at
 * a time to its maximum, which needs no factor; and after mostFactors() the point reached is taken:
 * it leads uphill, too, and a step of a search is not worth minutes.
 */
class BoxConstrainedQuadratic
{
public:
    static constexpr std::size_t mostFewVariables = 64;

    /** As many as take about 1e8 multiplications, and 8 at least: of so many variables as make
     * these take longer, the sweeps have placed most. Unlimited for few variables. */
    static std::size_t mostFactors(std::size_t variables);

    /**
     * @param hessian positive definite, by rows; borrowed for life.
     * @param slope   g, borrowed for life.
     */
    BoxConstrainedQuadratic(const std::vector<double>& hessian, const std::vector<double>& slope);

    /** With FitProgress::advance() before each factor of many variables.
     *  @param lowest, highest the box: at most and at least 0. */
    std::vector<double> maximum(const std::vector<double>& lowest,
                                const std::vector<double>& highest);

private:
    void sweep(const std::vector<double>& lowest, const std::vector<double>& highest,
               std::vector<double>& point) const;
    bool guess(const std::vector<double>& lowest, const std::vector<double>& highest,
               std::vector<double>& point);
    void climb(const std::vector<double>& lowest, const std::vector<double>& highest,
               std::vector<double>& point);
    std::vector<double> towardsMaximum(const std::vector<double>& rest,
                                       std::vector<std::size_t> unknowns,
                                       const std::vector<double>& point,
                                       const std::vector<double>& lowest,
                                       const std::vector<double>& highest);
    std::vector<double> slopeAt(const std::vector<double>& point) const;
    bool solve(const std::vector<std::size_t>& unknowns, std::vector<double>& right);

    const std::vector<double>& hessian;
    const std::vector<double>& slope;
    std::size_t size;
    bool areMany;
    std::size_t factorsLeft;
};
