#include <mirel_fitting/ModelInterfaces.h>

#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>
#include <mirel_fitting/TransformedOutput.h>

#include <algorithm>
#include <cmath>

namespace {
/** The values of cases and at the points that the statistics name; residuals and curvatures stay
 *  those of the transform. Standard errors as TransformedOutput has. */
void transformBack(OutputTransform transform, ResponseSurfaceStatistics& statistics)
{
    const auto inverse = [transform](double value) {
        return OutputTransforms::invert(transform, value);
    };
    if (statistics.stationaryPoint) {
        statistics.stationaryPoint->value = inverse(statistics.stationaryPoint->value);
    }
    for (CaseDiagnostics& one : statistics.cases) {
        one.output = inverse(one.output);
    }
    for (auto* const ridge : {&statistics.ascent, &statistics.descent}) {
        for (RidgePoint& point : *ridge) {
            point.standardError = 0.5 * (inverse(point.value + point.standardError) -
                                         inverse(point.value - point.standardError));
            point.value = inverse(point.value);
        }
    }
}
} // namespace

ModelInterfaces::ModelInterfaces(const SurrogateModelInterface& model) : model(model) {}

const PredictiveModel* ModelInterfaces::predictive() const
{
    return dynamic_cast<const PredictiveModel*>(&model);
}

const FittedModel* ModelInterfaces::fitted() const
{
    return dynamic_cast<const FittedModel*>(&model);
}

ModelledTransform ModelInterfaces::transform(int offset) const
{
    const auto* const outer = dynamic_cast<const TransformedOutput*>(&model);
    return outer == nullptr ? ModelledTransform()
                            : ModelledTransform{outer->transform(offset), outer->gain(offset),
                                                outer->boxCoxProfile(offset)};
}

PredictionIntervals ModelInterfaces::confidenceLimits(const std::vector<double*>& points,
                                                      int offset, double level,
                                                      std::size_t count) const
{
    if (const auto* const outer = dynamic_cast<const TransformedOutput*>(&model)) {
        PredictionIntervals limits =
            ModelInterfaces(outer->inner())
                .confidenceLimits(points, outer->innerOffset(offset), level, count);
        OutputTransforms::invert(outer->transform(offset), limits.lower.data(), count);
        OutputTransforms::invert(outer->transform(offset), limits.upper.data(), count);
        return limits;
    }
    const FittedModel& fittedModel = dynamic_cast<const FittedModel&>(model);
    PredictionIntervals limits;
    limits.upper = fittedModel.standardErrors(points, offset, FittedModel::ErrorKind::Mean, count);
    const bool hasErrors = std::none_of(limits.upper.begin(), limits.upper.end(),
                                        [](double error) { return std::isnan(error); });
    const double quantile =
        hasErrors ? fittedModel.confidenceQuantile(offset, level) : std::nan("");
    limits.lower.resize(count);
    std::vector<double*> predictions = {limits.lower.data()};
    fittedModel.interpolateDependentValues(points, {offset}, predictions, count);
    for (std::size_t i = 0; i < count; ++i) {
        const double reach = quantile * limits.upper[i];
        limits.upper[i] = limits.lower[i] + reach;
        limits.lower[i] -= reach;
    }
    return limits;
}

PredictionIntervals ModelInterfaces::predictionIntervals(const std::vector<double*>& points,
                                                         int offset, double level,
                                                         const std::vector<double>& weights) const
{
    using ErrorKind = FittedModel::ErrorKind;
    const std::size_t count = weights.size();
    if (const auto* const outer = dynamic_cast<const TransformedOutput*>(&model)) {
        PredictionIntervals intervals =
            ModelInterfaces(outer->inner())
                .predictionIntervals(points, outer->innerOffset(offset), level, weights);
        OutputTransforms::invert(outer->transform(offset), intervals.lower.data(), count);
        OutputTransforms::invert(outer->transform(offset), intervals.upper.data(), count);
        return intervals;
    }
    const FittedModel& fittedModel = dynamic_cast<const FittedModel&>(model);
    const std::vector<double> means =
        fittedModel.standardErrors(points, offset, ErrorKind::Mean, count);
    PredictionIntervals intervals;
    intervals.upper = fittedModel.standardErrors(points, offset, ErrorKind::Observation, count);
    const double quantile = fittedModel.intervalQuantile(offset, level);
    intervals.lower.resize(count);
    std::vector<double*> predictions = {intervals.lower.data()};
    fittedModel.interpolateDependentValues(points, {offset}, predictions, count);
    for (std::size_t i = 0; i < count; ++i) {
        const double variance = means[i] * means[i];
        const double noise = intervals.upper[i] * intervals.upper[i] - variance;
        const double reach = quantile * std::sqrt(variance + noise / weights[i]);
        intervals.upper[i] = intervals.lower[i] + reach;
        intervals.lower[i] -= reach;
    }
    return intervals;
}

std::optional<KrigingReport> ModelInterfaces::krigingReport(int offset) const
{
    if (const auto* const outer = dynamic_cast<const TransformedOutput*>(&model)) {
        auto report = ModelInterfaces(outer->inner()).krigingReport(outer->innerOffset(offset));
        for (std::size_t i = 0; report && i < report->worstCases.size(); ++i) {
            KrigingReport::LeftOutCase& worst = report->worstCases[i];
            worst.output = OutputTransforms::invert(outer->transform(offset), worst.output);
            worst.predicted = OutputTransforms::invert(outer->transform(offset), worst.predicted);
        }
        return report;
    }
    const auto* const kriging = dynamic_cast<const KrigingSurrogateModel*>(&model);
    return kriging == nullptr ? std::nullopt : std::make_optional(kriging->krigingReport(offset));
}

std::optional<ResponseSurfaceStatistics>
ModelInterfaces::responseSurfaceStatistics(int offset, InputCoding coding) const
{
    if (const auto* const outer = dynamic_cast<const TransformedOutput*>(&model)) {
        auto statistics = ModelInterfaces(outer->inner())
                              .responseSurfaceStatistics(outer->innerOffset(offset), coding);
        if (statistics) {
            transformBack(outer->transform(offset), *statistics);
        }
        return statistics;
    }
    const auto* const surface = dynamic_cast<const SurrogateResponseSurfaceModel*>(&model);
    return surface == nullptr
               ? std::nullopt
               : std::make_optional(surface->responseSurfaceStatistics(offset, 0.95, coding));
}
