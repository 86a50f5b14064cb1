#include <mirel_fitting/kriging/fit/ExactKriging.h>

#include <mirel_fitting/kriging/correlation/MaternCorrelation.h>

#include <cmath>
#include <utility>
#include <vector>

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

    if (input.isNuggetWanted() || found.isNuggetRaised ||
        found.parameters.nugget > SearchPolicy().soundNugget) {
        return false;
    }
    likelihood.equations().refineWithoutNugget();
    const std::vector<double> residuals = likelihood.equations().residuals();
    double squares = 0.0;
    for (const double residual : residuals) {
        squares += residual * residual;
    }
    return std::sqrt(squares / static_cast<double>(residuals.size())) <= tolerance;
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
    auto correlation =
        std::make_shared<MaternCorrelation>(data->cases, data->inputs, data->coordinates.data());
    correlation->setLengths(parameters.lengths);
    model.correlation = std::move(correlation);
    model.coefficients = likelihood.equations().coefficients();
    model.weights = likelihood.equations().weights();
}
