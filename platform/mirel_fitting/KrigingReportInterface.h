#pragma once

#include <mirel_fitting/Export.h>

#include <string>
#include <vector>

/** The estimated parameters of one Kriging fit, in the units of the data. */
struct KrigingReport
{
    /** One per input, in its unit; infinity for a constant input, which has no influence. */
    std::vector<double> correlationLengths;
    double nugget = 0.0;          ///< relative to the process variance
    double processVariance = 0.0; ///< in squared units of the output
    /**
     * -(n ln(2 pi s2) + ln det R + n) / 2 in the output's units: s2 the process variance, R the
     * correlation matrix with the nugget on its diagonal, n its order. n is the number of cases,
     * exact copies counted once; where the nugget is fixed, cases with the same inputs are averaged
     * and n is the number of distinct points. Infinite where s2 is 0: the output is constant, or
     * the trend passes through all cases.
     */
    double logLikelihood = 0.0;
    int trendOrder = 0; ///< 0 constant, 1 linear, 2 full quadratic, as used
    /** "1", "V1", "V1^2", "V1 V2", ...: the terms of the trend that were kept, and beside each its
     *  coefficient in the inputs' units. */
    std::vector<std::string> trendTerms;
    std::vector<double> trendCoefficients;
};

/** Ability of a model: the parameters of its Kriging fits. */
class MIREL_FITTING_EXPORT KrigingReportInterface
{
public:
    virtual ~KrigingReportInterface();

    /** Fits the dependent if it is not fitted yet; @throw SurrogateModelInterface::Error. */
    virtual KrigingReport krigingReport(int offset) const = 0;
};
