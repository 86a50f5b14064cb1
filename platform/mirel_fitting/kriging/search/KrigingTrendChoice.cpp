#include <mirel_fitting/kriging/search/KrigingTrendChoice.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/kriging/likelihood/KrigingLikelihood.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace {

/** The penalty for terms and parameters: AICc + 2 ln L. */
double akaikePenalty(const KrigingData& data)
{
    const double n = data.rowCount();
    const auto k = static_cast<double>(data.terms + data.inputs + 1);
    if (n - k <= 1.0) {
        return std::numeric_limits<double>::infinity();
    }
    return 2.0 * k + 2.0 * k * (k + 1.0) / (n - k - 1.0);
}

double leaveOneOutError(const std::shared_ptr<const KrigingData>& data,
                        const KrigingParameters& parameters)
{
    const FitProgress::Portion progress(0.99, 1.0, "Choosing the trend");
    KrigingLikelihood likelihood(data);
    likelihood.evaluate(parameters.lengths, parameters.nugget);
    double squares = 0.0;
    for (const double residual : likelihood.leaveOneOutResiduals()) {
        squares += residual * residual;
    }
    const double error = std::sqrt(squares / static_cast<double>(data->cases));
    return std::isnan(error) ? std::numeric_limits<double>::infinity() : error;
}

KrigingTrendChoice::Result withOrder(int order, const std::shared_ptr<KrigingData>& data,
                                     const std::shared_ptr<const KrigingTrend>& highest)
{
    KrigingTrendChoice::Result result;
    if (order == highest->order()) {
        result.trend = highest;
        result.data = data;
        return result;
    }
    const std::size_t otherParameters = data->inputs + 1;
    result.trend = std::make_shared<KrigingTrend>(data->cases, data->inputs, data->coordinates,
                                                  order, otherParameters);
    result.data = std::make_shared<KrigingData>(*data);
    result.data->terms = result.trend->size();
    result.data->trend = result.trend->matrix();
    return result;
}

void search(KrigingTrendChoice::Result& result, const KrigingSearch::Settings& settings)
{
    result.found = KrigingSearch::run(result.data, settings);
    result.quality = {akaikePenalty(*result.data) - 2.0 * result.found.logLikelihood,
                      leaveOneOutError(result.data, result.found.parameters)};
}

} // namespace

bool KrigingTrendChoice::isNeeded(const KrigingTrend& trend, const KrigingData& data,
                                  const SearchPolicy& policy)
{
    return trend.order() > 0 && data.cases < policy.casesPerTerm * trend.size();
}

bool KrigingTrendChoice::isBetter(const Quality& higher, const Quality& lower, std::size_t points,
                                  const SearchPolicy& policy)
{
    // Of the output's deviation: less is rounding.
    constexpr double exact = 1e-12;

    const double ratio =
        std::max(lower.leaveOneOutError, exact) / std::max(higher.leaveOneOutError, exact);
    // Not where both are infinite, as their difference is no number.
    return 0.5 * (lower.akaike - higher.akaike) + static_cast<double>(points) * std::log(ratio) >
           policy.trendGain;
}

KrigingTrendChoice::Result
KrigingTrendChoice::run(const std::shared_ptr<KrigingData>& data,
                        const std::shared_ptr<const KrigingTrend>& highest,
                        const KrigingSearch::Settings& settings)
{
    constexpr double first = 0.6; // of the work: the other searches have a start nearby

    Result best = withOrder(0, data, highest);
    {
        const FitProgress::Portion portion(0.0, first);
        search(best, settings);
    }
    const double step = (1.0 - first) / highest->order();
    for (int order = 1; order <= highest->order(); ++order) {
        const FitProgress::Portion portion(first + (order - 1) * step, first + order * step);
        Result other = withOrder(order, data, highest);
        KrigingSearch::Settings nearby = settings;
        nearby.starts = {best.found.parameters};
        if (!best.found.secondParameters.lengths.empty()) {
            // With another trend the second of several optima may be the best.
            nearby.starts.push_back(best.found.secondParameters);
        }
        search(other, nearby);
        const Quality quality = other.quality;
        if (isBetter(other.quality, best.quality, data->cases, settings.policy)) {
            best = std::move(other);
        }
        best.qualityOfHighest = quality;
    }
    return best;
}
