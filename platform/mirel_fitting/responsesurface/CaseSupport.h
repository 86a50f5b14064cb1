#pragma once

#include <mirel_fitting/cases/CaseRanges.h>
#include <mirel_fitting/polynomial/PolynomialFit.h>

#include <cstddef>
#include <utility>
#include <vector>

/**
 * Whether the cases support a polynomial at a point, judged by all inputs together: its leverage
 * x'(X'X)^-1 x is not far above the largest of the cases, and it keeps the relations for which
 * terms were dropped: where a term differs from the combination of others that it equals in all
 * cases, the cases do not show which of them the output depends on. Where inputs are correlated, a
 * point may lie far outside the cloud of cases although each of its coordinates is in its range.
 * The square of an input that has two levels is taken to add nothing: the output is linear between
 * them. Montgomery, Peck, Vining: Introduction to Linear Regression Analysis, 5th ed., Wiley
 * 2012, 3.8.
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
    /** A combination of terms of scaled inputs that is 0 at all cases. */
    struct Relation
    {
        std::vector<std::pair<std::size_t, double>> coefficients; // of terms
        double tolerance;
    };

    double tolerance(std::size_t term) const;
    void judge(std::vector<std::vector<double>>& columns, std::size_t count, char* flags) const;

    const PolynomialFit& fit;
    const CaseRanges& ranges;
    std::vector<Relation> relations;
};
