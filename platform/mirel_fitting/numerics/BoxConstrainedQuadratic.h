#pragma once

#include <cstddef>
#include <vector>

/**
 * Maximises a concave quadratic model g'x - x'Hx / 2 within a box that contains the origin.
 *
 * A primal-dual active-set method guesses which variables end on a bound, solves for the others,
 * and corrects the guess where the sign of a slope or a bound contradicts it. That nearly always
 * converges in a few iterations of one Cholesky factor each, whatever the number of variables.
 * Where it does not, a primal active-set method starts from the origin; its value rises with every
 * iteration, so that it may be stopped anywhere. Hintermueller, Ito, Kunisch: The primal-dual
 * active set strategy as a semismooth Newton method, SIAM J. Optim. 13 (2002); Nocedal, Wright:
 * Numerical Optimization, 2nd ed., Springer 2006, section 16.5.
 *
 * For more than `maxFewVariables` both methods start from the result of coordinate ascent, which
 * needs no factor, and stop after maxFactors() factors.
 */
class BoxConstrainedQuadratic
{
public:
    static constexpr std::size_t maxFewVariables = 64;

    /** As many factors as take about 1e8 multiplications (some hundredths of a second), 8 at least;
     *  unlimited for few variables. */
    static std::size_t maxFactors(std::size_t variables);

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
    std::vector<double> newtonStep(const std::vector<double>& rest,
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
