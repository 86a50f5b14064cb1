#include <mirel_fitting/kriging/fit/ExactKriging.h>

#include <mirel_fitting/kriging/correlation/MaternCorrelation.h>
#include <mirel_fitting/kriging/correlation/NuggetBounds.h>
#include <mirel_fitting/numerics/Picked.h>

#include <utility>

namespace {

/**
 * Removes the nugget from the weights if it only keeps the factorisation stable.
 * @return whether the model interpolates the cases: not if the lengths are too long for how the
 *         output changes between them.
 */
bool removeNugget(const KrigingFitInput& input, const KrigingSearchResult& found,
                  KrigingLikelihood& likelihood)
{
    constexpr double tolerance = 1e-3; // root mean square residual, of the standardised output

    if (input.isNuggetNoise() || found.isNuggetRaised ||
        found.parameters.nugget > NuggetBounds::sound) {
        return false;
    }
    likelihood.equations().refineWithoutNugget();
    return rootMeanSquare(likelihood.equations().residuals()) <= tolerance;
}

} // namespace

ExactKriging::ExactKriging(const KrigingFitInput& input, std::shared_ptr<const KrigingTrend> trend,
                           std::shared_ptr<const KrigingData> data,
                           const KrigingSearchResult& found)
    : likelihood(data), model(input.emptyModel(std::move(trend), data))
{
    const KrigingParameters& parameters = found.parameters;
    likelihood.evaluate(parameters.lengths, parameters.nugget);
    model.interpolates = removeNugget(input, found, likelihood);
    model.processVariance = likelihood.processVariance();
    model.nugget = parameters.nugget;
    model.correlation = std::make_shared<MaternCorrelation>(
        data->cases, data->inputs, data->coordinates.data(), parameters.lengths);
    model.coefficients = likelihood.equations().coefficients();
    model.weights = likelihood.equations().weights();
}
