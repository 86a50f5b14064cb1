#include "plot/model/CasePictures.h"

#include "plot/model/DrawableValues.h"

#include <session/model/CaseSession.h>
#include <session/text/QuotedText.h>

#include <mirel_datamanagement/Variable.h>
#include <mirel_fitting/FittedModel.h>

#include <cmath>
#include <utility>

LeaveOneOutCases LeaveOneOutCases::of(CaseSession& session, std::size_t output)
{
    const std::string name = session.outputs()[output].lock()->name();
    const FittedModel* const model = session.fittedModel();
    if (model == nullptr) {
        throw SurrogateModelInterface::Error("The model has no cases to predict from each other.");
    }
    return {name, session.modelType() == CaseSession::Kriging ? "Kriging" : "response surface",
            model->leaveOneOutPredictions(session.outputOffsets()[output]), session.counts().valid};
}

ActualPicture actualPicture(const LeaveOneOutCases& cases)
{
    ActualPicture picture;
    picture.title = cases.outputName + ", " + cases.modelName + ", leave-one-out";
    picture.outputName = cases.outputName;
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
    return picture;
}

ResidualPicture residualPicture(const LeaveOneOutCases& cases)
{
    ActualPicture source = actualPicture(cases);
    ResidualPicture picture;
    picture.title = std::move(source.title);
    picture.outputName = cases.outputName;
    for (std::size_t i = 0; i < source.actual.size(); ++i) {
        picture.residuals.push_back(source.actual[i] - source.predicted[i]);
    }
    requireDrawable(picture.residuals, "The model of " + quotedText(cases.outputName));
    picture.predicted = std::move(source.predicted);
    picture.caption = std::move(source.caption);
    return picture;
}
