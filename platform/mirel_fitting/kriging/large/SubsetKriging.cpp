#include <mirel_fitting/kriging/large/SubsetKriging.h>

#include <mirel_fitting/ThreadCount.h>
#include <mirel_fitting/kriging/correlation/MaternCorrelation.h>
#include <mirel_fitting/kriging/correlation/NuggetBounds.h>
#include <mirel_fitting/machine/OrderedChunks.h>

#include <algorithm>
#include <cmath>
#include <utility>

SubsetKriging::SubsetKriging(const KrigingData& all, const Subset& subset,
                             std::vector<double> lengths)
    : all(all), subset(subset), lengths(std::move(lengths)), likelihood(subset.data)
{}

SubsetKriging::Model SubsetKriging::fit(double nugget, bool interpolate)
{
    Model model;
    model.nugget = NuggetBounds::raisedUntil(
        nugget, [&](double tried) { return std::isfinite(likelihood.evaluate(lengths, tried)); });
    model.isNuggetRaised = model.nugget > nugget;
    model.interpolates = interpolate && !model.isNuggetRaised && nugget <= NuggetBounds::sound;
    if (model.interpolates) {
        likelihood.equations().refineWithoutNugget();
    }
    model.processVariance = likelihood.processVariance();
    model.condition = likelihood.equations().conditionEstimate();
    model.coefficients = likelihood.equations().coefficients();
    model.weights = likelihood.equations().weights();
    return model;
}

std::vector<double> SubsetKriging::residuals(const Model& model) const
{
    constexpr std::size_t casesPerChunk = 1024; // stay in the first-level cache

    const MaternCorrelation correlation(subset.data->cases, subset.data->inputs,
                                        subset.data->coordinates.data(), lengths);
    std::vector<double> predictions(all.cases, 0.0);
    const OrderedChunks::Work predict = [&](std::size_t chunk) {
        const std::size_t first = chunk * casesPerChunk;
        const std::size_t count = std::min(casesPerChunk, all.cases - first);
        const std::vector<const double*> points = all.columns(first);
        subset.trend->add(points, count, model.coefficients, predictions.data() + first);
        if (!model.weights.empty()) {
            correlation.addWeightedSums(points, count, model.weights.data(),
                                        predictions.data() + first);
        }
    };
    OrderedChunks::runEach((all.cases + casesPerChunk - 1) / casesPerChunk, threadCount(),
                           [&] { return predict; });

    std::vector<double> result(all.cases);
    std::transform(all.output.begin(), all.output.end(), predictions.begin(), result.begin(),
                   [](double output, double prediction) { return output - prediction; });
    return result;
}
