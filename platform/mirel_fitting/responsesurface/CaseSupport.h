#pragma once

#include <mirel_fitting/cases/CaseRanges.h>
#include <mirel_fitting/polynomial/PolynomialFit.h>

#include <cstddef>
#include <vector>

/**
 * Whether the cases support a polynomial at a point, judged by all inputs together: its leverage
 * x'(X'X)^-1 x is not above the largest of the cases, and it keeps the linear relations that the
 * inputs have in all cases. Where inputs are correlated, a point may lie far outside the cloud of
 * cases although each of its coordinates is in its range.
 * Montgomery, Peck, Vining: Introduction to Linear Regression Analysis, 5th ed., Wiley 2012, 3.8.
 */
class CaseSupport
{
public:
    /** Both are borrowed; they must outlive this object. */
    CaseSupport(const PolynomialFit& fit, const CaseRanges& ranges);

    /**
     * One flag per point: 1 where the cases do not support it, once coordinates beyond their ranges
     * are moved to the end of these. 0 for a point with a coordinate that is not finite. O(p^2) per
     * point for p terms, with the threads that setThreadCount() allows.
     * @param points one array of `count` values per input, borrowed for the call.
     */
    std::vector<char> unsupported(const std::vector<double*>& points, std::size_t count) const;

private:
    void judge(std::vector<std::vector<double>>& columns, std::size_t count, char* flags) const;

    const PolynomialFit& fit;
    const CaseRanges& ranges;
    std::vector<const PolynomialFit::Dependence*> relations; // of inputs
};
