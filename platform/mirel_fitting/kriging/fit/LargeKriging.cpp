#include <mirel_fitting/kriging/fit/LargeKriging.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/SurrogateModelInterface.h>
#include <mirel_fitting/ThreadCount.h>
#include <mirel_fitting/cases/SpaceFillingSubset.h>
#include <mirel_fitting/kriging/correlation/MaternCorrelation.h>
#include <mirel_fitting/kriging/fit/KrigingTexts.h>
#include <mirel_fitting/kriging/likelihood/KrigingLikelihood.h>
#include <mirel_fitting/kriging/search/KrigingSubsetSearch.h>
#include <mirel_fitting/machine/OrderedChunks.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <numeric>
#include <random>
#include <string>
#include <utility>

namespace {

const double twoPi = 2.0 * std::acos(-1.0);

double rootMeanSquare(const std::vector<double>& values)
{
    double squares = 0.0;
    for (const double value : values) {
        squares += value * value;
    }
    return std::sqrt(squares / static_cast<double>(std::max<std::size_t>(values.size(), 1)));
}

/** The exact model of the subset. */
struct FirstLayer
{
    double nugget = 0.0;
    bool isNuggetRaised = false;
    bool meetsCases = false;
    double logLikelihood = 0.0;
    double processVariance = 0.0;
    double condition = 0.0;
    std::vector<double> coefficients;
    std::vector<double> weights;
    std::vector<double> remainders; // of the outputs of all cases
    double error = 0.0;             // root mean square at the measured cases
};

/** A candidate: what neighbours make of the outputs minus a first layer. */
struct Layer
{
    std::shared_ptr<NearestNeighbourKriging> kriging;
    std::vector<double> leaveOneOutResiduals; // of the measured cases
    std::vector<double> leaveOneOutVariances;
    double error = 0.0; // their root mean square
};

class Fit
{
public:
    Fit(const std::shared_ptr<const KrigingData>& data, const LargeKriging::Subset& subset,
        const KrigingSearch::Settings& settings, const KrigingSizes& sizes)
        : data(data), subset(subset), settings(settings), sizes(sizes)
    {}

    LargeKriging::Result run(bool meetCases);

private:
    void search();
    void fitSubset(bool meetCases);
    std::vector<std::size_t> others() const;
    void chooseMeasured();
    FirstLayer modelOfSubset(KrigingLikelihood& likelihood, double nugget, bool meetCases) const;
    std::vector<double> remainders(const FirstLayer& layer, bool isWhole) const;
    std::vector<double> atMeasured(const std::vector<double>& values) const;
    Layer neighboursOf(const std::vector<double>& values,
                       const NearestNeighbourKriging::Parameters& start);
    NearestNeighbourKriging::Parameters
    estimate(const std::vector<double>& values, const NearestNeighbourKriging& kriging,
             const NearestNeighbourKriging::Parameters& start) const;
    void use(const Layer& layer, const std::vector<double>& values);
    void estimateCorrectedVariance(const Layer& layer);
    void addLikelihoodOfOthers(const NearestNeighbourKriging& kriging);
    double logDensityOfScatter(const std::vector<std::size_t>& indices, double noise) const;

    std::shared_ptr<const KrigingData> data;
    const LargeKriging::Subset& subset;
    const KrigingSearch::Settings& settings;
    const KrigingSizes& sizes;
    FirstLayer first;
    std::vector<double> correctedVariances; // of the measured cases, by the nearest ones
    LargeKriging::Result result;
};

void Fit::search()
{
    result.found = KrigingSubsetSearch::ofSubset(*subset.data, subset.trend->order(), settings,
                                                 sizes.searched);
}

/** The exact model of the subset, with the nugget of the fewer cases of the search or another. */
void Fit::fitSubset(bool meetCases)
{
    KrigingLikelihood likelihood(subset.data);
    const double estimated = result.found.parameters.nugget;
    first = modelOfSubset(likelihood, estimated, meetCases);
    if (const auto least = KrigingSubsetSearch::nuggetToTry(settings, estimated)) {
        FirstLayer other = modelOfSubset(likelihood, *least, meetCases);
        if (other.error < first.error) {
            first = std::move(other);
        }
    }
}

FirstLayer Fit::modelOfSubset(KrigingLikelihood& likelihood, double nugget, bool meetCases) const
{
    constexpr double raise = 10.0;
    constexpr double hopeless = 1.0;

    FirstLayer layer;
    layer.nugget = nugget;
    for (;;) {
        layer.logLikelihood = likelihood.evaluate(result.found.parameters.lengths, layer.nugget);
        if (std::isfinite(layer.logLikelihood)) {
            break;
        }
        if (layer.nugget > hopeless) {
            throw SurrogateModelInterface::Error(
                "The correlation matrix of the cases cannot be factorised.");
        }
        layer.nugget *= raise;
        layer.isNuggetRaised = true;
    }
    layer.meetsCases =
        meetCases && !layer.isNuggetRaised && layer.nugget <= settings.policy.soundNugget;
    if (layer.meetsCases) {
        likelihood.refineWithoutNugget();
    }
    layer.processVariance = likelihood.processVariance();
    layer.condition = likelihood.conditionEstimate();
    layer.coefficients = likelihood.coefficients();
    layer.weights = likelihood.weights();
    layer.remainders = remainders(layer, true);
    layer.error = rootMeanSquare(atMeasured(layer.remainders));
    return layer;
}

std::vector<std::size_t> Fit::others() const
{
    std::vector<std::size_t> all(data->cases);
    std::iota(all.begin(), all.end(), std::size_t{0});
    std::vector<std::size_t> left;
    std::set_difference(all.begin(), all.end(), subset.indices.begin(), subset.indices.end(),
                        std::back_inserter(left));
    return left;
}

void Fit::chooseMeasured()
{
    const std::vector<std::size_t> outside = others();
    for (const std::size_t position : randomSubset(outside.size(), sizes.measured)) {
        result.measured.push_back(outside[position]);
    }
}

/** What the subset's model, or its trend alone, leaves of the outputs of all cases. */
std::vector<double> Fit::remainders(const FirstLayer& layer, bool isWhole) const
{
    constexpr std::size_t perChunk = 1024;

    MaternCorrelation correlation(subset.data->cases, subset.data->inputs,
                                  subset.data->coordinates.data());
    correlation.setLengths(result.found.parameters.lengths);
    std::vector<double> predictions(data->cases, 0.0);
    const OrderedChunks::Work predict = [&](std::size_t chunk) {
        const std::size_t first = chunk * perChunk;
        const std::size_t count = std::min(perChunk, data->cases - first);
        std::vector<const double*> points;
        for (std::size_t k = 0; k < data->inputs; ++k) {
            points.push_back(data->coordinates.data() + k * data->cases + first);
        }
        double* sums = predictions.data() + first;
        subset.trend->add(points, count, layer.coefficients, sums);
        if (isWhole) {
            correlation.addWeightedSums(points, count, layer.weights.data(), sums);
        }
    };
    OrderedChunks::runEach((data->cases + perChunk - 1) / perChunk, threadCount(),
                           [&] { return predict; }, [](std::size_t) { FitProgress::advance(); });
    for (std::size_t i = 0; i < data->cases; ++i) {
        predictions[i] = data->output[i] - predictions[i];
    }
    return predictions;
}

std::vector<double> Fit::atMeasured(const std::vector<double>& values) const
{
    std::vector<double> picked;
    for (const std::size_t index : result.measured) {
        picked.push_back(values[index]);
    }
    return picked;
}

/** Logarithm of the density of some values, each predicted by all others; the variance of the
 *  process is profiled out. */
double logDensity(const std::vector<double>& values,
                  const std::vector<NearestNeighbourKriging::Prediction>& predictions)
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
 * Lengths and nugget of greatest leave-one-out density: first a common factor of all lengths and
 * the nugget on a grid, then each of them in turn in smaller and smaller steps. Sundararajan,
 * Keerthi: Predictive approaches for choosing hyperparameters in Gaussian processes, Neural
 * Computation 13 (2001).
 */
NearestNeighbourKriging::Parameters
Fit::estimate(const std::vector<double>& values, const NearestNeighbourKriging& kriging,
              const NearestNeighbourKriging::Parameters& start) const
{
    std::vector<std::size_t> sample;
    std::vector<double> expected;
    for (const std::size_t position : randomSubset(result.measured.size(), sizes.estimated)) {
        sample.push_back(result.measured[position]);
        expected.push_back(values[sample.back()]);
    }
    const NearestNeighbourKriging::LeftOut leftOut(kriging, sample);
    const auto density = [&](const NearestNeighbourKriging::Parameters& parameters) {
        const double found = logDensity(expected, leftOut.predict(parameters));
        return std::isfinite(found) ? found : -std::numeric_limits<double>::infinity();
    };

    NearestNeighbourKriging::Parameters best = start;
    double highest = density(best);
    const auto attempt = [&](const NearestNeighbourKriging::Parameters& parameters) {
        const double found = density(parameters);
        if (!(found > highest)) {
            return false;
        }
        highest = found;
        best = parameters;
        return true;
    };

    const std::vector<double> lengthFactors = {0.05, 0.1, 0.2, 0.5, 1.0};
    const std::vector<double> nuggets = {1e-10, 1e-6, 1e-4, 1e-2, 0.1, 1.0};
    for (const double factor : lengthFactors) {
        for (const double nugget : nuggets) {
            NearestNeighbourKriging::Parameters parameters = start;
            for (double& length : parameters.lengths) {
                length *= factor;
            }
            parameters.nugget = std::max(nugget, settings.smallestNugget);
            attempt(parameters);
        }
    }
    double step = 2.0;
    while (step > 1.2) {
        for (const double factor : {step, 1.0 / step}) {
            NearestNeighbourKriging::Parameters parameters = best;
            parameters.nugget =
                std::max(parameters.nugget * factor * factor, settings.smallestNugget);
            attempt(parameters);
        }
        for (std::size_t k = 0; k < data->inputs; ++k) {
            for (const double factor : {step, 1.0 / step}) {
                NearestNeighbourKriging::Parameters parameters = best;
                parameters.lengths[k] *= factor;
                if (attempt(parameters)) {
                    break;
                }
            }
        }
        step = std::sqrt(step);
    }
    return best;
}

Layer Fit::neighboursOf(const std::vector<double>& values,
                        const NearestNeighbourKriging::Parameters& start)
{
    NearestNeighbourKriging::Cases cases;
    cases.count = data->cases;
    cases.inputs = data->inputs;
    cases.coordinates = data->coordinates.data();
    cases.values = values;
    cases.rows = data->rows;
    Layer layer;
    {
        constexpr double expectedTrials = 200.0;
        const FitProgress::Portion portion(0.0, 0.7, "Estimating what near cases tell",
                                           expectedTrials * static_cast<double>(sizes.estimated));
        layer.kriging = std::make_shared<NearestNeighbourKriging>(std::move(cases), start.lengths,
                                                                  sizes.neighbours);
        layer.kriging->setParameters(estimate(values, *layer.kriging, start));
    }
    const FitProgress::Portion portion(0.7, 1.0, "Leaving out cases",
                                       2.0 * static_cast<double>(result.measured.size()));
    const NearestNeighbourKriging::LeftOut leftOut(*layer.kriging, result.measured);
    const auto predictions = leftOut.predict(layer.kriging->parameters());
    for (std::size_t i = 0; i < result.measured.size(); ++i) {
        layer.leaveOneOutResiduals.push_back(values[result.measured[i]] - predictions[i].mean);
        layer.leaveOneOutVariances.push_back(predictions[i].variance);
    }
    layer.error = rootMeanSquare(layer.leaveOneOutResiduals);
    return layer;
}

void Fit::use(const Layer& layer, const std::vector<double>& values)
{
    result.neighbours = layer.kriging;
    result.leaveOneOutResiduals = layer.leaveOneOutResiduals;
    result.leaveOneOutVariances = layer.leaveOneOutVariances;

    std::vector<std::vector<double>> columns(data->inputs);
    std::vector<const double*> points;
    for (std::size_t k = 0; k < data->inputs; ++k) {
        for (const std::size_t index : result.measured) {
            columns[k].push_back(data->coordinates[k * data->cases + index]);
        }
        points.push_back(columns[k].data());
    }
    std::vector<double> explained(result.measured.size(), 0.0);
    layer.kriging->add(points, explained.size(), explained.data());
    result.residuals = atMeasured(values);
    for (std::size_t i = 0; i < explained.size(); ++i) {
        result.residuals[i] -= explained[i];
    }
}

/** Of the first layer's process, such that the nearest cases alone would make the errors that the
 *  measured cases have when they are left out. */
void Fit::estimateCorrectedVariance(const Layer& layer)
{
    const NearestNeighbourKriging::LeftOut leftOut(*layer.kriging, result.measured);
    double variances = 0.0;
    for (const NearestNeighbourKriging::Prediction& prediction :
         leftOut.predict({result.found.parameters.lengths, result.found.parameters.nugget})) {
        variances += prediction.variance;
        correctedVariances.push_back(prediction.variance);
    }
    double squares = 0.0;
    for (const double residual : layer.leaveOneOutResiduals) {
        squares += residual * residual;
    }
    result.correctedVariance = squares / variances;
}

/** The likelihood of the cases outside of the subset, given the subset, in random order. */
void Fit::addLikelihoodOfOthers(const NearestNeighbourKriging& kriging)
{
    std::vector<std::size_t> outside = others();
    std::mt19937_64 generator(outside.size());
    for (std::size_t i = outside.size(); i-- > 1;) {
        std::swap(outside[i], outside[generator() % (i + 1)]);
    }
    std::vector<std::size_t> order = subset.indices;
    order.insert(order.end(), outside.begin(), outside.end());
    result.found.logLikelihood +=
        kriging.logLikelihood(order, subset.indices.size(), result.neighbourVariance);
    const double noise = result.neighbourVariance * kriging.parameters().nugget;
    result.found.logLikelihood += logDensityOfScatter(outside, noise);
}

/** The rows of the same case about their mean. The noise that they show counts where it is more
 *  than what the cases do. */
double Fit::logDensityOfScatter(const std::vector<std::size_t>& indices, double noise) const
{
    double repeated = 0.0;
    double scatter = 0.0;
    double logRows = 0.0;
    for (const std::size_t index : indices) {
        repeated += data->rows[index] - 1.0;
        scatter += data->scatter[index];
        logRows += std::log(data->rows[index]);
    }
    if (repeated == 0.0) {
        return 0.0;
    }
    const double variance = std::max(noise, scatter / repeated);
    return -0.5 * (repeated * std::log(twoPi * variance) + scatter / variance + logRows);
}

LargeKriging::Result Fit::run(bool meetCases)
{
    {
        const FitProgress::Portion portion(0.0, 0.25);
        search();
    }
    chooseMeasured();
    {
        const auto n = static_cast<double>(subset.indices.size());
        const FitProgress::Portion portion(0.25, 0.5, "Fitting a subset of the cases",
                                           n * n * n / 3.0);
        fitSubset(meetCases);
    }
    result.found.parameters.nugget = first.nugget;
    result.found.isNuggetRaised = result.found.isNuggetRaised || first.isNuggetRaised;
    result.found.logLikelihood = first.logLikelihood;
    result.meetsCases = first.meetsCases;
    result.processVariance = first.processVariance;
    result.condition = first.condition;
    result.coefficients = first.coefficients;
    result.weights = first.weights;
    std::vector<double> ofTrend;
    {
        const FitProgress::Portion portion(0.5, 0.5, "Fitting a subset of the cases");
        ofTrend = remainders(first, false);
    }

    NearestNeighbourKriging::Parameters start;
    start.lengths = result.found.parameters.lengths;
    start.nugget = result.found.parameters.nugget;
    Layer layered;
    {
        const FitProgress::Portion portion(0.5, 0.65);
        layered = neighboursOf(first.remainders, start);
    }
    Layer local;
    {
        const FitProgress::Portion portion(0.65, 0.8);
        local = neighboursOf(ofTrend, start);
    }

    result.leaveOneOutResiduals = atMeasured(first.remainders);
    result.residuals = result.leaveOneOutResiduals;
    result.subsetError = first.error;
    result.subsetSize = subset.indices.size();
    const FitProgress::Portion portion(0.8, 1.0, "Leaving out cases",
                                       2.0 * static_cast<double>(result.measured.size()));
    if (layered.error < result.subsetError && layered.error <= local.error) {
        use(layered, first.remainders);
        estimateCorrectedVariance(layered);
    } else if (local.error < result.subsetError) {
        use(local, ofTrend);
        result.weights.clear();
    }
    result.error = rootMeanSquare(result.leaveOneOutResiduals);
    if (result.neighbours) {
        addLikelihoodOfOthers(*result.neighbours);
    }
    // As for standard errors: the larger of what the two layers do not know.
    for (std::size_t i = 0; result.neighbourVariance > 0.0 && i < correctedVariances.size(); ++i) {
        result.leaveOneOutVariances[i] =
            std::max(result.leaveOneOutVariances[i],
                     correctedVariances[i] * result.correctedVariance / result.neighbourVariance);
    }
    return std::move(result);
}

} // namespace

std::string LargeKriging::Result::description(double scale) const
{
    const std::string subset = std::to_string(subsetSize) + " cases";
    const std::string spread = "the model is that of " + subset + " spread over all of them, ";
    if (!neighbours) {
        return spread + "which the nearest cases of each point could not improve.";
    }
    const std::string nearest = "Kriging from the " + std::to_string(neighbours->neighbours()) +
                                " nearest cases of each point";
    const bool isLocal = weights.empty();
    return (isLocal ? "the model is " : spread + "corrected by ") + nearest +
           "; left-out cases are predicted with an error of " +
           KrigingTexts::figure(scale * error) + " instead of " +
           KrigingTexts::figure(scale * subsetError) +
           (isLocal ? " by a model of " + subset : " without") + ".";
}

LargeKriging::Result LargeKriging::run(const std::shared_ptr<const KrigingData>& data,
                                       const Subset& subset,
                                       const KrigingSearch::Settings& settings, bool meetCases,
                                       const KrigingSizes& sizes)
{
    return Fit(data, subset, settings, sizes).run(meetCases);
}
