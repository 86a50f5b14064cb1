#pragma once

#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/likelihood/KrigingTrend.h>
#include <mirel_fitting/kriging/search/KrigingSearch.h>

#include <cstddef>
#include <limits>
#include <memory>

/**
 * The order of the trend where cases are few. Each term of a trend takes a case away from what the
 * correlations are estimated from: where that costs more than the term explains, lengths and
 * predictions are worse than with a constant trend. Two estimates of how well a model predicts n
 * other cases, in log-likelihood, are added up: half of the corrected Akaike criterion,
 *
 *   AICc = -2 ln L + 2 k + 2 k (k + 1) / (n - k - 1),
 *
 * n the number of replicates, k that of the terms, lengths and the variance, and n times the
 * logarithm of the leave-one-out error, n the number of points. One alone is wrong more often than
 * both. A higher order has to gain SearchPolicy::trendGain. Hurvich, Tsai: Regression and time
 * series model selection in small samples, Biometrika 76 (1989); Stone: An asymptotic equivalence
 * of choice of model by cross-validation and Akaike's criterion, J. R. Stat. Soc. B 39 (1977).
 */
class KrigingTrendChoice
{
public:
    /** Of the standardised output. */
    struct Quality
    {
        double akaike = std::numeric_limits<double>::infinity(); ///< corrected
        /** Root mean square; infinite where a case that is left out determines the trend. */
        double leaveOneOutError = std::numeric_limits<double>::infinity();
    };

    struct Result
    {
        std::shared_ptr<const KrigingTrend> trend;
        std::shared_ptr<KrigingData> data; ///< with the terms of that trend
        KrigingSearch::Result found;
        Quality quality;
        Quality qualityOfHighest; ///< with the trend that was asked for
    };

    /** Whether the order matters: a trend with slopes and few cases per term. */
    static bool isNeeded(const KrigingTrend& trend, const KrigingData& data,
                         const SearchPolicy& policy = {});

    /** Whether a model of higher order is worth it. @param points that are left out in turn. */
    static bool isBetter(const Quality& higher, const Quality& lower, std::size_t points,
                         const SearchPolicy& policy = {});

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
