#include "session/comparison/ModelComparison.h"

#include "session/cases/CaseFolds.h"
#include "session/cases/VariableNames.h"
#include "session/comparison/ComparisonVerdict.h"
#include "session/model/ModelInterfaces.h"
#include "session/model/SessionModelFactory.h"
#include "session/model/Stopwatch.h"
#include "session/model/Workspace.h"

#include <mirel_datamanagement/Project.h>
#include <mirel_fitting/ColumnPointers.h>
#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/FittedModel.h>
#include <mirel_fitting/PredictiveModel.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>

namespace {
using ModelType = SurrogateModelFactory::ModelType;
using Columns = std::vector<std::vector<double>>;

/** Of the progress of one fold: response surfaces take little of its time. */
constexpr double shareOfResponseSurface = 0.05;

/** Of the progress of one fit: the calibration of its intervals takes about as long. */
constexpr double shareOfFit = 0.5;

std::vector<double> picked(const std::vector<double>& values,
                           const std::vector<std::size_t>& positions)
{
    std::vector<double> result(positions.size());
    std::transform(positions.begin(), positions.end(), result.begin(),
                   [&](std::size_t position) { return values[position]; });
    return result;
}

Columns picked(const Columns& columns, const std::vector<std::size_t>& positions)
{
    Columns result;
    result.reserve(columns.size());
    for (const std::vector<double>& column : columns) {
        result.push_back(picked(column, positions));
    }
    return result;
}

/** The valid cases of a workspace. */
struct Cases
{
    explicit Cases(const Workspace& workspace)
        : positions(workspace.validCases()),
          design(workspace.designColumns().design(workspace.project(), positions))
    {
        for (const VarPtr& input : workspace.inputs()) {
            inputs.push_back(picked(workspace.project().numericValues(input), positions));
        }
        for (const VarPtr& output : workspace.outputs()) {
            outputs.push_back(picked(workspace.project().numericValues(output), positions));
        }
        double sum = 0.0;
        for (const double weight : design.weights) {
            sum += weight;
        }
        for (double& weight : design.weights) {
            weight *= static_cast<double>(count()) / sum;
        }
    }

    /** Mean 1. */
    double weight(std::size_t i) const { return design.weights.empty() ? 1.0 : design.weights[i]; }

    std::size_t count() const { return positions.size(); }

    CaseFolds folds() const
    {
        std::vector<const double*> columns = pointersTo(inputs);
        const std::vector<const double*> results = pointersTo(outputs);
        columns.insert(columns.end(), results.begin(), results.end());
        return CaseFolds(columns, count());
    }

    std::vector<std::size_t> positions; ///< in the case file
    CaseDesign design;
    Columns inputs;
    Columns outputs;
};

/** Of a response surface before terms are selected: a selection of fewer terms is no sign of too
 * few cases. */
std::size_t termCount(const SurrogateModelInterface& model, const ResponseSurfaceOptions& settings)
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

/** The cases of one fold, which test the models, and the others, which train them. */
struct TrainTestSplit
{
    TrainTestSplit(const Cases& cases, const std::vector<std::size_t>& foldOfCase, std::size_t fold)
    {
        for (std::size_t i = 0; i < foldOfCase.size(); ++i) {
            (foldOfCase[i] == fold ? testCases : trainingCases).push_back(i);
        }
        trainingInputs = picked(cases.inputs, trainingCases);
        trainingDesign = cases.design.of(trainingCases);
        testInputs = picked(cases.inputs, testCases);
    }

    std::vector<std::size_t> trainingCases;
    std::vector<std::size_t> testCases;
    Columns trainingInputs;
    CaseDesign trainingDesign;
    Columns testInputs;
};

/** The cross-validated predictions of one output by one type of model. */
struct Predictions
{
    explicit Predictions(std::size_t cases)
        : values(cases, CrossValidationMetrics::none), lower(values), upper(values)
    {}

    std::vector<double> values; ///< one per case, NaN where the fit of its fold has failed
    std::vector<double> lower;  ///< limit of the 95 % interval, NaN where the fit has none
    std::vector<double> upper;  ///< likewise
    std::vector<CrossValidationMetrics::Failure> failures;
    std::vector<std::size_t> terms;          ///< of each fit
    std::vector<OutputTransform> transforms; ///< likewise
    double seconds = 0.0;
};

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

/** The 95 % intervals of the first output; none of a model that has none. */
PredictionIntervals intervalsOf(const SurrogateModelInterface& model, Columns& points,
                                std::size_t count, const std::string& message)
{
    constexpr double level = 0.95;

    const FittedModel* const fitted = ModelInterfaces(model).fitted();
    if (fitted != nullptr) {
        try {
            return fitted->predictionIntervals(pointersTo(points), 0, level, count);
        } catch (const SurrogateModelInterface::Error&) {
            // A model without intervals is no fault, but the error that cancels comes again.
            FitProgress::report(1.0, message);
        }
    }
    return {};
}

/** The progress of one of `count` equal steps. */
FitProgress::Portion partOf(std::size_t step, std::size_t count)
{
    const auto steps = static_cast<double>(count);
    return {static_cast<double>(step) / steps, static_cast<double>(step + 1) / steps};
}

const char* nameOf(ModelType type)
{
    return type == Workspace::Kriging ? "Kriging" : "response surface";
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

/** Cross-validates both models of all outputs. */
class CrossValidation
{
public:
    CrossValidation(const Workspace& workspace, const Cases& cases, std::size_t folds)
        : responseSurface(cases.outputs.size(), Predictions(cases.count())),
          kriging(responseSurface), workspace(workspace), cases(cases), folds(folds),
          foldOfCase(cases.folds().split(folds))
    {
        for (std::size_t fold = 0; fold < folds; ++fold) {
            const FitProgress::Portion portion = partOf(fold, folds);
            runFold(fold);
        }
    }

    /** Of the cases that both models of an output have predicted. */
    PairedErrors pairedErrors(std::size_t output) const
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
        return PairedErrors::of(errors, folds,
                                OutputComparison::negligibleError * deviationOf(values));
    }

    /** One per output. */
    std::vector<Predictions> responseSurface;
    std::vector<Predictions> kriging;

private:
    void runFold(std::size_t fold)
    {
        TrainTestSplit split(cases, foldOfCase, fold);
        for (std::size_t i = 0; i < cases.outputs.size(); ++i) {
            std::vector<double> output = picked(cases.outputs[i], split.trainingCases);
            const FitProgress::Portion portion = partOf(i, cases.outputs.size());
            const auto run = [&](ModelType type, Predictions& predictions, double from, double to) {
                const FitProgress::Portion fit(from, to);
                runFit(type, fold, split, output, predictions);
            };
            run(Workspace::ResponseSurface, responseSurface[i], 0.0, shareOfResponseSurface);
            run(Workspace::Kriging, kriging[i], shareOfResponseSurface, 1.0);
        }
    }

    void runFit(ModelType type, std::size_t fold, TrainTestSplit& split,
                std::vector<double>& output, Predictions& predictions)
    {
        // Before and after the fit, so that the error that cancels is not taken for the fit's own.
        const std::string message = std::string(nameOf(type)) + ", fold " +
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
    void predict(ModelType type, TrainTestSplit& split, std::vector<double>& output,
                 Predictions& predictions, const std::string& message) const
    {
        const Stopwatch watch;
        const auto model = workspace.modelFactory().makeModel(
            type, pointersTo(split.trainingInputs), {output.data()},
            static_cast<int>(output.size()), split.trainingDesign);
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
        predictions.terms.push_back(termCount(*model, workspace.responseSurface()));
        predictions.transforms.push_back(ModelInterfaces(*model).transform(0).transform);
        predictions.seconds += seconds;
        PredictionIntervals intervals =
            intervalsOf(*model, split.testInputs, split.testCases.size(), message);
        for (std::vector<double>* const column : {&values, &intervals.lower, &intervals.upper}) {
            addBlockEffects(*model, split.testCases, *column);
        }
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
    void addBlockEffects(const SurrogateModelInterface& model, const std::vector<std::size_t>& rows,
                         std::vector<double>& values) const
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
        for (std::size_t i = 0; i < values.size(); ++i) {
            const double value = OutputTransforms::apply(transform, values[i]);
            values[i] =
                OutputTransforms::invert(transform, value + effects[cases.design.blocks[rows[i]]]);
        }
    }

    const Workspace& workspace;
    const Cases& cases;
    std::size_t folds;
    std::vector<std::size_t> foldOfCase;
};

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
                                 const std::vector<double>& output, const Cases& cases)
{
    CrossValidationMetrics metrics;
    metrics.failures = predictions.failures;
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
    // Prediction intervals are those of a case of mean weight.
    metrics.held95 = cases.design.weights.empty() ? shareHeld(predictions, used, output)
                                                  : CrossValidationMetrics::none;
    const auto [least, greatest] = std::minmax_element(output.begin(), output.end());
    if (*least < *greatest && squaresAboutMean > 0.0) {
        metrics.q2 = 1.0 - squares / squaresAboutMean;
    }
    return metrics;
}

/** What of the fit to all cases is compared with the folds; nothing of one that fails. */
struct WholeFit
{
    WholeFit(ModelType type, const Workspace& workspace, const Cases& cases, std::size_t output)
    {
        const std::string message = std::string(nameOf(type)) + ", all cases";
        FitProgress::report(0.0, message);
        try {
            Columns inputs = cases.inputs;
            std::vector<double> values = cases.outputs[output];
            const auto model =
                workspace.modelFactory().makeModel(type, pointersTo(inputs), {values.data()},
                                                   static_cast<int>(values.size()), cases.design);
            model->activateDependentVariables({0});
            if (const PredictiveModel* const predictive = ModelInterfaces(*model).predictive()) {
                looRmse = predictive->fitMetrics(0).looRmse;
            }
            terms = termCount(*model, workspace.responseSurface());
            transform = ModelInterfaces(*model).transform(0).transform;
            kriging = ModelInterfaces(*model).krigingReport(0);
        } catch (const SurrogateModelInterface::Error&) {
            // The command fit says why; here the folds count.
        }
        FitProgress::report(1.0, message);
    }

    std::size_t terms = 0;
    double looRmse = CrossValidationMetrics::none;
    OutputTransform transform = OutputTransform::None;
    std::optional<KrigingReport> kriging;
};

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

void addWholeFit(const Predictions& predictions, const WholeFit& fit,
                 CrossValidationMetrics& metrics)
{
    metrics.looRmse = fit.looRmse;
    metrics.transform = fit.transform;
    metrics.kriging = fit.kriging;
    for (const OutputTransform transform : predictions.transforms) {
        ++metrics.transforms[transform];
    }
}

OutputComparison compared(const std::string& name, const std::vector<double>& output,
                          const Cases& cases, const Predictions& responseSurface,
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
    return Cases(workspace).folds().max();
}

ModelComparison ModelComparison::of(const Workspace& workspace, std::size_t folds)
{
    const Stopwatch watch;
    const Cases cases(workspace);
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
        const FitProgress::Portion portion = partOf(i, names.size());
        const auto add = [&](ModelType type, const Predictions& predictions,
                             CrossValidationMetrics& metrics, double from, double to) {
            const FitProgress::Portion part(from, to);
            const WholeFit fit(type, workspace, cases, i);
            if (type == Workspace::ResponseSurface) {
                remarkOrder(predictions, fit.terms, metrics);
            }
            addWholeFit(predictions, fit, metrics);
        };
        add(Workspace::ResponseSurface, validation.responseSurface[i], output.responseSurface, 0.0,
            shareOfResponseSurface);
        add(Workspace::Kriging, validation.kriging[i], output.kriging, shareOfResponseSurface, 1.0);
        judge(output);
    }
    comparison.seconds = watch.seconds();
    return comparison;
}
