#pragma once

#include <cstddef>
#include <vector>

/**
 * Maximises a concave quadratic model g'x - x'Hx / 2 within a box that contains the origin.
 *
 * A primal-dual active-set method guesses which variables end on a bound, solves for the others,
 * and corrects the guess where the sign of a slope or a bound contradicts it. That nearly always
 * converges in a few iterations of one Cholesky factor each, whatever the number of variables:
 * Hintermueller, Ito, Kunisch: The primal-dual active set strategy as a semismooth Newton method,
 * SIAM J. Optim. 13 (2002). Where it does not, coordinate ascent comes as near
 * to the maximum as 1e8 multiplications bring it (some hundredths of a second).
 *
 * For more than `maxFewVariables` the first guess is where coordinate ascent, which needs no
 * factor, ends; there are 5 iterations then at most, else 10.
 */
class BoxConstrainedQuadratic
{
public:
    static constexpr std::size_t maxFewVariables = 64;

    /**
     * @param hessian positive definite, by rows; borrowed for life.
     * @param slope   g, borrowed for life.
     */
    BoxConstrainedQuadratic(const std::vector<double>& hessian, const std::vector<double>& slope);

    /** With FitProgress::advance() before each factor of many variables.
     *  @param lowest, highest the box: at most and at least 0. */
    std::vector<double> maximum(const std::vector<double>& lowest,
                                const std::vector<double>& highest) const;

private:
    void sweep(const std::vector<double>& lowest, const std::vector<double>& highest, int sweeps,
               std::vector<double>& point) const;
    bool guess(const std::vector<double>& lowest, const std::vector<double>& highest,
               std::vector<double>& point) const;
    std::vector<double> slopeAt(const std::vector<double>& point) const;
    bool solve(const std::vector<std::size_t>& unknowns, std::vector<double>& right) const;

    const std::vector<double>& hessian;
    const std::vector<double>& slope;
    std::size_t size;
    bool areMany;
};
