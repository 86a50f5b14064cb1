#include "session/model/ModelComparison.h"

#include "session/cases/CaseFolds.h"
#include "session/cases/VariableNames.h"
#include "session/model/CaseSession.h"
#include "session/model/ComparisonVerdict.h"
#include "session/model/InputSymbols.h"

#include <mirel_datamanagement/Project.h>
#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>
#include <mirel_fitting/TermSelectionScope.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>
#include <numeric>

namespace {
using Model = CaseSession::Model;
using Columns = std::vector<std::vector<double>>;

/** Of the progress of one fold; a response surface is done before one can look. */
constexpr double shareOfResponseSurface = 0.05;

/** Of the progress of all. */
constexpr double shareOfFolds = 0.99;

class Stopwatch
{
public:
    double seconds() const
    {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }

private:
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

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

std::vector<double*> pointersTo(Columns& columns)
{
    std::vector<double*> pointers;
    pointers.reserve(columns.size());
    for (std::vector<double>& column : columns) {
        pointers.push_back(column.data());
    }
    return pointers;
}

std::vector<const double*> pointersTo(const Columns& columns)
{
    std::vector<const double*> pointers;
    pointers.reserve(columns.size());
    for (const std::vector<double>& column : columns) {
        pointers.push_back(column.data());
    }
    return pointers;
}

/** The valid cases of a session. */
struct Cases
{
    explicit Cases(const CaseSession& session)
        : inputNames(namesOf(session.inputs())), positions(session.validCases())
    {
        for (const VarPtr& input : session.inputs()) {
            inputs.push_back(picked(session.project().numericValues(input), positions));
        }
        for (const VarPtr& output : session.outputs()) {
            outputs.push_back(picked(session.project().numericValues(output), positions));
        }
    }

    std::size_t count() const { return positions.size(); }

    CaseFolds folds() const
    {
        std::vector<const double*> columns = pointersTo(inputs);
        const std::vector<const double*> results = pointersTo(outputs);
        columns.insert(columns.end(), results.begin(), results.end());
        return CaseFolds(columns, count());
    }

    std::vector<std::string> inputNames;
    std::vector<std::size_t> positions; ///< in the case file
    Columns inputs;
    Columns outputs;
};

/** A model of one output as the manager makes it. */
std::unique_ptr<SurrogateModelInterface> makeModel(Model type, Columns& inputs,
                                                   std::vector<double>& output)
{
    const std::vector<double*> independents = pointersTo(inputs);
    const std::vector<double*> dependents = {output.data()};
    if (type == CaseSession::ResponseSurface) {
        return std::make_unique<SurrogateResponseSurfaceModel>(independents, dependents,
                                                               output.size());
    }
    const double tolerance = 0.0001;
    const std::vector<double> estimatedLengths;
    const int linearTrend = 1;
    const double initialLength = 0.5;
    const double nugget = 0.0;
    const int estimatedNugget = 0;
    return std::make_unique<KrigingSurrogateModel>(
        independents, dependents, static_cast<int>(output.size()), tolerance, estimatedLengths,
        linearTrend, initialLength, nugget, estimatedNugget);
}

/** Those before any were selected: a selection of fewer terms is no fault of the cases. */
std::size_t termsOf(const SurrogateModelInterface& model)
{
    const auto* const table = dynamic_cast<const SurrogateResponseSurfaceModel*>(&model);
    if (table != nullptr && TermSelectionScope::current() != TermSelectionScope::Selection::All) {
        return table->responseSurfaceStatistics(0).coefficients.size();
    }
    const auto* const metrics = dynamic_cast<const PredictiveModel*>(&model);
    return metrics == nullptr ? 0 : metrics->fitMetrics(0).terms;
}

/** The cases of the fold that is left out, and the others. */
struct Parted
{
    Parted(const Cases& cases, const std::vector<std::size_t>& folds, std::size_t fold)
    {
        for (std::size_t i = 0; i < folds.size(); ++i) {
            (folds[i] == fold ? leftOut : others).push_back(i);
        }
        inputs = picked(cases.inputs, others);
        points = picked(cases.inputs, leftOut);
    }

    std::vector<std::size_t> leftOut;
    std::vector<std::size_t> others;
    Columns inputs; ///< of the others
    Columns points; ///< of those left out
};

/** What one model makes of one output, fold by fold. */
struct Predictions
{
    explicit Predictions(std::size_t cases) : values(cases, LeftOutFigures::none) {}

    std::vector<double> values; ///< one per case, NaN where the fit of its fold has failed
    std::vector<LeftOutFigures::Failure> failures;
    std::vector<std::size_t> terms; ///< of each fit
    double seconds = 0.0;
};

/** In parts: what a model of many cases predicts takes long enough to be cancelled. */
std::vector<double> predicted(const SurrogateModelInterface& model, Columns& points,
                              std::size_t count, const std::string& message)
{
    constexpr std::size_t atOnce = 1024;

    std::vector<double> values(count);
    for (std::size_t first = 0; first < count; first += atOnce) {
        if (first > 0) {
            FitProgress::report(1.0, message);
        }
        std::vector<double*> inputs = pointersTo(points);
        for (double*& column : inputs) {
            column += first;
        }
        std::vector<double*> results = {values.data() + first};
        model.interpolateDependentValues(inputs, {0}, results, std::min(atOnce, count - first));
    }
    return values;
}

/** @throw SurrogateModelInterface::Error */
void predict(Model type, Parted& parted, std::vector<double>& output, Predictions& predictions,
             const std::string& message)
{
    const Stopwatch watch;
    const std::unique_ptr<SurrogateModelInterface> model = makeModel(type, parted.inputs, output);
    model->activateDependentVariables({0});
    const double seconds = watch.seconds();

    const std::vector<double> values =
        predicted(*model, parted.points, parted.leftOut.size(), message);
    if (!std::all_of(values.begin(), values.end(),
                     [](double value) { return std::isfinite(value); })) {
        throw SurrogateModelInterface::Error("A prediction is no finite number.");
    }
    predictions.terms.push_back(termsOf(*model));
    predictions.seconds += seconds;
    for (std::size_t i = 0; i < values.size(); ++i) {
        predictions.values[parted.leftOut[i]] = values[i];
    }
}

/** The progress of one of `count` equal steps. */
FitProgress::Portion partOf(std::size_t step, std::size_t count)
{
    const auto steps = static_cast<double>(count);
    return {static_cast<double>(step) / steps, static_cast<double>(step + 1) / steps};
}

const char* nameOf(Model type)
{
    return type == CaseSession::Kriging ? "Kriging" : "response surface";
}

/** What is predicted of all outputs by both models. */
class Validation
{
public:
    Validation(const Cases& cases, std::size_t folds)
        : responseSurface(cases.outputs.size(), Predictions(cases.count())),
          kriging(responseSurface), cases(cases), folds(folds),
          foldOfCase(cases.folds().split(folds))
    {
        const FitProgress::Portion most(0.0, shareOfFolds);
        for (std::size_t fold = 0; fold < folds; ++fold) {
            const FitProgress::Portion portion = partOf(fold, folds);
            runFold(fold);
        }
    }

    /** One per output. */
    std::vector<Predictions> responseSurface;
    std::vector<Predictions> kriging;

private:
    void runFold(std::size_t fold)
    {
        Parted parted(cases, foldOfCase, fold);
        for (std::size_t i = 0; i < cases.outputs.size(); ++i) {
            std::vector<double> output = picked(cases.outputs[i], parted.others);
            const FitProgress::Portion portion = partOf(i, cases.outputs.size());
            const auto run = [&](Model type, Predictions& predictions, double from, double to) {
                const FitProgress::Portion fit(from, to);
                runFit(type, fold, parted, output, predictions);
            };
            run(CaseSession::ResponseSurface, responseSurface[i], 0.0, shareOfResponseSurface);
            run(CaseSession::Kriging, kriging[i], shareOfResponseSurface, 1.0);
        }
    }

    void runFit(Model type, std::size_t fold, Parted& parted, std::vector<double>& output,
                Predictions& predictions)
    {
        // Before and after the fit, so that the error that cancels is not taken for the fit's own.
        const std::string message = std::string(nameOf(type)) + ", fold " +
                                    std::to_string(fold + 1) + " of " + std::to_string(folds);
        FitProgress::report(0.0, message);
        try {
            predict(type, parted, output, predictions, message);
        } catch (const SurrogateModelInterface::Error& error) {
            predictions.failures.push_back({fold, withInputNames(error.what(), cases.inputNames)});
        }
        FitProgress::report(1.0, message);
    }

    const Cases& cases;
    std::size_t folds;
    std::vector<std::size_t> foldOfCase;
};

/** Of the cases that are predicted, sums over the output. */
LeftOutFigures figuresOf(const Predictions& predictions, const std::vector<bool>& isUsed,
                         const std::vector<double>& output,
                         const std::vector<std::size_t>& positions)
{
    LeftOutFigures figures;
    figures.failures = predictions.failures;
    if (!predictions.terms.empty()) {
        figures.fitSeconds = predictions.seconds / static_cast<double>(predictions.terms.size());
    }
    std::vector<std::size_t> used;
    for (std::size_t i = 0; i < output.size(); ++i) {
        if (isUsed[i]) {
            used.push_back(i);
        }
    }
    figures.cases = used.size();
    if (used.empty()) {
        return figures;
    }

    const auto count = static_cast<double>(used.size());
    double mean = 0.0;
    for (const std::size_t i : used) {
        mean += output[i] / count;
    }
    double squares = 0.0;
    double spread = 0.0;
    figures.largestError = -1.0;
    for (const std::size_t i : used) {
        const double error = std::abs(predictions.values[i] - output[i]);
        squares += error * error;
        spread += (output[i] - mean) * (output[i] - mean);
        if (error > figures.largestError) {
            figures.largestError = error;
            figures.largestErrorCase = positions[i];
        }
    }
    figures.rmse = std::sqrt(squares / count);
    const auto [least, greatest] = std::minmax_element(output.begin(), output.end());
    if (*least < *greatest && spread > 0.0) {
        figures.q2 = 1.0 - squares / spread;
    }
    return figures;
}

/** Where the folds leave too few cases, the model is of a lower order than that of all cases. */
void remarkOrder(const Predictions& predictions, std::size_t terms, LeftOutFigures& figures)
{
    const auto lowered = std::count_if(predictions.terms.begin(), predictions.terms.end(),
                                       [&](std::size_t fitted) { return fitted < terms; });
    if (lowered > 0) {
        const std::size_t fewest =
            *std::min_element(predictions.terms.begin(), predictions.terms.end());
        figures.remarks.push_back("In " + std::to_string(lowered) + " of " +
                                  std::to_string(predictions.terms.size()) +
                                  " fits it has fewer terms than with all cases, down to " +
                                  std::to_string(fewest) + " instead of " + std::to_string(terms) +
                                  ", so that the figures do not describe the model of all cases.");
    }
}

/** The paired difference of squared errors. */
void setDifference(const Predictions& responseSurface, const Predictions& kriging,
                   const std::vector<double>& output, OutputComparison& comparison)
{
    std::vector<double> differences;
    for (std::size_t i = 0; i < output.size(); ++i) {
        const double left = responseSurface.values[i] - output[i];
        const double right = kriging.values[i] - output[i];
        if (std::isfinite(left) && std::isfinite(right)) {
            differences.push_back(left * left - right * right);
        }
    }
    if (differences.size() < 2) {
        return;
    }
    const auto count = static_cast<double>(differences.size());
    const double mean = std::accumulate(differences.begin(), differences.end(), 0.0) / count;
    double squares = 0.0;
    for (const double difference : differences) {
        squares += (difference - mean) * (difference - mean);
    }
    comparison.difference = mean;
    comparison.differenceError = std::sqrt(squares / (count - 1.0) / count);
}

OutputComparison compared(const std::string& name, const std::vector<double>& output,
                          const std::vector<std::size_t>& positions,
                          const Predictions& responseSurface, const Predictions& kriging)
{
    const auto isPredicted = [](const Predictions& predictions) {
        std::vector<bool> result(predictions.values.size());
        for (std::size_t i = 0; i < result.size(); ++i) {
            result[i] = std::isfinite(predictions.values[i]);
        }
        return result;
    };
    const std::vector<bool> left = isPredicted(responseSurface);
    const std::vector<bool> right = isPredicted(kriging);
    std::vector<bool> both(left.size());
    std::transform(left.begin(), left.end(), right.begin(), both.begin(),
                   [](bool one, bool other) { return one && other; });
    const bool haveCommonCases = std::find(both.begin(), both.end(), true) != both.end();

    OutputComparison comparison;
    comparison.name = name;
    comparison.responseSurface =
        figuresOf(responseSurface, haveCommonCases ? both : left, output, positions);
    comparison.kriging = figuresOf(kriging, haveCommonCases ? both : right, output, positions);
    setDifference(responseSurface, kriging, output, comparison);
    judge(comparison);
    return comparison;
}

/** The terms that the response surface of all cases has; 0 if there is none. */
std::size_t termsOfAll(const Cases& cases, std::size_t output)
{
    try {
        Columns inputs = cases.inputs;
        std::vector<double> values = cases.outputs[output];
        return termsOf(*makeModel(CaseSession::ResponseSurface, inputs, values));
    } catch (const SurrogateModelInterface::Error&) {
        return 0;
    }
}
} // namespace

std::size_t ModelComparison::mostFolds(const CaseSession& session)
{
    return Cases(session).folds().most();
}

ModelComparison ModelComparison::of(const CaseSession& session, std::size_t folds)
{
    const Stopwatch watch;
    const Cases cases(session);
    const std::size_t most = cases.folds().most();
    if (most < 2) {
        throw SurrogateModelInterface::Error("A comparison leaves cases out and needs at least two "
                                             "that are valid and no copies, but "
                                             "there is " +
                                             std::string(most == 0 ? "none." : "one."));
    }

    const TermSelectionScope selection(session.terms() == CaseSession::SelectedTerms
                                           ? TermSelectionScope::Selection::BackwardAicc
                                           : TermSelectionScope::Selection::All,
                                       session.polynomial());
    ModelComparison comparison;
    comparison.folds = folds;
    const Validation validation(cases, folds);
    const FitProgress::Portion rest(shareOfFolds, 1.0);
    const std::vector<std::string> names = namesOf(session.outputs());
    for (std::size_t i = 0; i < names.size(); ++i) {
        const FitProgress::Portion portion = partOf(i, names.size());
        comparison.outputs.push_back(compared(names[i], cases.outputs[i], cases.positions,
                                              validation.responseSurface[i],
                                              validation.kriging[i]));
        remarkOrder(validation.responseSurface[i], termsOfAll(cases, i),
                    comparison.outputs.back().responseSurface);
    }
    comparison.seconds = watch.seconds();
    return comparison;
}
