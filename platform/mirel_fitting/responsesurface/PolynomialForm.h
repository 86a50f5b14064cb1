#pragma once

#include <mirel_fitting/ResponseSurfaceOptions.h>
#include <mirel_fitting/TermFormula.h>
#include <mirel_fitting/polynomial/QuadraticBasis.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/** Which terms a polynomial has: all up to an order, on request without the squares, or those of a
 *  formula up to that order. */
struct PolynomialForm
{
    static constexpr std::size_t maxTerms = 10000;

    int order = 2;          ///< 0 constant, 1 linear, 2 of second order
    bool hasSquares = true; ///< has an effect with order 2 only

    std::optional<TermFormula> formula = std::nullopt; ///< with its own choice of terms

    /** A full quadratic polynomial may become one with interactions where cases are too few. */
    bool mayLoseSquares = false;

    /** @throw SurrogateModelInterface::Error as TermFormula. */
    static PolynomialForm of(const ResponseSurfaceOptions& options, std::size_t inputs,
                             bool mayLoseSquares = false);

    std::size_t termCount(std::size_t inputs) const;

    /** "constant", "linear", "linear with interactions", "full quadratic",
     *  "chosen terms". */
    std::string name() const;

    /**
     * The polynomial that so many cases determine: this one if it has no more terms than there are
     * cases; else, if mayLoseSquares, the one without squares if it has fewer terms than cases;
     * else the highest lower order with no more terms than cases. Without inputs the constant.
     * @throw SurrogateModelInterface::Error if the order is none of the three, or 10 000 terms do
     *        not suffice.
     */
    PolynomialForm lowered(std::size_t inputs, std::size_t cases) const;

    /** One flag per term of the basis, which is of this order; empty if it has all of them. */
    std::vector<char> wantedTerms(const QuadraticBasis& basis) const;

private:
    bool isInFormula(const QuadraticBasis::Term& term) const;
};
