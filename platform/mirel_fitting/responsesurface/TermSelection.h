#pragma once

#include <mirel_fitting/polynomial/PolynomialFit.h>

#include <cstddef>
#include <vector>

/**
 * Backward elimination of the terms of one output: drops the term whose loss gives the lowest
 * corrected Akaike information criterion (AICc), as long as that falls. The constant and the
 * blocks are kept, and each linear term while a second-order term of its input is kept, so that the
 * choice does not depend on the origins of the inputs (the hierarchy principle: Peixoto, Am. Stat.
 * 44 (1990)).
 *
 * With hardly more cases than terms AICc is infinite: terms are dropped until it is finite, or all
 * are kept if it never is.
 *
 * O(p^3) for p terms, whatever the number of cases.
 */
class TermSelection
{
public:
    /** @param output a position in fit.outputs(). Both are borrowed for the call. */
    TermSelection(const PolynomialFit& fit, std::size_t output);

    /** One per term of the basis, and per column of the blocks: whether it stays. */
    const std::vector<char>& isWanted() const { return wanted; }

    /** Whether a term that the fit has is not wanted. */
    bool dropsAny() const { return dropped > 0; }

private:
    bool isNeededByOthers(std::size_t term) const;
    void drop(std::size_t position);
    void keepAll();

    const PolynomialFit& fit;
    std::vector<char> wanted;
    std::size_t dropped = 0;
    // In the order of the factor; 0 for dropped terms.
    std::vector<double> inverse; // (X'X)^-1, by columns
    std::vector<double> coefficients;
};
