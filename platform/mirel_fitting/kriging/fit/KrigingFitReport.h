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

    /** What a standardised value may be off by because its output has so many digits only. */
    double roundingOf(double standardised) const;

    /** The terms with their coefficients, and the equation as text. */
    void addTrend(KrigingFit& fit, const KrigingTrend& trend,
                  const std::vector<double>& coefficients) const;

    struct Errors
    {
        const KrigingData& all;             ///< the cases; their outputs are used
        const std::vector<double>& rows;    ///< of each of them that count
        const std::vector<double>& scatter; ///< sum of squares of these about their mean
        /** What the residuals are of: all cases, or a random sample, which then stands for all. */
        const std::vector<std::size_t>& points;
        const std::vector<double>& residuals;
        const std::vector<double>& leftOut; ///< the same of fits to the other cases; NaN: no such
    };

    /** The figures of errors, and the worst cases. */
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
