#pragma once

#include <cstddef>
#include <limits>

/** How well a fit describes its cases, n of them, with p estimated terms. NaN where a figure does
 * not exist for the model. */
struct FitMetrics
{
    static constexpr double none = std::numeric_limits<double>::quiet_NaN(); ///< does not exist

    std::size_t cases = 0;     ///< n: cases that the fit used
    std::size_t terms = 0;     ///< p: estimated coefficients of the polynomial (trend)
    double r2 = none;          ///< 1 - SSE / SST
    double adjustedR2 = none;  ///< 1 - (SSE / (n - p)) / (SST / (n - 1))
    double rmse = none;        ///< response surface: sqrt(SSE / (n - p)); Kriging: sqrt(SSE / n)
    double press = none;       ///< sum of squared leave-one-out residuals
    double predictedR2 = none; ///< 1 - PRESS / SST
    double looRmse = none;     ///< sqrt(PRESS / n)
    double q2 = none;          ///< 1 - PRESS / SST, Kriging
    /** Response surface: -(n ln(2 pi SSE / n) + n) / 2; Kriging: that of KrigingReport. */
    double logLikelihood = none;
};
