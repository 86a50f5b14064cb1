#include <mirel_fitting/kriging/large/LargeKriging.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/cases/SpaceFillingSubset.h>
#include <mirel_fitting/kriging/large/NeighbourLayer.h>
#include <mirel_fitting/kriging/search/KrigingSubsetSearch.h>
#include <mirel_fitting/numerics/Picked.h>

#include <algorithm>
#include <iterator>
#include <numeric>
#include <utility>

namespace {

using Result = LargeKriging::Result;

std::vector<std::size_t> randomCasesOutside(const std::vector<std::size_t>& subset,
                                            std::size_t cases, std::size_t count)
{
    std::vector<std::size_t> all(cases);
    std::iota(all.begin(), all.end(), std::size_t{0});
    std::vector<std::size_t> outside;
    std::set_difference(all.begin(), all.end(), subset.begin(), subset.end(),
                        std::back_inserter(outside));
    return picked(outside, randomSubset(outside.size(), count));
}

/** The exact model of the subset, with the nugget of the fewer cases of the search or the least
 *  one, whichever predicts the measured cases better. */
void fitSubset(Result& result, SubsetKriging& kriging, const KrigingSearchSettings& settings,
               bool interpolate)
{
    const auto n = static_cast<double>(result.subsetSize);
    const FitProgress::Portion portion(0.25, 0.5, "Fitting a subset of the cases", n * n * n / 3.0);
    const double estimated = result.found.parameters.nugget;
    const auto errorOf = [&](const SubsetKriging::Model& model) {
        return rootMeanSquare(picked(kriging.residuals(model), result.measured));
    };

    result.subset = kriging.fit(estimated, interpolate);
    result.subsetError = errorOf(result.subset);
    if (const auto least = KrigingSubsetSearch::nuggetToTry(settings, estimated)) {
        SubsetKriging::Model other = kriging.fit(*least, interpolate);
        const double error = errorOf(other);
        if (error < result.subsetError) {
            result.subset = std::move(other);
            result.subsetError = error;
        }
    }
    result.found.parameters.nugget = result.subset.nugget;
    result.found.isNuggetRaised = result.found.isNuggetRaised || result.subset.isNuggetRaised;
}

void use(Result& result, const NeighbourLayer& layer)
{
    result.neighbours = layer.kriging();
    result.neighbourVariance = layer.variance();
    result.leaveOneOutResiduals = layer.leaveOneOutResiduals();
    result.leaveOneOutVariances = layer.leaveOneOutVariances();
    result.residuals = layer.residualsAtCases();
    result.error = layer.error();
}

/**
 * The uncertainty of the subset's process. Its variance is estimated so that the leave-one-out
 * variances by nearest neighbours with its parameters match the leave-one-out errors. As for
 * standard errors, the larger of the variances of the two layers counts.
 */
void addUncertaintyOfSubset(Result& result, const NeighbourLayer& layer)
{
    const std::vector<double> variances = layer.leaveOneOutVariances(
        {result.found.parameters.lengths, result.found.parameters.nugget});
    const double squares =
        result.error * result.error * static_cast<double>(result.measured.size());
    result.subsetVariance = squares / std::accumulate(variances.begin(), variances.end(), 0.0);
    const double ratio =
        result.neighbourVariance > 0.0 ? result.subsetVariance / result.neighbourVariance : 0.0;
    for (std::size_t i = 0; i < variances.size(); ++i) {
        result.leaveOneOutVariances[i] =
            std::max(result.leaveOneOutVariances[i], variances[i] * ratio);
    }
}

/**
 * Of the subset's model with its residuals corrected, the trend with its residuals corrected, and
 * the subset's model alone, the one with the smallest errors at the measured cases.
 * @param residuals of the subset's model, at all cases.
 */
void chooseLayers(Result& result, const NeighbourLayer& ofModel, const NeighbourLayer& ofTrend,
                  const std::vector<double>& residuals)
{
    if (ofModel.error() < result.subsetError && ofModel.error() <= ofTrend.error()) {
        use(result, ofModel);
        addUncertaintyOfSubset(result, ofModel);
    } else if (ofTrend.error() < result.subsetError) {
        use(result, ofTrend);
        result.subset.weights.clear();
    } else {
        result.leaveOneOutResiduals = picked(residuals, result.measured);
        result.residuals = result.leaveOneOutResiduals;
        result.error = result.subsetError;
    }
}

} // namespace

LargeKriging::Result LargeKriging::run(const std::shared_ptr<const KrigingData>& data,
                                       const Subset& subset, const KrigingSearchSettings& settings,
                                       bool interpolate, const KrigingSizes& sizes)
{
    Result result;
    result.subsetSize = subset.indices.size();
    {
        const FitProgress::Portion portion(0.0, 0.25);
        result.found = KrigingSubsetSearch::ofSubset(*subset.data, subset.trend->order(), settings,
                                                     sizes.searched);
    }
    result.measured = randomCasesOutside(subset.indices, data->cases, sizes.measured);

    std::vector<double> residuals;
    std::vector<double> trendResiduals;
    {
        SubsetKriging kriging(*data, subset, result.found.parameters.lengths);
        fitSubset(result, kriging, settings, interpolate);
        const FitProgress::Portion portion(0.5, 0.5, "Fitting a subset of the cases");
        residuals = kriging.residuals(result.subset);
        SubsetKriging::Model trend = result.subset;
        trend.weights.clear();
        trendResiduals = kriging.residuals(trend);
    }

    const NearestNeighbourKriging::Parameters start = {result.found.parameters.lengths,
                                                       result.found.parameters.nugget};
    const auto layerOf = [&](const std::vector<double>& values, double from, double to) {
        const FitProgress::Portion portion(from, to);
        return NeighbourLayer(*data, values, result.measured, start, settings.requestedNugget,
                              sizes);
    };
    const NeighbourLayer ofModel = layerOf(residuals, 0.5, 0.75);
    const NeighbourLayer ofTrend = layerOf(trendResiduals, 0.75, 0.95);

    const FitProgress::Portion portion(0.95, 1.0, "Leaving out cases",
                                       2.0 * static_cast<double>(result.measured.size()));
    chooseLayers(result, ofModel, ofTrend, residuals);
    return result;
}
