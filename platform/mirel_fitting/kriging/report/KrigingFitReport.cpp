#include <mirel_fitting/kriging/report/KrigingFitReport.h>

#include <mirel_fitting/kriging/report/RawTrend.h>

#include <boost/math/constants/constants.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
using boost::math::double_constants::two_pi;

} // namespace

KrigingFitReport::KrigingFitReport(const KrigingCases& cases, const std::vector<double>& output,
                                   const OutputScale& scale)
    : cases(cases), output(output), outputScale(scale)
{}

double KrigingFitReport::noiseShare(const FittedKriging& model)
{
    return model.interpolates ? 0.0 : model.nugget * model.processVariance;
}

double KrigingFitReport::roundingOf(double standardised) const
{
    constexpr double units = 64.0; // in the last place
    return units * std::numeric_limits<double>::epsilon() *
           (1.0 + std::fabs(outputScale.offset / outputScale.scale + standardised));
}

void KrigingFitReport::addCorrelation(KrigingFit& fit, const KrigingSearchResult& found,
                                      double condition) const
{
    const FittedKriging& model = fit.predictor.model();
    fit.report.correlationLengths.assign(cases.inputCount(), infinity);
    fit.report.lengthBounds.assign(cases.inputCount(), KrigingReport::Bound::None);
    for (std::size_t k = 0; k < cases.activeInputs().size(); ++k) {
        const std::size_t input = cases.activeInputs()[k];
        fit.report.correlationLengths[input] = found.parameters.lengths[k] * cases.range()[k];
        if (!found.lengthBounds.empty()) {
            fit.report.lengthBounds[input] = found.lengthBounds[k];
        }
    }
    fit.report.nugget = found.parameters.nugget;
    fit.report.nuggetBound = found.nuggetBound;
    fit.report.processVariance = model.processVariance * outputScale.scale * outputScale.scale;
    fit.report.noiseDeviation = outputScale.scale * std::sqrt(noiseShare(model));
    fit.report.condition = condition;
    fit.report.degreesOfFreedom = model.data->rowCount() - static_cast<double>(model.trend->size());
    fit.report.criterion = found.criterion;
}

void KrigingFitReport::addInfluence(KrigingFit& fit, const KrigingTrend& trend,
                                    const std::vector<double>& coefficients,
                                    const std::vector<double>& errors) const
{
    constexpr double significant = 2.0; // standard errors: about the 95 % point of Student's t
    constexpr double negligible = 1.0;  // output deviations over the range of an input

    std::vector<bool>& result = fit.report.isWithoutInfluence;
    result.assign(cases.inputCount(), false);
    const double deviation = std::sqrt(fit.predictor.model().processVariance);
    for (std::size_t k = 0; k < cases.activeInputs().size(); ++k) {
        const std::size_t input = cases.activeInputs()[k];
        // A process of a great variance changes along its longest lengths, too: by this standard
        // deviation over the range, where the standardised output has about 1.
        const double change = std::sqrt(5.0 / 3.0) * deviation * cases.range()[k] /
                              fit.report.correlationLengths[input];
        result[input] =
            fit.report.lengthBounds[input] == KrigingReport::Bound::Upper && change < negligible;
    }
    for (std::size_t t = 0; t < trend.size(); ++t) {
        const double error = errors.empty() ? 0.0 : errors[t];
        for (const std::size_t k : trend.keptTerms()[t].inputs()) {
            if (std::fabs(coefficients[t]) > significant * error) {
                result[cases.activeInputs()[k]] = false;
            }
        }
    }
}

void KrigingFitReport::addLikelihood(KrigingFit& fit, const KrigingSearchResult& found) const
{
    const double ofUnit = fit.report.degreesOfFreedom * std::log(outputScale.scale);
    fit.report.logLikelihood = found.logLikelihood - ofUnit;
    if (!std::isinf(found.gapToSecond)) {
        fit.report.secondLogLikelihood = found.logLikelihood - found.gapToSecond - ofUnit;
    }
}

void KrigingFitReport::addIndependence(KrigingFit& fit, double variance,
                                       double degreesOfFreedom) const
{
    fit.report.correlationLengths.assign(cases.inputCount(), infinity);
    fit.report.processVariance = variance * outputScale.scale * outputScale.scale;
    fit.report.degreesOfFreedom = degreesOfFreedom;
    fit.report.logLikelihood =
        variance > 0.0 ? -degreesOfFreedom * (0.5 * (std::log(two_pi * variance) + 1.0) +
                                              std::log(outputScale.scale))
                       : infinity;
}

void KrigingFitReport::addTrend(KrigingFit& fit, const KrigingTrend& trend,
                                const std::vector<double>& coefficients) const
{
    const RawTrend rawTrend(cases, outputScale, trend, coefficients);
    fit.metrics.terms = trend.size();
    fit.report.trendOrder = trend.order();
    for (const RawTrend::Term& term : rawTrend.terms()) {
        fit.report.trendTerms.push_back(term.name);
        fit.report.trendFactors.push_back(term.factors);
        fit.report.trendCoefficients.push_back(term.coefficient);
    }
    const auto [smallest, largest] = std::minmax_element(output.begin(), output.end());
    fit.trendText = rawTrend.text(*largest - *smallest);
}

void KrigingFitReport::measure(KrigingFit& fit, const Errors& errors) const
{
    double rows = 0.0;
    double sum = 0.0;
    for (std::size_t i = 0; i < errors.all.cases; ++i) {
        rows += errors.replicates[i];
        sum += errors.replicates[i] * errors.all.output[i];
    }
    const double mean = sum / rows;
    double measured = 0.0;
    double total = 0.0;
    double squares = 0.0;
    double press = 0.0;
    for (std::size_t i = 0; i < errors.points.size(); ++i) {
        const std::size_t point = errors.points[i];
        const double deviation = errors.all.output[point] - mean;
        const double leftOut = errors.leftOut[i];
        measured += errors.replicates[point];
        squares += errors.withinSquares[point] +
                   errors.replicates[point] * errors.residuals[i] * errors.residuals[i];
        total += errors.withinSquares[point] + errors.replicates[point] * deviation * deviation;
        press += errors.withinSquares[point] + errors.replicates[point] * leftOut * leftOut;
    }
    fit.metrics.cases = static_cast<std::size_t>(rows);
    fit.metrics.r2 = 1.0 - squares / total;
    fit.metrics.rmse = outputScale.scale * std::sqrt(squares / measured);
    fit.metrics.press = press * (rows / measured) * outputScale.scale * outputScale.scale;
    fit.metrics.looRmse = outputScale.scale * std::sqrt(press / measured);
    fit.metrics.q2 = 1.0 - press / total;
    findWorstCases(fit, errors);
}

void KrigingFitReport::findWorstCases(KrigingFit& fit, const Errors& errors) const
{
    constexpr std::size_t maxShown = 5;

    if (std::isnan(fit.metrics.looRmse)) {
        return;
    }
    std::vector<std::size_t> worst(errors.points.size());
    std::iota(worst.begin(), worst.end(), std::size_t{0});
    const std::size_t shown = std::min(maxShown, worst.size());
    std::partial_sort(worst.begin(), worst.begin() + static_cast<std::ptrdiff_t>(shown),
                      worst.end(), [&](std::size_t a, std::size_t b) {
                          const double errorOfA = std::fabs(errors.leftOut[a]);
                          const double errorOfB = std::fabs(errors.leftOut[b]);
                          return errorOfA != errorOfB ? errorOfA > errorOfB : a < b;
                      });
    worst.resize(shown);
    for (const std::size_t i : worst) {
        const double standardised = errors.all.output[errors.points[i]];
        if (std::fabs(errors.leftOut[i]) <= roundingOf(standardised)) {
            continue;
        }
        const double value = outputScale.offset + outputScale.scale * standardised;
        fit.report.worstCases.push_back({cases.rowsAt(errors.points[i]).front(), value,
                                         value - outputScale.scale * errors.leftOut[i]});
    }
}
