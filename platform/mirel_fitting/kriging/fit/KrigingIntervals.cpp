#include <mirel_fitting/kriging/fit/KrigingIntervals.h>

#include <mirel_fitting/kriging/fit/KrigingRefits.h>

#include <algorithm>
#include <vector>

namespace {

constexpr std::size_t folds = 5;

/** Whether parameters were estimated that so few cases leave uncertain, so that leave-one-out with
 *  the parameters of all cases looks better than predictions are. */
bool areRefitsWorthwhile(const KrigingFitInput& input, const FittedKriging& model)
{
    // With more, refits cost as much as the fit, and a fifth of the cases moves no parameter far.
    constexpr std::size_t mostPoints = 2000;

    const std::size_t points = model.data->cases;
    const bool isEstimated =
        input.options.correlationLengths.empty() || !input.options.isNuggetFixed();
    return isEstimated && model.correlation && !model.neighbours &&
           input.output.size() >= IntervalCalibration::fewestCases &&
           points >= IntervalCalibration::fewestPoints && points <= mostPoints;
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
        return {degreesOfFreedom, KrigingRefits::residuals(input, model, folds),
                IntervalCalibration::Basis::Refits};
    }
    const bool areEnough = model.data->cases >= IntervalCalibration::fewestPoints;
    return {degreesOfFreedom, leaveOneOutResiduals(input, fit),
            areEnough ? IntervalCalibration::Basis::LeaveOneOut
                      : IntervalCalibration::Basis::Distribution};
}
