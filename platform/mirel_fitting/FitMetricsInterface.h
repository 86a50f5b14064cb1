#pragma once

#include <mirel_fitting/Export.h>

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

/** How well a fit describes its cases; NaN where a figure does not exist for the model. */
struct FitMetrics
{
    static constexpr double none = std::numeric_limits<double>::quiet_NaN();

    std::size_t cases = 0;     ///< cases the fit used
    std::size_t terms = 0;     ///< coefficients of the polynomial (trend) that were estimated
    double r2 = none;          ///< 1 - SSE / SST
    double adjustedR2 = none;  ///< 1 - (SSE / (n - p)) / (SST / (n - 1))
    double rmse = none;        ///< response surface: sqrt(SSE / (n - p)); Kriging: sqrt(SSE / n)
    double press = none;       ///< sum of squared leave-one-out residuals
    double predictedR2 = none; ///< 1 - PRESS / SST
    double looRmse = none;     ///< sqrt(PRESS / n)
    double q2 = none;          ///< 1 - PRESS / SST, Kriging
};

/** Ability of a model: its quality as numbers. */
class MIREL_FITTING_EXPORT FitMetricsInterface
{
public:
    virtual ~FitMetricsInterface();

    /** @throw SurrogateModelInterface::Error like qualityMetricInformation(). */
    virtual FitMetrics fitMetrics(int offset) const = 0;

    /** What changed the result (terms or cases dropped, nugget raised, ...), a sentence each. */
    virtual std::vector<std::string> fitWarnings(int offset) const = 0;
};
