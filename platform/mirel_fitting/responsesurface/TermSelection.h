#pragma once

#include <mirel_fitting/polynomial/PolynomialFit.h>

#include <cstddef>
#include <vector>

/**
 * Chooses the terms that an output needs: backward, one after the other, each time the one without
 * which the corrected Akaike information criterion is lowest, as long as that lowers it. A linear
 * term stays while a kept term of second order has its input, so that the choice does not depend on
 * the origins of the inputs (the hierarchy principle: Peixoto, Am. Stat. 44 (1990)). The constant
 * stays.
 *
 * Where the cases are hardly more than the terms the criterion is infinite: terms go until it is
 * finite, and all of them stay if it never is.
 *
 * O(p^3) for p terms, whatever the number of cases.
 */
class TermSelection
{
public:
    /** @param output a position in fit.outputs(). Both are borrowed for the call. */
    TermSelection(const PolynomialFit& fit, std::size_t output);

    /** One per term of the basis: whether it stays. */
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
    // Of the terms left, in the order of the factor; zeros in the rows and columns of the others.
    std::vector<double> inverse; // of the normal equations, by columns
    std::vector<double> coefficients;
};
