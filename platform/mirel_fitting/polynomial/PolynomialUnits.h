#pragma once

#include <mirel_fitting/cases/ColumnScale.h>
#include <mirel_fitting/polynomial/QuadraticBasis.h>

#include <vector>

/**
 * Rewrites a polynomial of scaled inputs, z = (V - c) / u, as one of the inputs V or of the centred
 * inputs V - c. The order of the coefficients is that of the basis throughout.
 */
class PolynomialUnits
{
public:
    /** Both are borrowed; they must outlive this object. */
    PolynomialUnits(const QuadraticBasis& basis, const std::vector<ColumnScale>& scales);

    /** Coefficients of the terms of V - c. Exact, since the units are powers of two. */
    std::vector<double> centred(const std::vector<double>& scaled) const;

    /** Coefficients of the terms of V. */
    std::vector<double> expanded(const std::vector<double>& scaled) const;

    /** What the coefficients of expanded() would be if nothing cancelled: the sums of the
     * magnitudes of what they are the sum of. */
    std::vector<double> expandedMagnitudes(const std::vector<double>& scaled) const;

    /** Coefficients of the terms of inputs coded to [-1, 1] over their ranges. */
    std::vector<double> coded(const std::vector<double>& scaled) const;

    /** A term of V as a polynomial of z: expanded() of it is 1 for this term and 0 for others. */
    std::vector<double> term(std::size_t index) const;

    /** What the polynomial of V may lose against that of z within the range of the cases, by the
     *  rounding of its larger and partly cancelling terms: in units of the polynomial. */
    double expansionLoss(const std::vector<double>& scaled) const;

private:
    const QuadraticBasis& basis;
    const std::vector<ColumnScale>& scales;
};
