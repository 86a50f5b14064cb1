#include <mirel_fitting/kriging/fit/KrigingRefits.h>

#include <mirel_fitting/ColumnPointers.h>
#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/kriging/fit/ExactKriging.h>
#include <mirel_fitting/kriging/prediction/KrigingPredictor.h>
#include <mirel_fitting/kriging/search/KrigingSearch.h>
#include <mirel_fitting/numerics/IntervalCalibration.h>

#include <limits>
#include <memory>
#include <optional>
#include <random>
#include <utility>

namespace {

/** The fold of each point. */
std::vector<std::size_t> randomFolds(std::size_t points, std::size_t folds)
{
    std::vector<std::size_t> foldOfPoint(points);
    for (std::size_t i = 0; i < points; ++i) {
        foldOfPoint[i] = i % folds;
    }
    std::mt19937_64 generator(points);
    for (std::size_t i = points; i > 1; --i) {
        std::swap(foldOfPoint[i - 1], foldOfPoint[generator() % i]);
    }
    return foldOfPoint;
}

/** None where the points do not determine a model like that of all points. */
std::optional<KrigingPredictor> refitted(const KrigingFitInput& input, const FittedKriging& model,
                                         const std::vector<std::size_t>& points)
{
    // From parameters that suit all points, the first step brings most of what there is to gain.
    // Fewer points may have their optimum elsewhere, and a whole search takes no time.
    constexpr int steps = 1;

    auto data = std::make_shared<KrigingData>(model.data->subset(points));
    const auto [smallest, largest] = std::minmax_element(data->output.begin(), data->output.end());
    // Terms that are independent at all points need not be so at these. The lengths are all but
    // known: the order is that of all points as long as the variance can be estimated.
    const std::size_t otherParameters = 1;
    auto trend = KrigingTrend::of(*data, model.trend->order(), otherParameters);
    if (trend->order() < model.trend->order() || *smallest == *largest) {
        return std::nullopt;
    }
    KrigingSearchSettings settings = input.searchSettings();
    settings.findsSecondOptimum = false;
    if (model.data->cases >= IntervalCalibration::minCases) {
        settings.continuation = {{{model.correlation->lengths(), model.nugget}}, steps};
    }
    const KrigingSearchResult found = KrigingSearch::run(data, settings);
    return KrigingPredictor(ExactKriging(input, std::move(trend), data, found).model);
}

} // namespace

std::vector<double> KrigingRefits::residuals(const KrigingFitInput& input,
                                             const FittedKriging& model, std::size_t folds)
{
    const std::vector<std::size_t> foldOfPoint = randomFolds(model.data->cases, folds);
    std::vector<double> result(input.output.size(), std::numeric_limits<double>::quiet_NaN());
    for (std::size_t fold = 0; fold < folds; ++fold) {
        const FitProgress::Portion portion(static_cast<double>(fold) / static_cast<double>(folds),
                                           static_cast<double>(fold + 1) /
                                               static_cast<double>(folds));
        std::vector<std::size_t> others;
        std::vector<std::size_t> leftOut;
        for (std::size_t point = 0; point < foldOfPoint.size(); ++point) {
            (foldOfPoint[point] == fold ? leftOut : others).push_back(point);
        }
        const std::optional<KrigingPredictor> predictor = refitted(input, model, others);
        if (!predictor) {
            continue;
        }
        std::vector<std::vector<double>> inputs = input.cases.inputsAt(leftOut);
        const std::vector<double*> columns = pointersTo(inputs);
        std::vector<double> predictions(leftOut.size());
        std::vector<double> errors(leftOut.size());
        predictor->predict(columns, 0, leftOut.size(), predictions.data());
        predictor->standardErrors(columns, leftOut.size(), true, errors.data());
        for (std::size_t i = 0; i < leftOut.size(); ++i) {
            for (const std::size_t row : input.cases.rowsAt(leftOut[i])) {
                result[row] = (input.output[row] - predictions[i]) / errors[i];
            }
        }
    }
    return result;
}
