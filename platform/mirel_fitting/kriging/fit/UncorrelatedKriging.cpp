#include <mirel_fitting/kriging/fit/UncorrelatedKriging.h>

#include <mirel_fitting/kriging/report/KrigingWarnings.h>

#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>

namespace {

/** @param squares of the standardised outputs about their mean. */
void addErrorsOfMean(KrigingFit& fit, const KrigingFitInput& input, double squares)
{
    const double scale = input.scale.scale;
    const auto n = static_cast<double>(input.output.size());
    fit.metrics.cases = input.output.size();
    fit.metrics.rmse = scale * std::sqrt(squares / n);
    double press = 0.0;
    if (input.output.size() > 1) {
        // The leverage of each case is 1 / n.
        const double inflation = n / (n - 1.0);
        press = squares * inflation * inflation;
        fit.metrics.press = press * scale * scale;
        fit.metrics.looRmse = scale * std::sqrt(press / n);
    }
    if (squares > 0.0) {
        fit.metrics.r2 = 0.0;
        fit.metrics.q2 = 1.0 - press / squares;
    }
}

} // namespace

KrigingFit UncorrelatedKriging::ofMean(const KrigingFitInput& input)
{
    const auto n = static_cast<double>(input.output.size());
    const double squares = input.scale.sumOfSquares(input.output);
    const double variance = n > 1.0 ? squares / (n - 1.0) : 0.0;

    auto data = std::make_shared<KrigingData>(); // one case, of which all rows are replicates
    data->cases = 1;
    data->terms = 1;
    data->trend = {1.0};
    data->replicates = {n};
    const auto trend = std::make_shared<KrigingTrend>(data->cases, 0, data->coordinates, 0, 0);
    FittedKriging model = input.emptyModel(trend, std::move(data));
    model.coefficients = {0.0};
    model.processVariance = variance;

    KrigingFit fit(KrigingPredictor(std::move(model)));
    input.report().addTrend(fit, *trend, {0.0});
    input.report().addIndependence(fit, variance, n - 1.0);
    addErrorsOfMean(fit, input, squares);
    fit.leftOut = KrigingLeaveOneOut::ofMean(input.output);
    fit.warnings.push_back(KrigingWarnings::ofMean(input.output.size(), !(squares > 0.0)));
    return fit;
}

bool UncorrelatedKriging::isExplained(const KrigingFitInput& input, const DistinctCases& distinct,
                                      const KrigingTrend& trend,
                                      const std::vector<double>& coefficients)
{
    const KrigingData& all = distinct.data();
    std::vector<double> explained(all.cases, 0.0);
    trend.add(all.columns(), all.cases, coefficients, explained.data());
    for (std::size_t i = 0; i < all.cases; ++i) {
        const double rounding = input.report().roundingOf(all.output[i]);
        if (!(distinct.withinDeviation(i) <= rounding) ||
            !(std::fabs(all.output[i] - explained[i]) <= rounding)) {
            return false;
        }
    }
    return true;
}

KrigingFit UncorrelatedKriging::ofTrend(const KrigingFitInput& input, const DistinctCases& distinct,
                                        const std::shared_ptr<const KrigingTrend>& trend,
                                        const std::shared_ptr<const KrigingData>& data)
{
    const KrigingTrend::LeastSquares leastSquares = trend->leastSquares(data->output);
    FittedKriging model = input.emptyModel(trend, data);
    model.coefficients = leastSquares.coefficients;
    model.processVariance = leastSquares.variance;

    KrigingFit fit(KrigingPredictor(std::move(model)));
    input.report().addIndependence(fit, leastSquares.variance,
                                   static_cast<double>(data->cases - trend->size()));
    input.report().addTrend(fit, *trend, leastSquares.coefficients);
    std::vector<std::size_t> points(data->cases);
    std::iota(points.begin(), points.end(), std::size_t{0});
    distinct.addErrors(fit, *data, leastSquares.residuals,
                       {points, leastSquares.leaveOneOutResiduals,
                        leastSquares.leaveOneOutVariances, leastSquares.variance, 0.0});
    distinct.warnOfConflicts(true, fit);
    input.warnOfTrend(*trend, data->cases, fit);
    fit.warnings.push_back(KrigingWarnings::ofExactTrend());
    return fit;
}
