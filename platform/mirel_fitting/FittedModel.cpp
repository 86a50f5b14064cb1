#include <mirel_fitting/FittedModel.h>

#include <cmath>

FittedModel::~FittedModel() = default;

double FittedModel::confidenceQuantile(int offset, double level) const
{
    return intervalQuantile(offset, level);
}

CalibrationReport FittedModel::calibrationReport(int offset) const
{
    std::vector<double> magnitudes;
    for (const LeaveOneOutPrediction& one : leaveOneOutPredictions(offset)) {
        const double magnitude = std::fabs(one.output - one.predicted) / one.standardError;
        if (!std::isnan(magnitude)) {
            magnitudes.push_back(magnitude);
        }
    }
    CalibrationReport report;
    report.addCoverage(magnitudes, [&](double level) { return intervalQuantile(offset, level); });
    return report;
}

PredictionIntervals FittedModel::predictionIntervals(const std::vector<double*>& inputs, int offset,
                                                     double level, std::size_t count) const
{
    const double quantile = intervalQuantile(offset, level);
    PredictionIntervals intervals;
    intervals.upper = standardErrors(inputs, offset, ErrorKind::Observation, count);
    intervals.lower.resize(count);
    std::vector<double*> predictions = {intervals.lower.data()};
    interpolateDependentValues(inputs, {offset}, predictions, count);
    for (std::size_t point = 0; point < count; ++point) {
        const double prediction = intervals.lower[point];
        const double reach = quantile * intervals.upper[point];
        intervals.lower[point] = prediction - reach;
        intervals.upper[point] = prediction + reach;
    }
    return intervals;
}
