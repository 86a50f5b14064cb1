#include "plot/model/CasePictures.h"

#include "plot/drawing/AxisScale.h"
#include "plot/model/DrawableValues.h"
#include "plot/model/ModelCut.h"

#include <session/model/CaseSession.h>
#include <session/text/QuotedText.h>

#include <mirel_datamanagement/Variable.h>
#include <mirel_fitting/FittedModel.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

LeaveOneOutCases LeaveOneOutCases::of(CaseSession& session, std::size_t output)
{
    const std::string name = session.outputs()[output].lock()->name();
    const FittedModel* const model = session.fittedModel();
    if (model == nullptr) {
        throw SurrogateModelInterface::Error("The model has no cases to predict from each other.");
    }
    std::vector<LeaveOneOutPrediction> predictions =
        model->leaveOneOutPredictions(session.outputOffsets()[output]);
    const std::vector<std::size_t> cases = session.validCases();
    for (LeaveOneOutPrediction& one : predictions) {
        one.row = cases.at(one.row);
    }
    return {shortText(name),
            session.modelType() == CaseSession::Kriging ? "Kriging" : "response surface",
            std::move(predictions),
            session.counts().valid,
            session.unitOf(name),
            hasLogarithmicAxis(session, output)};
}

namespace {
constexpr std::size_t maxWorst = 5;

/** The cases whose differences are largest; their points are those with a prediction. */
std::vector<CaseMark> worstOf(const std::vector<LeaveOneOutPrediction>& predictions)
{
    std::vector<std::pair<double, CaseMark>> order;
    for (const LeaveOneOutPrediction& each : predictions) {
        if (std::isfinite(each.predicted)) {
            order.push_back({std::abs(each.output - each.predicted), {order.size(), each.row + 1}});
        }
    }
    std::stable_sort(order.begin(), order.end(),
                     [](const auto& left, const auto& right) { return left.first > right.first; });
    std::vector<CaseMark> worst;
    for (std::size_t i = 0; i < std::min(maxWorst, order.size()); ++i) {
        worst.push_back(order[i].second);
    }
    return worst;
}

/** Twice the root mean square of the differences, or of those of logarithms. */
double limitOf(const ActualPicture& picture, bool areLogarithms)
{
    double squares = 0.0;
    for (std::size_t i = 0; i < picture.actual.size(); ++i) {
        const double difference = areLogarithms ? std::log(picture.actual[i] / picture.predicted[i])
                                                : picture.actual[i] - picture.predicted[i];
        squares += difference * difference;
    }
    const double limit = 2.0 * std::sqrt(squares / static_cast<double>(picture.actual.size()));
    return std::isfinite(limit) ? limit : 0.0;
}
} // namespace

ActualPicture actualPicture(const LeaveOneOutCases& cases)
{
    ActualPicture picture;
    picture.title = cases.outputName + ", " + cases.modelName + ", leave-one-out";
    picture.outputName = cases.outputName;
    picture.unit = cases.unit;
    for (const LeaveOneOutPrediction& each : cases.predictions) {
        if (std::isfinite(each.predicted)) {
            picture.actual.push_back(each.output);
            picture.predicted.push_back(each.predicted);
        }
    }
    const std::string owner = quotedText(cases.outputName);
    if (picture.actual.empty()) {
        throw SurrogateModelInterface::Error(
            "The cases of " + owner +
            " cannot be predicted from each other: without one of them the others do not "
            "determine the model. More cases would.");
    }
    const std::size_t predicted = cases.predictions.size();
    picture.caption = "Each case predicted by a fit to the other cases";
    if (predicted < cases.fittedCases) {
        picture.caption += ", " + std::to_string(predicted) + " of " +
                           std::to_string(cases.fittedCases) + " cases drawn at random";
    }
    if (picture.actual.size() < predicted) {
        picture.caption += "; " + std::to_string(predicted - picture.actual.size()) +
                           " left out, which the others do not determine";
    }
    picture.caption += '.';
    requireDrawable(picture.actual, owner);
    requireDrawable(picture.predicted, "The model of " + owner);
    picture.worst = worstOf(cases.predictions);
    picture.isLogarithmic =
        cases.isLogarithmic && AxisScale::spansDecades(AxisScale::range(picture.actual) |
                                                       AxisScale::range(picture.predicted));
    picture.limit = limitOf(picture, picture.isLogarithmic);
    return picture;
}

ResidualPicture residualPicture(const LeaveOneOutCases& cases)
{
    ActualPicture source = actualPicture(cases);
    ResidualPicture picture;
    picture.title = std::move(source.title);
    picture.outputName = cases.outputName;
    picture.unit = cases.unit;
    picture.worst = std::move(source.worst);
    picture.limit = limitOf(source, false);
    picture.isLogarithmic = cases.isLogarithmic;
    for (std::size_t i = 0; i < source.actual.size(); ++i) {
        picture.residuals.push_back(source.actual[i] - source.predicted[i]);
    }
    requireDrawable(picture.residuals, "The model of " + quotedText(cases.outputName));
    picture.predicted = std::move(source.predicted);
    picture.caption = std::move(source.caption);
    return picture;
}
