#include <mirel_fitting/kriging/large/NeighbourLayer.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/cases/SpaceFillingSubset.h>
#include <mirel_fitting/numerics/Picked.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

using Parameters = NearestNeighbourKriging::Parameters;
using Prediction = NearestNeighbourKriging::Prediction;

/** Logarithm of the leave-one-out density of some values; the process variance is profiled out. */
double logDensity(const std::vector<double>& values, const std::vector<Prediction>& predictions)
{
    double squares = 0.0;
    double logarithms = 0.0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double deviation = values[i] - predictions[i].mean;
        squares += deviation * deviation / predictions[i].variance;
        logarithms += std::log(predictions[i].variance);
    }
    const auto n = static_cast<double>(values.size());
    return -0.5 * (n * std::log(squares / n) + logarithms);
}

/**
 * First a grid search over the nugget and a common factor of all lengths, then a coordinate search
 * with decreasing steps. Sundararajan, Keerthi: Predictive approaches for choosing
 * hyperparameters in Gaussian processes, Neural Computation 13 (2001).
 */
class DensitySearch
{
public:
    DensitySearch(const NearestNeighbourKriging& kriging, const std::vector<std::size_t>& cases,
                  const std::vector<double>& residuals, const Parameters& start,
                  double smallestNugget)
        : sample(kriging, cases), values(picked(residuals, cases)), smallestNugget(smallestNugget),
          bestParameters(start), highest(density(start))
    {}

    const Parameters& best() const { return bestParameters; }

    void tryGrid(const Parameters& start)
    {
        for (const double factor : {0.05, 0.1, 0.2, 0.5, 1.0}) {
            for (const double nugget : {1e-10, 1e-6, 1e-4, 1e-2, 0.1, 1.0}) {
                Parameters parameters = start;
                for (double& length : parameters.lengths) {
                    length *= factor;
                }
                parameters.nugget = nugget;
                keepIfBetter(parameters);
            }
        }
    }

    /** The nugget times and divided by step^2, then each length times or divided by it. */
    void tryStep(double step)
    {
        for (const double factor : {step, 1.0 / step}) {
            Parameters parameters = bestParameters;
            parameters.nugget *= factor * factor;
            keepIfBetter(parameters);
        }
        for (std::size_t k = 0; k < bestParameters.lengths.size(); ++k) {
            Parameters longer = bestParameters;
            longer.lengths[k] *= step;
            Parameters shorter = bestParameters;
            shorter.lengths[k] /= step;
            if (!keepIfBetter(longer)) {
                keepIfBetter(shorter);
            }
        }
    }

private:
    double density(const Parameters& parameters) const
    {
        const double found = logDensity(values, sample.predict(parameters));
        return std::isfinite(found) ? found : -std::numeric_limits<double>::infinity();
    }

    /** @return whether the parameters are better than the best ones, which they replace then. */
    bool keepIfBetter(Parameters parameters)
    {
        parameters.nugget = std::max(parameters.nugget, smallestNugget);
        const double found = density(parameters);
        if (!(found > highest)) {
            return false;
        }
        highest = found;
        bestParameters = std::move(parameters);
        return true;
    }

    NearestNeighbourKriging::LeftOut sample;
    std::vector<double> values;
    double smallestNugget;
    Parameters bestParameters;
    double highest;
};

} // namespace

NeighbourLayer::NeighbourLayer(const KrigingData& data, const std::vector<double>& residuals,
                               const std::vector<std::size_t>& leftOut, const Parameters& start,
                               double smallestNugget, const KrigingSizes& sizes)
    : data(data), residuals(residuals), leftOut(leftOut), smallestNugget(smallestNugget)
{
    constexpr double expectedTrials = 200.0; // of DensitySearch
    constexpr double estimating = 0.7;       // of the work

    {
        const FitProgress::Portion portion(0.0, estimating, "Estimating from nearest neighbours",
                                           expectedTrials * static_cast<double>(sizes.estimated));
        neighbours = std::make_shared<NearestNeighbourKriging>(data, residuals, start.lengths,
                                                               sizes.neighbours);
        neighbours->setParameters(estimate(start, sizes.estimated));
    }
    const FitProgress::Portion portion(estimating, 1.0, "Leaving out cases",
                                       2.0 * static_cast<double>(leftOut.size()));
    const std::vector<Prediction> predictions =
        NearestNeighbourKriging::LeftOut(*neighbours, leftOut).predict(neighbours->parameters());
    for (std::size_t i = 0; i < leftOut.size(); ++i) {
        errors.push_back(residuals[leftOut[i]] - predictions[i].mean);
        relativeVariances.push_back(predictions[i].variance);
    }
}

/** Lengths and nugget of greatest leave-one-out density of the residuals of so many cases. */
Parameters NeighbourLayer::estimate(const Parameters& start, std::size_t cases) const
{
    constexpr double firstStep = 2.0; // factors of lengths
    constexpr double lastStep = 1.2;

    const std::vector<std::size_t> sample = picked(leftOut, randomSubset(leftOut.size(), cases));
    DensitySearch search(*neighbours, sample, residuals, start, smallestNugget);
    search.tryGrid(start);
    for (double step = firstStep; step > lastStep; step = std::sqrt(step)) {
        search.tryStep(step);
    }
    return search.best();
}

double NeighbourLayer::error() const
{
    return rootMeanSquare(errors);
}

double NeighbourLayer::variance() const
{
    double ratios = 0.0;
    for (std::size_t i = 0; i < errors.size(); ++i) {
        ratios += errors[i] * errors[i] / relativeVariances[i];
    }
    return ratios / static_cast<double>(std::max<std::size_t>(errors.size(), 1));
}

std::vector<double> NeighbourLayer::leaveOneOutVariances(const Parameters& parameters) const
{
    std::vector<double> result;
    for (const Prediction& prediction :
         NearestNeighbourKriging::LeftOut(*neighbours, leftOut).predict(parameters)) {
        result.push_back(prediction.variance);
    }
    return result;
}

std::vector<double> NeighbourLayer::residualsAtCases() const
{
    std::vector<double> predictions(leftOut.size(), 0.0);
    neighbours->add(data.subset(leftOut).columns(), predictions.size(), predictions.data());
    std::vector<double> result = picked(residuals, leftOut);
    for (std::size_t i = 0; i < result.size(); ++i) {
        result[i] -= predictions[i];
    }
    return result;
}
