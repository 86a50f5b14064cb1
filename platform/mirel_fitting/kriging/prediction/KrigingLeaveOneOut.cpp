#include <mirel_fitting/kriging/prediction/KrigingLeaveOneOut.h>

#include <mirel_fitting/ColumnPointers.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr double none = std::numeric_limits<double>::quiet_NaN();

} // namespace

KrigingLeaveOneOut::KrigingLeaveOneOut(const KrigingCases& cases, const std::vector<double>& output,
                                       const KrigingData& data, const Points& left, double offset,
                                       double scale)
{
    std::vector<std::pair<std::size_t, std::size_t>> order; // row, position among the points
    for (std::size_t k = 0; k < left.points.size(); ++k) {
        for (const std::size_t row : cases.rowsAt(left.points[k])) {
            order.emplace_back(row, k);
        }
    }
    std::sort(order.begin(), order.end());
    rows.reserve(order.size());
    for (const auto& [row, k] : order) {
        const std::size_t point = left.points[k];
        double error = none;
        if (left.variances.empty()) {
            points.push_back(point);
        } else {
            // The variance is that of the mean of the point's rows, which has less noise than a
            // row.
            const double noise = left.nugget * (1.0 - 1.0 / data.replicates[point]);
            error = scale * std::sqrt(left.variance * (left.variances[k] + noise));
        }
        const double predicted = offset + scale * (data.output[point] - left.residuals[k]);
        rows.push_back({row, output[row], predicted, error});
    }
}

KrigingLeaveOneOut KrigingLeaveOneOut::ofMean(const std::vector<double>& output)
{
    const auto n = static_cast<double>(output.size());
    const double reference = output[0];
    double sum = 0.0;
    for (const double y : output) {
        sum += y - reference;
    }
    double squares = 0.0;
    for (const double y : output) {
        const double deviation = y - reference - sum / n;
        squares += deviation * deviation;
    }
    // The process variance, times 1 + 1 / (n - 1).
    const double error = output.size() > 1 ? std::sqrt(squares * n) / (n - 1.0) : none;
    KrigingLeaveOneOut result;
    for (std::size_t row = 0; row < output.size(); ++row) {
        const double others = sum - (output[row] - reference);
        const double predicted = output.size() > 1 ? reference + others / (n - 1.0) : none;
        result.rows.push_back({row, output[row], predicted, error});
    }
    return result;
}

std::vector<LeaveOneOutPrediction>
KrigingLeaveOneOut::predictions(const KrigingCases& cases, const KrigingPredictor& predictor) const
{
    std::vector<LeaveOneOutPrediction> result = rows;
    if (points.empty()) {
        return result;
    }
    std::vector<std::vector<double>> columns = cases.inputsAt(points);
    std::vector<double> errors(points.size());
    predictor.standardErrors(pointersTo(columns), points.size(), true, errors.data());
    for (std::size_t i = 0; i < points.size(); ++i) {
        result[i].standardError = errors[i];
    }
    return result;
}
