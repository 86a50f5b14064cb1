#include "plot/model/CasePictures.h"

#include "plot/drawing/AxisScale.h"
#include "plot/model/DrawableValues.h"
#include "plot/model/ModelSlice.h"

#include <session/model/CaseSession.h>
#include <session/model/ModelName.h>
#include <session/text/QuotedText.h>
#include <session/text/UnitText.h>

#include <mirel_datamanagement/Variable.h>
#include <mirel_fitting/FittedModel.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <utility>

LeaveOneOutCases LeaveOneOutCases::of(CaseSession& session, std::size_t output)
{
    const std::string name = session.outputs()[output].lock()->name();
    const FittedModel* const model = session.fittedModel();
    if (model == nullptr) {
        throw SurrogateModelInterface::Error(
            "The model is an exported one, without cases to draw.");
    }
    std::vector<LeaveOneOutPrediction> predictions =
        model->leaveOneOutPredictions(session.outputOffsets()[output]);
    const std::vector<std::size_t> cases = session.validCases();
    for (LeaveOneOutPrediction& one : predictions) {
        one.row = cases.at(one.row);
    }
    return {shortText(name),        ::modelName(session.modelType()),
            std::move(predictions), session.counts().valid,
            session.unitOf(name),   hasLogarithmicAxis(session, output)};
}

namespace {
constexpr std::size_t maxWorst = 5;

const std::string limitLabel = "\302\261 2 standard deviations";

/** The cases whose differences are largest; their points are those with a prediction. */
std::vector<ScatterPicture::Mark> worstOf(const std::vector<LeaveOneOutPrediction>& predictions)
{
    std::vector<std::pair<double, ScatterPicture::Mark>> order;
    for (const LeaveOneOutPrediction& each : predictions) {
        if (std::isfinite(each.predicted)) {
            order.push_back({std::abs(each.output - each.predicted), {order.size(), each.row + 1}});
        }
    }
    std::stable_sort(order.begin(), order.end(),
                     [](const auto& left, const auto& right) { return left.first > right.first; });
    std::vector<ScatterPicture::Mark> worst;
    for (std::size_t i = 0; i < std::min(maxWorst, order.size()); ++i) {
        worst.push_back(order[i].second);
    }
    return worst;
}

/** Twice the root mean square of what `difference` makes of an actual value and its prediction. */
template <typename Difference>
double limitOf(const std::vector<double>& actual, const std::vector<double>& predicted,
               Difference difference)
{
    double squares = 0.0;
    for (std::size_t i = 0; i < actual.size(); ++i) {
        squares += std::pow(difference(actual[i], predicted[i]), 2);
    }
    const double limit = 2.0 * std::sqrt(squares / static_cast<double>(actual.size()));
    return std::isfinite(limit) ? limit : 0.0;
}

double ratioOf(double actual, double predicted)
{
    return std::log(actual / predicted);
}

std::string captionOf(const LeaveOneOutCases& cases, std::size_t drawn)
{
    const std::size_t predicted = cases.predictions.size();
    std::string caption = "Each case predicted by a fit to the other cases";
    if (predicted < cases.fittedCases) {
        caption += ", " + std::to_string(predicted) + " of " + std::to_string(cases.fittedCases) +
                   " cases drawn at random";
    }
    if (drawn < predicted) {
        caption += "; " + std::to_string(predicted - drawn) +
                   " left out, which the others do not determine";
    }
    return caption + '.';
}
} // namespace

ScatterPicture actualPicture(const LeaveOneOutCases& cases)
{
    ScatterPicture picture;
    picture.title = cases.outputName + ", " + cases.modelName + ", leave-one-out";
    picture.xName = nameWithUnit(cases.outputName + ", actual", cases.unit);
    picture.yName = nameWithUnit(cases.outputName + ", predicted", cases.unit);
    picture.reference = ScatterPicture::DiagonalOfOneScale;
    for (const LeaveOneOutPrediction& each : cases.predictions) {
        if (std::isfinite(each.predicted)) {
            picture.x.push_back(each.output);
            picture.y.push_back(each.predicted);
        }
    }
    const std::string owner = quotedText(cases.outputName);
    if (picture.x.empty()) {
        throw SurrogateModelInterface::Error(
            "The cases of " + owner +
            " cannot be predicted from each other: they are too few to determine the model if one "
            "is left out. Add cases.");
    }
    requireDrawable(picture.x, owner);
    requireDrawable(picture.y, "The model of " + owner);
    picture.caption = captionOf(cases, picture.x.size());
    picture.marks = worstOf(cases.predictions);
    picture.isLogarithmic =
        cases.isLogarithmic &&
        AxisScale::spansDecades(AxisScale::range(picture.x) | AxisScale::range(picture.y));
    picture.limit = picture.isLogarithmic ? limitOf(picture.x, picture.y, ratioOf)
                                          : limitOf(picture.x, picture.y, std::minus<>());
    picture.referenceLabel = "predicted = actual";
    picture.limitLabel = limitLabel + (picture.isLogarithmic ? " of the logarithm" : "");
    picture.caseLabel = "cases";
    return picture;
}

ScatterPicture residualPicture(const LeaveOneOutCases& cases)
{
    ScatterPicture picture = actualPicture(cases);
    const std::vector<double> actual = std::exchange(picture.x, std::move(picture.y));
    picture.y.clear();
    for (std::size_t i = 0; i < actual.size(); ++i) {
        picture.y.push_back(actual[i] - picture.x[i]);
    }
    requireDrawable(picture.y, "The model of " + quotedText(cases.outputName));
    picture.xName = std::exchange(picture.yName, nameWithUnit("actual - predicted", cases.unit));
    picture.reference = ScatterPicture::Zero;
    picture.limit = limitOf(actual, picture.x, std::minus<>());
    picture.isLogarithmic = cases.isLogarithmic;
    picture.referenceLabel.clear();
    picture.limitLabel = limitLabel;
    return picture;
}
