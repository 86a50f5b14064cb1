#include <mirel_fitting/kriging/fit/KrigingIntervals.h>

#include <mirel_fitting/kriging/fit/KrigingRefits.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

/** Refits to few points leave out one or two at a time, since these determine much; they cost
 *  little then. */
std::size_t foldsOf(std::size_t points)
{
    constexpr std::size_t maxSingle = 20; // points, left out one by one
    constexpr std::size_t foldsOfFew = 10;
    constexpr std::size_t foldsOfMany = 5;

    if (points >= IntervalCalibration::minCases) {
        return foldsOfMany;
    }
    return std::min(points, points <= maxSingle ? maxSingle : foldsOfFew);
}

/** Whether parameters were estimated that so few cases leave uncertain, so that leave-one-out with
 *  the parameters of all cases looks better than predictions are. */
bool areRefitsWorthwhile(const KrigingFitInput& input, const FittedKriging& model)
{
    // With more, refits cost as much as the fit, and a fifth of the cases moves no parameter far.
    constexpr std::size_t maxPoints = 2000;

    const std::size_t points = model.data->cases;
    const bool isEstimated =
        input.options.correlationLengths.empty() || !input.options.isNuggetFixed();
    // Of few cases, replicates that are left out together would count as so many misses.
    const bool areManyCases = input.output.size() >= IntervalCalibration::minCases;
    const bool arePointsEnough =
        areManyCases ? points >= IntervalCalibration::minPoints : points == input.output.size();
    return isEstimated && model.correlation && !model.neighbours && arePointsEnough &&
           points <= maxPoints;
}

std::vector<double> leaveOneOutResiduals(const KrigingFitInput& input, const KrigingFit& fit)
{
    std::vector<double> standardised;
    for (const LeaveOneOutPrediction& one : fit.leftOut.predictions(input.cases, fit.predictor)) {
        standardised.push_back((one.output - one.predicted) / one.standardError);
    }
    return standardised;
}

} // namespace

IntervalCalibration calibrateIntervals(const KrigingFitInput& input, const KrigingFit& fit)
{
    const FittedKriging& model = fit.predictor.model();
    const double degreesOfFreedom = std::max(fit.report.degreesOfFreedom, 1.0);
    if (areRefitsWorthwhile(input, model)) {
        const std::vector<double> residuals =
            KrigingRefits::residuals(input, model, foldsOf(model.data->cases));
        const auto predicted = std::count_if(residuals.begin(), residuals.end(),
                                             [](double residual) { return !std::isnan(residual); });
        if (static_cast<std::size_t>(predicted) >= IntervalCalibration::minRefits) {
            return {degreesOfFreedom, residuals, IntervalCalibration::Basis::Refits};
        }
    }
    const bool areEnough = model.data->cases >= IntervalCalibration::minPoints;
    return {degreesOfFreedom, leaveOneOutResiduals(input, fit),
            areEnough ? IntervalCalibration::Basis::LeaveOneOut
                      : IntervalCalibration::Basis::Distribution};
}
