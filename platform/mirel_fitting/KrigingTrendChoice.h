#pragma once

#include <mirel_fitting/KrigingData.h>
#include <mirel_fitting/KrigingSearch.h>
#include <mirel_fitting/KrigingTrend.h>

#include <memory>

/**
 * The order of the trend where cases are few. Each term of a trend takes a case away from what the
 * correlations are estimated from: where that costs more than the term explains, lengths and
 * predictions are worse than with a constant trend. The order with the least corrected Akaike
 * criterion is taken,
 *
 *   AICc = -2 ln L + 2 k + 2 k (k + 1) / (n - k - 1),
 *
 * n the number of rows, k that of the terms, lengths and the variance. Hurvich, Tsai: Regression
 * and time series model selection in small samples, Biometrika 76 (1989).
 */
class KrigingTrendChoice
{
public:
    struct Result
    {
        std::shared_ptr<const KrigingTrend> trend;
        std::shared_ptr<KrigingData> data; ///< with the terms of that trend
        KrigingSearch::Result found;
        double criterion = 0.0;
        double criterionOfHighest = 0.0; ///< with the trend that was asked for
    };

    /** Whether the order matters: a trend with slopes and fewer than twenty cases per term. */
    static bool isNeeded(const KrigingTrend& trend, const KrigingData& data);

    /**
     * Searches with a constant trend, and from there with those of higher order.
     * @param data     with the terms of the trend of highest order.
     * @param settings whose lengths are not fixed.
     * @throw SurrogateModelInterface::Error like KrigingSearch::run().
     */
    static Result run(const std::shared_ptr<KrigingData>& data,
                      const std::shared_ptr<const KrigingTrend>& highest,
                      const KrigingSearch::Settings& settings);
};
