#pragma once

#include <surrogate_session/Export.h>

#include <cstddef>
#include <limits>
#include <vector>

/**
 * The errors of both models at the cases left out of their fits, fold by fold. What is tested is
 * the mean over the folds of ln(RMSE of the response surface / RMSE of Kriging): a few large errors
 * do not decide it, as they decide the difference of squared errors. The fits of two folds share
 * most of their cases, so that the variance of the mean is larger than that of independent folds:
 * by the test cases over the training cases (Nadeau, Bengio: Inference for the generalization
 * error, Machine Learning 52 (2003)).
 */
struct SURROGATE_SESSION_EXPORT PairedErrors
{
    static constexpr double none = std::numeric_limits<double>::quiet_NaN();

    /** One case that both models have predicted. */
    struct Case
    {
        std::size_t fold;
        double responseSurface; ///< its error, absolute
        double kriging;         ///< likewise
    };

    /**
     * @param folds      into which all cases were split, at least 2.
     * @param negligible smaller errors of a fold make no difference.
     */
    static PairedErrors of(const std::vector<Case>& cases, std::size_t folds, double negligible);

    std::size_t folds = 0; ///< with cases that both have predicted; the figures need two
    double logRatio = none;
    double standardError = none;
    double p = none; ///< of the two-sided test by Student's t that the mean is 0
    std::size_t responseSurfaceNearer = 0; ///< at so many cases its error is the smaller one
    std::size_t krigingNearer = 0;
};
