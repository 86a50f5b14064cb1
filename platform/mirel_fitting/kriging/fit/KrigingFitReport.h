#pragma once

#include <mirel_fitting/cases/KrigingCases.h>
#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/fit/KrigingFit.h>
#include <mirel_fitting/kriging/likelihood/KrigingTrend.h>

#include <cstddef>
#include <vector>

/** Writes trend and errors of a fit, computed with scaled inputs and the standardised output, into
 *  its report, in the units of the data. */
class KrigingFitReport
{
public:
    /**
     * output = offset + scale * standardised output.
     * @param cases, output are borrowed.
     */
    KrigingFitReport(const KrigingCases& cases, const std::vector<double>& output, double offset,
                     double scale);

    /** k of "Vk", of the inputs that vary. */
    std::vector<std::size_t> inputNumbers() const;

    /** The rounding error of a standardised value, which the number of digits of its output sets.
     */
    double roundingOf(double standardised) const;

    /** The terms with their coefficients, and the equation as text. */
    void addTrend(KrigingFit& fit, const KrigingTrend& trend,
                  const std::vector<double>& coefficients) const;

    struct Errors
    {
        const KrigingData& all;                   ///< the cases; their outputs are used
        const std::vector<double>& replicates;    ///< one per case
        const std::vector<double>& withinSquares; ///< one per case
        /** The cases with residuals: all, or a random sample that represents all. */
        const std::vector<std::size_t>& points;
        const std::vector<double>& residuals; ///< one per element of `points`
        /** Leave-one-out residuals; NaN where the other cases do not determine a fit. */
        const std::vector<double>& leftOut;
    };

    /** The error metrics, and the cases with the largest leave-one-out residuals. */
    void measure(KrigingFit& fit, const Errors& errors) const;

private:
    void writeTrend(KrigingFit& fit, const KrigingTrend& trend,
                    const std::vector<double>& coefficients) const;
    void findWorstCases(KrigingFit& fit, const Errors& errors) const;

    const KrigingCases& cases;
    const std::vector<double>& output;
    double offset;
    double scale;
};
