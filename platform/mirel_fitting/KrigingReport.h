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
    /** A bound of the search at which an estimate ended. */
    enum class Bound
    {
        None,  ///< between the bounds, or not estimated
        Lower, ///< the output changes faster along the input than the cases can show
        Upper, ///< no influence of the input beyond the trend
    };
    /** One per input: where its estimated length ended; None for a fixed one. Upper also where a
     *  length short of the upper bound is as likely as the bound. */
    std::vector<Bound> lengthBounds;
    /** One per input: whether the trend shows none either, where the bound is Upper: it has no term
     *  with the input, or only some whose coefficients are less than two standard errors from 0. */
    std::vector<bool> isWithoutInfluence;
    /** The same; false for inputs that nothing is known of. */
    bool hasNoInfluence(std::size_t input) const
    {
        return input < isWithoutInfluence.size() && isWithoutInfluence[input];
    }
    double nugget = 0.0; ///< relative to the process variance
    /** Upper: beyond the trend the cases show no correlation. Never Lower. */
    Bound nuggetBound = Bound::None;
    double processVariance = 0.0; ///< in squared units of the output
    /** Standard deviation of the noise that the nugget stands for, in the output's unit; 0 where
     * the nugget only keeps the factorisation sound and the model interpolates. */
    double noiseDeviation = 0.0;
    /** n - p, by which the sum of squares was divided for the process variance: n as below, p the
     *  number of trend terms; 0 where no variance is estimated. */
    double degreesOfFreedom = 0.0;
    /** What a search for parameters maximises. */
    enum class Criterion
    {
        None,                          ///< nothing was estimated but the trend and the variance
        RestrictedLikelihood,          ///< the nugget was
        PenalisedRestrictedLikelihood, ///< the lengths were, with a weak prior
    };
    /** What was maximised to estimate lengths and nugget. */
    Criterion criterion = Criterion::None;
    /** In words: "restricted likelihood, penalised lengths" and the like. */
    MIREL_FITTING_EXPORT std::string criterionText() const;
    /** What follows the number in a report: " (at its lower bound)"; nothing for None. */
    MIREL_FITTING_EXPORT static std::string boundText(Bound bound);
    /** Likewise of a length: " (no influence)" at the upper bound; nothing for inputs that nothing
     *  is known of. */
    MIREL_FITTING_EXPORT std::string lengthBoundText(std::size_t input) const;
    /**
     * The restricted log-likelihood, without the prior of the lengths, in the output's units:
     * -((n - p) (ln(2 pi s2) + 1) + ln det R + ln det(F' R^-1 F) - ln det(F' F)) / 2 with the
     * process variance s2, the correlation matrix R with the nugget on its diagonal, the trend's
     * terms F. n is the number of cases,
     * exact copies counted once unless other cases with the same inputs differ; where the latter
     * are averaged, n is the number of distinct points. Infinite where s2 is 0: the output is
     * constant, or the trend passes through all cases. NaN for more than 10 000 distinct cases,
     * whose likelihood is not computed.
     */
    double logLikelihood = std::numeric_limits<double>::quiet_NaN();
    /**
     * logLikelihood minus the distance, by the criterion, of the second best maximum that the
     * search found; NaN if there is none. Two ends of a flat ridge, between which the criterion
     * dips by less than 0.25, count as one maximum. Where a subset of the cases was searched, the
     * distance is extrapolated in proportion to the number of cases.
     */
    double secondLogLikelihood = std::numeric_limits<double>::quiet_NaN();
    /** Condition number of the correlation matrix with its nugget, estimated in the 1-norm; NaN for
     *  a model without correlation. */
    double condition = std::numeric_limits<double>::quiet_NaN();
    int trendOrder = 0; ///< 0 constant, 1 linear, 2 full quadratic, as used
    /** "1", "V1", "V1^2", "V1 V2", ...: the terms of the trend that were kept, and beside each its
     *  coefficient in the inputs' units. */
    std::vector<std::string> trendTerms;
    /** Likewise: the positions of the inputs that the term multiplies, two at most; none for the
     *  constant. */
    std::vector<std::vector<std::size_t>> trendFactors;
    std::vector<double> trendCoefficients; ///< of `trendTerms`

    /** A case that a fit to the others predicts. */
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
