#pragma once

#include <mirel_fitting/cases/KrigingCases.h>
#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/likelihood/KrigingTrend.h>
#include <mirel_fitting/kriging/prediction/FittedKriging.h>
#include <mirel_fitting/kriging/report/KrigingFit.h>
#include <mirel_fitting/kriging/report/OutputScale.h>
#include <mirel_fitting/kriging/search/KrigingSearchSettings.h>

#include <cstddef>
#include <vector>

/** Writes what a fit has computed with scaled inputs and the standardised output into its report
 * and metrics, in the units of the data. */
class KrigingFitReport
{
public:
    /** @param cases, output are borrowed for life. */
    KrigingFitReport(const KrigingCases& cases, const std::vector<double>& output,
                     const OutputScale& scale);

    /** The fraction of the output's variance that a model attributes to noise. */
    static double noiseShare(const FittedKriging& model);

    /** The rounding error of a standardised value, which the number of digits of its output sets.
     */
    double roundingOf(double standardised) const;

    /** Lengths, nugget, process variance and noise of the fit's model. */
    void addCorrelation(KrigingFit& fit, const KrigingSearchResult& found, double condition) const;

    /**
     * Which inputs have no influence at all; after addCorrelation().
     * @param errors of the trend's coefficients, of the standardised output; none: they count as
     *               exact.
     */
    void addInfluence(KrigingFit& fit, const KrigingTrend& trend,
                      const std::vector<double>& coefficients,
                      const std::vector<double>& errors = {}) const;

    /** After addCorrelation(). */
    void addLikelihood(KrigingFit& fit, const KrigingSearchResult& found) const;

    /**
     * Process variance and likelihood where nothing is correlated: R is the identity.
     * @param variance of the standardised output, whose logarithm exists where the squared unit of
     *                 the output overflows.
     */
    void addIndependence(KrigingFit& fit, double variance, double degreesOfFreedom) const;

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
    void findWorstCases(KrigingFit& fit, const Errors& errors) const;

    const KrigingCases& cases;
    const std::vector<double>& output;
    OutputScale outputScale;
};
