#pragma once

#include <mirel_fitting/numerics/InputNames.h>

#include <cstddef>
#include <string>
#include <vector>

/**
 * The terms of a polynomial of order 0, 1 or 2 in several inputs, in the order in which
 * coefficients are fitted, stored and printed: 1, then V1 ... Vd, then V_i V_j with i <= j (for
 * two inputs V1^2, V1 V2, V2^2).
 *
 * Coordinates are the caller's: for a fit they are centred and scaled (ColumnScale), since in raw
 * units the columns differ by orders of magnitude and the fit loses digits.
 * Myers, Montgomery, Anderson-Cook: Response Surface Methodology, 4th ed., Wiley 2016, ch. 2.
 */
class QuadraticBasis
{
public:
    /** Stands in Term for an input that the term does not have. */
    static constexpr std::size_t noInput = static_cast<std::size_t>(-1);

    /** The inputs of a term, first <= second: a linear term has no second, the constant none. */
    struct Term
    {
        std::size_t first = noInput;
        std::size_t second = noInput;

        /** 0 constant, 1 linear, 2 product or square. */
        int order() const { return first == noInput ? 0 : second == noInput ? 1 : 2; }
        bool isSquare() const { return order() == 2 && first == second; }
        bool has(std::size_t input) const { return first == input || second == input; }

        /** None, one or two; that of a square twice. */
        std::vector<std::size_t> inputs() const
        {
            const std::vector<std::size_t> both = {first, second};
            return {both.begin(), both.begin() + order()};
        }

        /** The term of other inputs: numbers[k] instead of k. */
        Term renumbered(const std::vector<std::size_t>& numbers) const
        {
            return {first == noInput ? noInput : numbers[first],
                    second == noInput ? noInput : numbers[second]};
        }
    };

    /**
     * @param inputs may be 0: then the constant is the only term.
     * @param order  0 constant, 1 linear, 2 full quadratic.
     * @throw std::invalid_argument for another order.
     */
    QuadraticBasis(std::size_t inputs, int order);

    /** Number of terms of such a basis, 1, d + 1 or (d + 1)(d + 2) / 2: the fewest cases that
     *  determine a fit. The largest std::size_t if that overflows. */
    static std::size_t termCount(std::size_t inputs, int order);

    std::size_t inputs() const { return inputCount; }
    int order() const { return highest; }
    std::size_t size() const { return termList.size(); }
    const std::vector<Term>& terms() const { return termList; }

    /** The position of a term, first <= second, in a basis that has it. */
    std::size_t position(const Term& term) const
    {
        // The products of the inputs before the first take inputs - i places each.
        return term.first == noInput    ? 0
               : term.second == noInput ? 1 + term.first
                                        : 1 + inputCount + term.first * inputCount -
                                              term.first * (term.first + 1) / 2 + term.second;
    }

    /**
     * The same polynomial in other inputs V, of which the present ones are z_k = offsets[k] +
     * slopes[k] V_k.
     * @param coefficients one per term; more are ignored. @param offsets, slopes one per input.
     * @return one coefficient per term.
     */
    std::vector<double> substituted(const std::vector<double>& coefficients,
                                    const std::vector<double>& offsets,
                                    const std::vector<double>& slopes) const;

    /** The sum of |coefficient times the product of its inputs| where |V_k| = magnitudes[k]. */
    double sumOfMagnitudes(const std::vector<double>& coefficients,
                           const std::vector<double>& magnitudes) const;

    /** "1", "V1", "V1^2", "V1 V2", or with the names of the inputs. */
    static std::string name(const Term& term, const InputNames& names = InputNames());
    std::string name(std::size_t term, const InputNames& names = InputNames()) const;

    /**
     * One term at several points.
     * @param columns one array of `count` coordinates per input, borrowed for the call.
     * @param values  receives `count` values; must not overlap the columns.
     */
    void evaluateTerm(std::size_t term, const double* const* columns, std::size_t count,
                      double* values) const;

    /**
     * All terms at several points, a column per term.
     * @param values receives size() columns of `count` values; column t starts at t * stride.
     */
    void evaluate(const double* const* columns, std::size_t count, double* values,
                  std::size_t stride) const;

private:
    std::size_t inputCount;
    int highest;
    std::vector<Term> termList;
};
