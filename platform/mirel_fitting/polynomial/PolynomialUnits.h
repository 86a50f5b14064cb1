#pragma once

#include <mirel_fitting/cases/ColumnScale.h>
#include <mirel_fitting/polynomial/QuadraticBasis.h>

#include <vector>

/**
 * Rewrites a polynomial of scaled inputs, z = (V - c) / u, as one of the inputs V or of the centred
 * inputs V - c. The order of the coefficients is that of the basis throughout; what follows them,
 * as the effects of blocks, is left out.
 */
class PolynomialUnits
{
public:
    /** @param basis is borrowed; it must outlive this object. */
    PolynomialUnits(const QuadraticBasis& basis, const std::vector<ColumnScale>& scales);

    /** Coefficients of the terms of V - c. Exact, since the units are powers of two. */
    std::vector<double> centred(const std::vector<double>& scaled) const;

    /** Coefficients of the terms of V. */
    std::vector<double> expanded(const std::vector<double>& scaled) const;

    /** As expanded(), but with the magnitudes of all summands: how large its coefficients would be
     *  without cancellation. */
    std::vector<double> expandedMagnitudes(std::vector<double> scaled) const;

    /** Coefficients of the terms of inputs coded to [-1, 1] over their ranges. */
    std::vector<double> coded(const std::vector<double>& scaled) const;

    /** A term of V as a polynomial of z, the inverse of expanded(). */
    std::vector<double> term(std::size_t index) const;

    /** A bound on the rounding error of the polynomial of V over the range of the cases, in units
     * of its value: its terms are larger than those of z, and partly cancel. */
    double expansionLoss(const std::vector<double>& scaled) const;

private:
    const QuadraticBasis& basis;
    // One per input.
    std::vector<double> zeros;
    std::vector<double> centres;
    std::vector<double> units;
    std::vector<double> offsets;     // z where V is 0
    std::vector<double> perUnit;     // 1 / u
    std::vector<double> codedRanges; // half the range in units
    std::vector<double> magnitudes;  // of V - c, expanded: the largest |V| and |c|
};
