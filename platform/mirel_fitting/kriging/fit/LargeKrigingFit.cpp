#include <mirel_fitting/kriging/fit/LargeKrigingFit.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/cases/SpaceFillingSubset.h>
#include <mirel_fitting/kriging/correlation/MaternCorrelation.h>
#include <mirel_fitting/kriging/fit/KrigingEstimate.h>
#include <mirel_fitting/kriging/fit/UncorrelatedKriging.h>
#include <mirel_fitting/kriging/large/LargeKriging.h>
#include <mirel_fitting/kriging/report/KrigingWarnings.h>

#include <memory>
#include <utility>
#include <vector>

namespace {

/** The data as the fit has used them, and its result. */
struct LargeFit
{
    std::shared_ptr<const KrigingData> all;
    std::shared_ptr<const KrigingData> subset;
    std::shared_ptr<const KrigingTrend> trend; // of the subset
    LargeKriging::Result result;
};

std::vector<std::size_t> chooseSubset(const KrigingFitInput& input, const KrigingData& all,
                                      double work)
{
    const FitProgress::Portion portion(0.0, work);
    return spaceFillingSubset(all, input.options.sizes.subset);
}

/** Runs a second time with averaged replicates, if the first shows that their pure error is
 *  negligible. */
LargeFit runLargeKriging(const KrigingFitInput& input, std::shared_ptr<const KrigingData> all,
                         const std::vector<std::size_t>& indices,
                         const std::shared_ptr<KrigingData>& subset,
                         const std::shared_ptr<const KrigingTrend>& trend)
{
    const auto run = [&](double from, double to) {
        const FitProgress::Portion part(from, to);
        return LargeKriging::run(all, {indices, subset, trend}, input.searchSettings(),
                                 !input.isNuggetNoise(), input.options.sizes);
    };
    const double once = all->hasPureError() ? 0.5 : 1.0; // of the work
    LargeKriging::Result result = run(0.0, once);
    if (KrigingEstimate::isPureErrorNegligible(input, *all, result.found)) {
        auto averaged = std::make_shared<KrigingData>(*all);
        averaged->averageReplicates();
        subset->averageReplicates();
        all = std::move(averaged);
        result = run(once, 1.0);
    }
    return {std::move(all), subset, trend, std::move(result)};
}

FittedKriging modelOf(const KrigingFitInput& input, const LargeFit& large)
{
    const LargeKriging::Result& result = large.result;
    const KrigingParameters& parameters = result.found.parameters;
    FittedKriging model = input.emptyModel(large.trend, large.subset);
    model.processVariance = result.subset.processVariance;
    model.nugget = parameters.nugget;
    model.interpolates = result.subset.interpolates;
    model.coefficients = result.subset.coefficients;
    model.weights = result.subset.weights;
    if (!model.weights.empty()) {
        model.correlation = std::make_shared<MaternCorrelation>(
            large.subset->cases, large.subset->inputs, large.subset->coordinates.data(),
            parameters.lengths);
    }
    model.neighbours = result.neighbours;
    model.neighbourVariance = result.neighbourVariance;
    model.subsetParameters = {parameters.lengths, parameters.nugget};
    model.subsetVariance = result.subsetVariance;
    return model;
}

bool isInterpolating(const LargeKriging::Result& result)
{
    constexpr double slight = 1e-6; // a nugget up to here only keeps the factorisation stable

    return result.neighbours ? result.neighbours->parameters().nugget <= slight
                             : result.subset.interpolates;
}

void addWarnings(KrigingFit& fit, const KrigingFitInput& input, const DistinctCases& distinct,
                 const LargeFit& large)
{
    const LargeKriging::Result& result = large.result;
    input.warnOfTrend(*large.trend, large.subset->cases, fit);
    distinct.warnOfConflicts(isInterpolating(result), fit);
    if (result.found.isNuggetRaised) {
        fit.warnings.push_back(KrigingWarnings::ofRaisedNugget(result.found.parameters.nugget));
    }
    const std::size_t neighbours = result.neighbours ? result.neighbours->neighbours() : 0;
    const double scale = input.scale.scale;
    fit.addNote(
        KrigingWarnings::ofManyCases(input.options.sizes.maxExact,
                                     {result.subsetSize, neighbours, !result.subset.weights.empty(),
                                      scale * result.error, scale * result.subsetError}));
    fit.addNote(KrigingWarnings::ofSample(result.measured.size()));
}

} // namespace

KrigingFit fitLargeKriging(const KrigingFitInput& input, const DistinctCases& distinct)
{
    constexpr double choosing = 0.08; // of the work

    auto all = std::make_shared<KrigingData>(distinct.data());
    const std::vector<std::size_t> indices = chooseSubset(input, *all, choosing);
    const FitProgress::Portion portion(choosing, 1.0);
    const auto subset = std::make_shared<KrigingData>(all->subset(indices));
    const auto trend = input.addTrend(*subset);
    if (UncorrelatedKriging::isExplained(input, distinct, *trend,
                                         trend->leastSquares(subset->output).coefficients)) {
        const auto trendOfAll = input.addTrend(*all);
        return UncorrelatedKriging::ofTrend(input, distinct, trendOfAll, all);
    }

    const LargeFit large = runLargeKriging(input, std::move(all), indices, subset, trend);
    const LargeKriging::Result& result = large.result;
    KrigingFit fit(KrigingPredictor(modelOf(input, large)));
    input.report().addCorrelation(fit, result.found, result.subset.condition);
    input.report().addInfluence(fit, *trend, result.subset.coefficients);
    input.report().addTrend(fit, *trend, result.subset.coefficients);
    distinct.addErrors(fit, *large.all, result.residuals,
                       {result.measured, result.leaveOneOutResiduals, result.leaveOneOutVariances,
                        result.neighbourVariance,
                        result.neighbours ? result.neighbours->parameters().nugget : 0.0});
    addWarnings(fit, input, distinct, large);
    return fit;
}
