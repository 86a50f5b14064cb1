#include <mirel_fitting/kriging/fit/KrigingFitter.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/kriging/fit/DistinctCases.h>
#include <mirel_fitting/kriging/fit/ExactKriging.h>
#include <mirel_fitting/kriging/fit/KrigingEstimate.h>
#include <mirel_fitting/kriging/fit/KrigingFitInput.h>
#include <mirel_fitting/kriging/fit/LargeKrigingFit.h>
#include <mirel_fitting/kriging/fit/UncorrelatedKriging.h>
#include <mirel_fitting/kriging/report/KrigingTexts.h>
#include <mirel_fitting/kriging/report/KrigingWarnings.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <memory>
#include <numeric>
#include <string>
#include <utility>

namespace {

KrigingEstimate estimate(const KrigingFitInput& input, std::shared_ptr<const KrigingTrend> trend,
                         std::shared_ptr<KrigingData> data, double work)
{
    const FitProgress::Portion portion(0.0, work);
    return {input, std::move(trend), std::move(data)};
}

void addErrors(KrigingFit& fit, const DistinctCases& distinct, const KrigingData& data,
               KrigingLikelihood& likelihood, double noise)
{
    std::vector<std::size_t> points(data.cases);
    std::iota(points.begin(), points.end(), std::size_t{0});
    const KrigingEquations::LeftOut leftOut = likelihood.equations().leaveOneOut(noise > 0.0);
    distinct.addErrors(
        fit, data, likelihood.equations().residuals(),
        {points, leftOut.residuals, leftOut.variances, likelihood.processVariance(), noise});
}

/** Kriging with one correlation matrix of all cases. */
KrigingFit fitExactKriging(const KrigingFitInput& input, const DistinctCases& distinct,
                           std::shared_ptr<const KrigingTrend> trend,
                           std::shared_ptr<KrigingData> cases)
{
    // Of the work; what follows the estimate is the same for any number of evaluations.
    const double estimating =
        KrigingEstimate::usesSubset(input.options.sizes, cases->cases) ? 0.9 : 0.99;
    const KrigingEstimate estimated =
        estimate(input, std::move(trend), std::move(cases), estimating);
    const KrigingSearchResult& found = estimated.result();
    const std::shared_ptr<const KrigingData> data = estimated.data();

    const FitProgress::Portion progress(estimating, 1.0, "Measuring the fit");
    ExactKriging exact(input, estimated.trend(), data, found);
    KrigingLikelihood& likelihood = exact.likelihood;

    KrigingFit fit(KrigingPredictor(exact.model));
    const KrigingFitReport report = input.report();
    report.addCorrelation(fit, found, likelihood.equations().conditionEstimate());
    report.addLikelihood(fit, found);
    std::vector<double> trendErrors = likelihood.equations().coefficientErrors();
    for (double& error : trendErrors) {
        error *= std::sqrt(likelihood.processVariance());
    }
    report.addInfluence(fit, *estimated.trend(), likelihood.equations().coefficients(),
                        trendErrors);
    report.addTrend(fit, *estimated.trend(), likelihood.equations().coefficients());
    addErrors(fit, distinct, *data, likelihood,
              exact.model.interpolates ? 0.0 : found.parameters.nugget);
    estimated.warn(fit);
    distinct.warnOfConflicts(exact.model.interpolates, fit);
    constexpr double maxNugget = 1.0; // with more it is mostly the trend that the model follows
    if (data->cases > 1 && found.parameters.nugget < maxNugget &&
        likelihood.equations().areCasesFarApart()) {
        fit.warnings.push_back(KrigingWarnings::ofShortLengths());
    }
    return fit;
}

/** With a single case nothing is known of what varies. */
std::vector<std::size_t> constantInputs(const KrigingCases& cases)
{
    const std::vector<std::size_t>& active = cases.activeInputs();
    std::vector<std::size_t> constant;
    for (std::size_t input = 0; input < cases.inputCount() && cases.rowCount() > 1; ++input) {
        if (!std::binary_search(active.begin(), active.end(), input)) {
            constant.push_back(input);
        }
    }
    return constant;
}

/** @param warnings about the cases are appended. */
KrigingFit fitVaryingOutput(const KrigingFitInput& input, std::vector<std::string>& warnings)
{
    const DistinctCases distinct(input, warnings);
    if (distinct.data().cases > input.options.sizes.maxExact) {
        return fitLargeKriging(input, distinct);
    }
    auto data = std::make_shared<KrigingData>(distinct.data());
    const auto trend = input.addTrend(*data);
    return UncorrelatedKriging::isExplained(input, distinct, *trend,
                                            trend->leastSquares(data->output).coefficients)
               ? UncorrelatedKriging::ofTrend(input, distinct, trend, data)
               : fitExactKriging(input, distinct, trend, data);
}

} // namespace

KrigingFit fitKriging(const KrigingCases& cases, const std::vector<double>& output,
                      const KrigingFitOptions& options)
{
    const FitProgress::Portion preparing(0.0, 1.0, "Preparing the cases");
    FitProgress::advance();
    std::vector<std::string> warnings;
    const KrigingFitInput input{cases, output, options, OutputScale::of(output)};
    const auto [smallest, largest] = std::minmax_element(output.begin(), output.end());
    KrigingFit fit = *smallest == *largest || cases.activeInputs().empty()
                         ? UncorrelatedKriging::ofMean(input)
                         : fitVaryingOutput(input, warnings);

    fit.noiseShare = KrigingFitReport::noiseShare(fit.predictor.model());
    std::vector<std::string> verdicts = KrigingTexts::verdicts(fit);
    for (std::vector<std::string>* more : {&fit.warnings, &verdicts}) {
        std::move(more->begin(), more->end(), std::back_inserter(warnings));
    }
    fit.warnings = std::move(warnings);
    fit.constantInputs = constantInputs(cases);
    FitProgress::report(1.0, "Fitted");
    return fit;
}
