#pragma once

#include <mirel_fitting/Export.h>

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

/** The estimated parameters of one Kriging fit, in the units of the data. */
struct KrigingReport
{
    /** One per input, in its unit; infinity for a constant input, which has no influence. */
    std::vector<double> correlationLengths;
    enum class Bound
    {
        None,
        Lower, ///< the output changes faster along the input than the cases can show
        Upper, ///< no influence of the input beyond the trend
    };
    /** One per input: where its estimated length ended; None for a fixed one. */
    std::vector<Bound> lengthBounds;
    double nugget = 0.0; ///< relative to the process variance
    /** Upper: beyond the trend the cases show no correlation. Never Lower. */
    Bound nuggetBound = Bound::None;
    double processVariance = 0.0; ///< in squared units of the output
    /** Standard deviation of the noise that the nugget stands for, in the output's unit; 0 where
     * the nugget only keeps the factorisation sound and the model interpolates. */
    double noiseDeviation = 0.0;
    /**
     * -(n ln(2 pi s2) + ln det R + n) / 2 in the output's units: s2 the process variance, R the
     * correlation matrix with the nugget on its diagonal, n its order. n is the number of cases,
     * exact copies counted once unless other cases with the same inputs differ; where the latter
     * are averaged, n is the number of distinct points. Infinite where s2 is 0: the output is
     * constant, or the trend passes through all cases. NaN for more than 10 000 distinct cases,
     * whose likelihood is not computed.
     */
    double logLikelihood = std::numeric_limits<double>::quiet_NaN();
    /**
     * Log-likelihood of the second best maximum that the search found; NaN if there is none. Two
     * ends of a flat ridge, between which the log-likelihood dips by less than 0.25, count as one
     * maximum. Where a subset of the cases was searched, the difference of the two is extrapolated
     * in proportion to the number of cases.
     */
    double secondLogLikelihood = std::numeric_limits<double>::quiet_NaN();
    /** Condition number of the correlation matrix with its nugget, estimated in the 1-norm; NaN for
     *  a model without correlation. */
    double condition = std::numeric_limits<double>::quiet_NaN();
    int trendOrder = 0; ///< 0 constant, 1 linear, 2 full quadratic, as used
    /** "1", "V1", "V1^2", "V1 V2", ...: the terms of the trend that were kept, and beside each its
     *  coefficient in the inputs' units. */
    std::vector<std::string> trendTerms;
    std::vector<double> trendCoefficients;

    struct LeftOutCase
    {
        std::size_t row;  ///< as given to the model, the first is 0; of copies the first one
        double output;    ///< of cases with the same inputs the mean
        double predicted; ///< by a fit to the other cases

        /** Significant digits with which the two are written so that three digits of their
         *  difference show; at least `fewest`, at most 17. */
        MIREL_FITTING_EXPORT int digits(int fewest) const;
    };
    /** The cases with the largest leave-one-out errors, at most five, the largest first; none where
     *  there are no leave-one-out figures, or nothing but rounding in them. */
    std::vector<LeftOutCase> worstCases;
};
