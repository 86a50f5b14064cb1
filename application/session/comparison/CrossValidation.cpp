#include "session/comparison/CrossValidation.h"

#include "session/cases/CaseCounts.h"
#include "session/model/ModelName.h"
#include "session/model/SessionModelFactory.h"
#include "session/model/Stopwatch.h"
#include "session/model/Workspace.h"
#include <mirel_fitting/ModelInterfaces.h>

#include <mirel_datamanagement/Project.h>
#include <mirel_fitting/ColumnPointers.h>
#include <mirel_fitting/FittedModel.h>
#include <mirel_fitting/PredictiveModel.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>

namespace {
using Columns = std::vector<std::vector<double>>;

/** Of the progress of one fit: the calibration of its intervals takes about as long. */
constexpr double shareOfFit = 0.5;

Columns columnsAt(const Columns& columns, const std::vector<std::size_t>& rows)
{
    Columns result;
    result.reserve(columns.size());
    for (const std::vector<double>& column : columns) {
        result.push_back(valuesAt(column, rows));
    }
    return result;
}

/** Predicts in blocks, between which it can be cancelled. */
std::vector<double> predicted(const SurrogateModelInterface& model, Columns& points,
                              std::size_t count, const std::string& message)
{
    constexpr std::size_t blockSize = 1024;

    std::vector<double> values(count);
    for (std::size_t first = 0; first < count; first += blockSize) {
        if (first > 0) {
            FitProgress::report(0.0, message);
        }
        std::vector<double*> inputs = pointersTo(points);
        for (double*& column : inputs) {
            column += first;
        }
        std::vector<double*> results = {values.data() + first};
        model.interpolateDependentValues(inputs, {0}, results, std::min(blockSize, count - first));
    }
    return values;
}

/** The 95 % intervals of the first output; none of a model that has none.
 *  @param weights as ModelInterfaces::predictionIntervals() has them; empty: all are equal. */
PredictionIntervals intervalsOf(const SurrogateModelInterface& model, Columns& points,
                                std::size_t count, const std::vector<double>& weights,
                                const std::string& message)
{
    constexpr double level = 0.95;

    const ModelInterfaces interfaces(model);
    if (interfaces.fitted() != nullptr) {
        try {
            return weights.empty()
                       ? interfaces.fitted()->predictionIntervals(pointersTo(points), 0, level,
                                                                  count)
                       : interfaces.predictionIntervals(pointersTo(points), 0, level, weights);
        } catch (const SurrogateModelInterface::Error&) {
            // A model without intervals is no fault, but the error that cancels comes again.
            FitProgress::report(1.0, message);
        }
    }
    return {};
}

double deviationOf(const std::vector<double>& values)
{
    const auto count = static_cast<double>(values.size());
    const double mean = std::accumulate(values.begin(), values.end(), 0.0) / count;
    double squares = 0.0;
    for (const double value : values) {
        squares += (value - mean) * (value - mean);
    }
    return std::sqrt(squares / count);
}
} // namespace

ComparedCases::ComparedCases(const Workspace& workspace)
    : positions(workspace.validCases()),
      design(workspace.modelChoices().designColumns.design(workspace.project(), positions))
{
    for (const VarPtr& input : workspace.inputs()) {
        inputs.push_back(valuesAt(workspace.project().numericValues(input), positions));
    }
    for (const VarPtr& output : workspace.outputs()) {
        outputs.push_back(valuesAt(workspace.project().numericValues(output), positions));
    }
    double sum = 0.0;
    for (const double weight : design.weights) {
        sum += weight;
    }
    for (double& weight : design.weights) {
        weight *= static_cast<double>(count()) / sum;
    }
}

CaseFolds ComparedCases::folds() const
{
    std::vector<const double*> columns = pointersTo(inputs);
    const std::vector<const double*> results = pointersTo(outputs);
    columns.insert(columns.end(), results.begin(), results.end());
    return CaseFolds(columns, count());
}

struct TrainTestSplit
{
    TrainTestSplit(const ComparedCases& cases, const std::vector<std::size_t>& foldOfCase,
                   std::size_t fold)
    {
        for (std::size_t i = 0; i < foldOfCase.size(); ++i) {
            (foldOfCase[i] == fold ? testCases : trainingCases).push_back(i);
        }
        trainingInputs = columnsAt(cases.inputs, trainingCases);
        trainingDesign = cases.design.of(trainingCases);
        testInputs = columnsAt(cases.inputs, testCases);
        if (!cases.design.weights.empty()) {
            testWeights = valuesAt(cases.design.weights, testCases);
            const std::vector<double>& fitted = trainingDesign.weights;
            const double mean = std::accumulate(fitted.begin(), fitted.end(), 0.0) /
                                static_cast<double>(fitted.size());
            for (double& weight : testWeights) {
                weight /= mean;
            }
        }
    }

    std::vector<std::size_t> trainingCases;
    std::vector<std::size_t> testCases;
    Columns trainingInputs;
    CaseDesign trainingDesign;
    Columns testInputs;
    std::vector<double> testWeights; ///< in mean weights of the training cases; empty: all equal
};

CrossValidation::CrossValidation(const Workspace& workspace, const ComparedCases& cases,
                                 std::size_t folds)
    : responseSurface(cases.outputs.size(), Predictions(cases.count())), kriging(responseSurface),
      workspace(workspace), cases(cases), folds(folds), foldOfCase(cases.folds().split(folds))
{
    for (std::size_t fold = 0; fold < folds; ++fold) {
        const FitProgress::Portion portion = partOf(fold, folds);
        runFold(fold);
    }
}

PairedErrors CrossValidation::pairedErrors(std::size_t output) const
{
    const std::vector<double>& values = cases.outputs[output];
    std::vector<PairedErrors::Case> errors;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double root = std::sqrt(cases.weight(i));
        const double left = root * std::abs(responseSurface[output].values[i] - values[i]);
        const double right = root * std::abs(kriging[output].values[i] - values[i]);
        if (std::isfinite(left) && std::isfinite(right)) {
            errors.push_back({foldOfCase[i], left, right});
        }
    }
    return PairedErrors::of(errors, folds, OutputComparison::negligibleError * deviationOf(values));
}

void CrossValidation::runFold(std::size_t fold)
{
    TrainTestSplit split(cases, foldOfCase, fold);
    for (std::size_t i = 0; i < cases.outputs.size(); ++i) {
        std::vector<double> output = valuesAt(cases.outputs[i], split.trainingCases);
        const FitProgress::Portion portion = partOf(i, cases.outputs.size());
        const auto run = [&](ModelType type, Predictions& predictions, double from, double to) {
            const FitProgress::Portion fit(from, to);
            runFit(type, fold, split, output, predictions);
        };
        run(Workspace::ResponseSurface, responseSurface[i], 0.0, shareOfResponseSurface);
        run(Workspace::Kriging, kriging[i], shareOfResponseSurface, 1.0);
    }
}

void CrossValidation::runFit(ModelType type, std::size_t fold, TrainTestSplit& split,
                             std::vector<double>& output, Predictions& predictions)
{
    // Before and after the fit, so that the error that cancels is not taken for the fit's own.
    const std::string message = std::string(modelName(type)) + ", fold " +
                                std::to_string(fold + 1) + " of " + std::to_string(folds);
    FitProgress::report(0.0, message);
    try {
        predict(type, split, output, predictions, message);
    } catch (const SurrogateModelInterface::Error& error) {
        predictions.failures.push_back({fold, error.what()});
    }
    FitProgress::report(1.0, message);
}

/** @throw SurrogateModelInterface::Error */
void CrossValidation::predict(ModelType type, TrainTestSplit& split, std::vector<double>& output,
                              Predictions& predictions, const std::string& message) const
{
    const Stopwatch watch;
    constexpr bool findsSecondOptimum = false; // reports of folds are not shown
    const auto model = workspace.modelFactory().makeModel(
        type, pointersTo(split.trainingInputs), {output.data()}, static_cast<int>(output.size()),
        split.trainingDesign, findsSecondOptimum);
    {
        const FitProgress::Portion fitting(0.0, shareOfFit);
        model->activateDependentVariables({0});
    }
    const double seconds = watch.seconds();
    // The intervals are calibrated when they are asked for, by refits that report too.
    const FitProgress::Portion calibrating(shareOfFit, 1.0);

    std::vector<double> values =
        predicted(*model, split.testInputs, split.testCases.size(), message);
    if (!std::all_of(values.begin(), values.end(),
                     [](double value) { return std::isfinite(value); })) {
        throw SurrogateModelInterface::Error("A prediction is no finite number.");
    }
    predictions.terms.push_back(termCount(*model, workspace.modelChoices().responseSurface));
    predictions.transforms.push_back(ModelInterfaces(*model).transform(0).transform);
    predictions.seconds += seconds;
    PredictionIntervals intervals = intervalsOf(
        *model, split.testInputs, split.testCases.size(),
        type == Workspace::Kriging ? std::vector<double>() : split.testWeights, message);
    addBlockEffects(*model, split.testCases, {&values, &intervals.lower, &intervals.upper});
    for (std::size_t i = 0; i < values.size(); ++i) {
        predictions.values[split.testCases[i]] = values[i];
        if (!intervals.lower.empty()) {
            predictions.lower[split.testCases[i]] = intervals.lower[i];
            predictions.upper[split.testCases[i]] = intervals.upper[i];
        }
    }
}

/** Moves predictions for the average block to the blocks of the cases; those of a block that
 * the model does not know stay. */
void CrossValidation::addBlockEffects(const SurrogateModelInterface& model,
                                      const std::vector<std::size_t>& rows,
                                      const std::vector<std::vector<double>*>& columns) const
{
    const ModelInterfaces interfaces(model);
    const auto statistics =
        cases.design.blocks.empty() ? std::nullopt : interfaces.responseSurfaceStatistics(0);
    if (!statistics) {
        return;
    }
    std::map<std::size_t, double> effects;
    for (const BlockEffect& one : statistics->blockEffects) {
        effects[one.block] = one.effect;
    }
    const OutputTransform transform = interfaces.transform(0).transform;
    for (std::vector<double>* const column : columns) {
        for (std::size_t i = 0; i < column->size(); ++i) {
            double& value = (*column)[i];
            value = OutputTransforms::invert(transform, OutputTransforms::apply(transform, value) +
                                                            effects[cases.design.blocks[rows[i]]]);
        }
    }
}

FitProgress::Portion CrossValidation::partOf(std::size_t step, std::size_t count)
{
    const auto steps = static_cast<double>(count);
    return {static_cast<double>(step) / steps, static_cast<double>(step + 1) / steps};
}

std::size_t CrossValidation::termCount(const SurrogateModelInterface& model,
                                       const ResponseSurfaceOptions& settings)
{
    const ModelInterfaces interfaces(model);
    if (settings.selection != ResponseSurfaceOptions::Selection::All) {
        if (const auto statistics = interfaces.responseSurfaceStatistics(0)) {
            return statistics->coefficients.size();
        }
    }
    const PredictiveModel* const predictive = interfaces.predictive();
    return predictive == nullptr ? 0 : predictive->fitMetrics(0).terms;
}
