#include "session/comparison/ModelComparison.h"

#include "session/cases/VariableNames.h"
#include "session/comparison/ComparisonVerdict.h"
#include "session/comparison/CrossValidation.h"
#include "session/model/ModelName.h"
#include "session/model/SessionModelFactory.h"
#include "session/model/Stopwatch.h"
#include "session/model/Workspace.h"
#include <mirel_fitting/ModelInterfaces.h>

#include <mirel_datamanagement/Project.h>
#include <mirel_fitting/ColumnPointers.h>
#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/FittedModel.h>
#include <mirel_fitting/PredictiveModel.h>

#include <algorithm>
#include <cmath>

namespace {
using ModelType = SurrogateModelFactory::ModelType;
using Columns = std::vector<std::vector<double>>;

/** The fraction of the used cases inside of their 95 % intervals; NaN if none has any. */
double shareHeld(const Predictions& predictions, const std::vector<std::size_t>& used,
                 const std::vector<double>& output)
{
    std::size_t limited = 0;
    std::size_t held = 0;
    for (const std::size_t i : used) {
        limited += std::isfinite(predictions.lower[i]) ? 1 : 0;
        held += predictions.lower[i] <= output[i] && output[i] <= predictions.upper[i] ? 1 : 0;
    }
    return limited == 0 ? CrossValidationMetrics::none
                        : static_cast<double>(held) / static_cast<double>(limited);
}

/** The metrics over the cases that are used. */
CrossValidationMetrics metricsOf(const Predictions& predictions, const std::vector<bool>& isUsed,
                                 const std::vector<double>& output, const ComparedCases& cases)
{
    CrossValidationMetrics metrics;
    metrics.failures = predictions.failures;
    for (const OutputTransform transform : predictions.transforms) {
        ++metrics.transforms[transform];
    }
    if (!predictions.terms.empty()) {
        metrics.fitSeconds = predictions.seconds / static_cast<double>(predictions.terms.size());
    }
    std::vector<std::size_t> used;
    for (std::size_t i = 0; i < output.size(); ++i) {
        if (isUsed[i]) {
            used.push_back(i);
        }
    }
    metrics.cases = used.size();
    if (used.empty()) {
        return metrics;
    }

    double count = 0.0; // by weights
    for (const std::size_t i : used) {
        count += cases.weight(i);
    }
    double mean = 0.0;
    for (const std::size_t i : used) {
        mean += cases.weight(i) * output[i] / count;
    }
    double squares = 0.0;
    double squaresAboutMean = 0.0;
    metrics.largestError = -1.0;
    for (const std::size_t i : used) {
        const double error = std::abs(predictions.values[i] - output[i]);
        squares += cases.weight(i) * error * error;
        squaresAboutMean += cases.weight(i) * (output[i] - mean) * (output[i] - mean);
        if (error > metrics.largestError) {
            metrics.largestError = error;
            metrics.largestErrorCase = cases.positions[i];
        }
    }
    metrics.rmse = std::sqrt(squares / count);
    metrics.held95 = shareHeld(predictions, used, output);
    const auto [least, greatest] = std::minmax_element(output.begin(), output.end());
    if (*least < *greatest && squaresAboutMean > 0.0) {
        metrics.q2 = 1.0 - squares / squaresAboutMean;
    }
    return metrics;
}

/** Where the folds leave too few cases, the model is of a lower order than that of all cases. */
void remarkOrder(const Predictions& predictions, std::size_t terms, CrossValidationMetrics& metrics)
{
    const auto lowered = std::count_if(predictions.terms.begin(), predictions.terms.end(),
                                       [&](std::size_t fitted) { return fitted < terms; });
    if (lowered > 0) {
        const std::size_t fewest =
            *std::min_element(predictions.terms.begin(), predictions.terms.end());
        metrics.remarks.push_back("In " + std::to_string(lowered) + " of " +
                                  std::to_string(predictions.terms.size()) +
                                  " fits it has fewer terms than with all cases, down to " +
                                  std::to_string(fewest) + " instead of " + std::to_string(terms) +
                                  ", so that the figures do not describe the model of all cases.");
    }
}

/** Adds what of the fit to all cases is compared with the folds; nothing of one that fails. */
void addWholeFit(ModelType type, const Workspace& workspace, const ComparedCases& cases,
                 std::size_t output, const Predictions& predictions,
                 CrossValidationMetrics& metrics)
{
    const std::string message = std::string(modelName(type)) + ", all cases";
    std::size_t terms = 0;
    FitProgress::report(0.0, message);
    try {
        Columns inputs = cases.inputs;
        std::vector<double> values = cases.outputs[output];
        const auto model =
            workspace.modelFactory().makeModel(type, pointersTo(inputs), {values.data()},
                                               static_cast<int>(values.size()), cases.design);
        model->activateDependentVariables({0});
        const ModelInterfaces interfaces(*model);
        if (const PredictiveModel* const predictive = interfaces.predictive()) {
            metrics.looRmse = predictive->fitMetrics(0).looRmse;
        }
        terms = CrossValidation::termCount(*model, workspace.modelChoices().responseSurface);
        metrics.transform = interfaces.transform(0).transform;
        metrics.kriging = interfaces.krigingReport(0);
    } catch (const SurrogateModelInterface::Error&) {
        // The command fit says why; here the folds count.
    }
    FitProgress::report(1.0, message);
    if (type == Workspace::ResponseSurface) {
        remarkOrder(predictions, terms, metrics);
    }
}

OutputComparison compared(const std::string& name, const std::vector<double>& output,
                          const ComparedCases& cases, const Predictions& responseSurface,
                          const Predictions& kriging, const PairedErrors& errors)
{
    std::vector<bool> left(output.size());
    std::vector<bool> right(output.size());
    std::vector<bool> both(output.size());
    for (std::size_t i = 0; i < output.size(); ++i) {
        left[i] = std::isfinite(responseSurface.values[i]);
        right[i] = std::isfinite(kriging.values[i]);
        both[i] = left[i] && right[i];
    }
    const bool haveCommonCases = std::find(both.begin(), both.end(), true) != both.end();

    OutputComparison comparison;
    comparison.name = name;
    comparison.responseSurface =
        metricsOf(responseSurface, haveCommonCases ? both : left, output, cases);
    comparison.kriging = metricsOf(kriging, haveCommonCases ? both : right, output, cases);
    comparison.errors = errors;
    return comparison;
}

} // namespace

std::size_t ModelComparison::maxFolds(const Workspace& workspace)
{
    return ComparedCases(workspace).folds().max();
}

ModelComparison ModelComparison::of(const Workspace& workspace, std::size_t folds)
{
    const Stopwatch watch;
    const ComparedCases cases(workspace);
    const std::size_t maxFolds = cases.folds().max();
    if (maxFolds < 2) {
        throw SurrogateModelInterface::Error("A comparison leaves cases out and needs at least two "
                                             "that are valid and no copies, but "
                                             "there is " +
                                             std::string(maxFolds == 0 ? "none." : "one."));
    }

    ModelComparison comparison;
    comparison.folds = folds;
    const auto fits = static_cast<double>(folds + 1);
    const double shareOfFolds = static_cast<double>(folds) / fits; // one fit more to all cases
    const CrossValidation validation = [&] {
        const FitProgress::Portion portion(0.0, shareOfFolds);
        return CrossValidation(workspace, cases, folds);
    }();
    const std::vector<std::string> names = namesOf(workspace.outputs());
    for (std::size_t i = 0; i < names.size(); ++i) {
        OutputComparison& output = comparison.outputs.emplace_back(
            compared(names[i], cases.outputs[i], cases, validation.responseSurface[i],
                     validation.kriging[i], validation.pairedErrors(i)));
        const FitProgress::Portion rest(shareOfFolds, 1.0);
        const FitProgress::Portion portion = CrossValidation::partOf(i, names.size());
        const auto add = [&](ModelType type, const Predictions& predictions,
                             CrossValidationMetrics& metrics, double from, double to) {
            const FitProgress::Portion part(from, to);
            addWholeFit(type, workspace, cases, i, predictions, metrics);
        };
        add(Workspace::ResponseSurface, validation.responseSurface[i], output.responseSurface, 0.0,
            CrossValidation::shareOfResponseSurface);
        add(Workspace::Kriging, validation.kriging[i], output.kriging,
            CrossValidation::shareOfResponseSurface, 1.0);
        judge(output);
    }
    comparison.seconds = watch.seconds();
    return comparison;
}
