#include "session/model/Evaluator.h"

#include "session/cases/VariableNames.h"
#include "session/model/Stopwatch.h"
#include "session/model/Workspace.h"
#include "session/text/QuotedText.h"
#include <mirel_fitting/ModelInterfaces.h>

#include <surrogatemodel/SurfaceCoefficientExporter.h>
#include <surrogatemodel/SurrogateModelQueryToTable.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_signals/SignalConnectionCollection.h>

#include <vtkCallbackCommand.h>
#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkTable.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <sstream>
#include <utility>

namespace {
/** The models only read their inputs, though through pointers that are not const. */
std::vector<double*> readOnly(const std::vector<const double*>& columns)
{
    std::vector<double*> pointers;
    pointers.reserve(columns.size());
    for (const double* const column : columns) {
        pointers.push_back(const_cast<double*>(column));
    }
    return pointers;
}

/** Of an output without variation limits would have no width: zero width would claim certainty.
 *  @throw SurrogateModelInterface::Error if it has none. */
void requireVariation(const FittedModel& model, int offset)
{
    const FitMetrics metrics = model.fitMetrics(offset);
    if (std::isnan(metrics.r2) && std::isnan(metrics.q2)) {
        throw SurrogateModelInterface::Error(
            metrics.cases == 1
                ? "There is only one case: nothing tells how far others lie from it."
                : "The output is the same in all cases: nothing tells how far others lie from it.");
    }
}

/** The first columns of a table, which holds double arrays. */
std::vector<double*> firstColumns(vtkTable& table, std::size_t count)
{
    std::vector<double*> columns;
    for (std::size_t i = 0; i < count; ++i) {
        vtkAbstractArray* const column = table.GetColumn(static_cast<vtkIdType>(i));
        columns.push_back(vtkDoubleArray::SafeDownCast(column)->GetPointer(0));
    }
    return columns;
}

} // namespace

class Evaluator::Impl
{
public:
    explicit Impl(const Workspace& workspace) : workspace(workspace)
    {
        connections.add(
            workspace.manager()->connectSignalModelChanged([this] { model = nullptr; }));
    }

    std::set<VarPtr> dependents() const
    {
        return {workspace.outputs().begin(), workspace.outputs().end()};
    }

    SurrogateModelInterface& fittedModel()
    {
        if (model == nullptr || fittedOutputs != workspace.outputs()) {
            const Stopwatch watch;
            SurrogateModelInterface& fitted = workspace.manager()->model(dependents());
            const std::vector<int>& offsets = workspace.outputOffsets();
            fitted.activateDependentVariables({offsets.begin(), offsets.end()});
            model = &fitted;
            fittedOutputs = workspace.outputs();
            result.reset();
            statistics.reset();
            findings.reset();
            fitSeconds = watch.seconds();
        }
        return *model;
    }

    /** Adds what comes with the values at these points. The model is fitted. */
    void describe(const std::vector<double*>& points, std::size_t count,
                  const std::optional<double>& percent, Evaluation& evaluation) const
    {
        evaluation.extrapolation = checkExtrapolation(points, count);
        if (percent) {
            addIntervals(points, count, *percent / 100.0, evaluation);
        }
    }

    const Workspace& workspace;
    SurrogateModelInterface* model = nullptr;
    std::vector<VarPtr> fittedOutputs;
    std::optional<FitResult> result;
    std::optional<std::vector<ResponseSurfaceStatistics>> statistics;
    std::optional<SessionFindings> findings;
    InputCoding codingOfStatistics = InputCoding::Axial;
    double fitSeconds = 0.0;

private:
    Extrapolation checkExtrapolation(const std::vector<double*>& points, std::size_t count) const
    {
        const PredictiveModel* const predictive = ModelInterfaces(*model).predictive();
        return predictive == nullptr
                   ? Extrapolation()
                   : predictive->extrapolation(points, count, shownNamesOf(workspace.inputs()));
    }

    void addIntervals(const std::vector<double*>& points, std::size_t count, double level,
                      Evaluation& evaluation) const
    {
        const FittedModel* const fitted = ModelInterfaces(*model).fitted();
        for (std::size_t i = 0; i < workspace.outputs().size(); ++i) {
            try {
                if (fitted == nullptr) {
                    throw SurrogateModelInterface::Error("The model has no prediction intervals.");
                }
                requireVariation(*fitted, workspace.outputOffsets()[i]);
                evaluation.intervals.push_back(fitted->predictionIntervals(
                    points, workspace.outputOffsets()[i], level, count));
            } catch (const SurrogateModelInterface::Error& error) {
                const std::vector<double> none(count, std::nan(""));
                evaluation.intervals.push_back({none, none});
                evaluation.intervalFaults.push_back(
                    "The limits of " + quotedText(workspace.outputs()[i].lock()->name()) +
                    " are empty. " + error.what());
            }
        }
    }

    SignalConnectionCollection connections;
};

Evaluator::Evaluator(const Workspace& workspace) : impl(std::make_unique<Impl>(workspace)) {}

Evaluator::~Evaluator() = default;

SurrogateModelInterface& Evaluator::model()
{
    try {
        return impl->fittedModel();
    } catch (const SurrogateModelInterface::Error& error) {
        const CaseCounts& counts = impl->workspace.counts();
        if (counts.valid > 0) {
            throw;
        }
        throw SurrogateModelInterface::Error(
            std::string(error.what()) + " Cases: " + std::to_string(counts.read) + " read, " +
            std::to_string(counts.excluded) + " excluded, " + std::to_string(counts.invalid) +
            " with missing or infinite values.");
    }
}

const FittedModel* Evaluator::fittedModel()
{
    return ModelInterfaces(model()).fitted();
}

const FitResult& Evaluator::fit()
{
    const ModelInterfaces interfaces(model());
    if (impl->result) {
        return *impl->result;
    }
    const PredictiveModel* const predictive = interfaces.predictive();
    const std::vector<std::string> inputNames = shownNamesOf(impl->workspace.inputs());
    std::vector<std::size_t> cases;

    FitResult result;
    result.seconds = impl->fitSeconds;
    for (std::size_t i = 0; i < impl->workspace.outputs().size(); ++i) {
        const int offset = impl->workspace.outputOffsets()[i];
        OutputFit& output = result.outputs.emplace_back();
        output.name = impl->workspace.outputs()[i].lock()->name();
        if (predictive != nullptr) {
            output.metrics = predictive->fitMetrics(offset);
            output.notes = predictive->fitNotes(offset, inputNames);
            for (std::string& warning : predictive->fitWarnings(offset, inputNames)) {
                if (std::find(output.notes.begin(), output.notes.end(), warning) ==
                    output.notes.end()) {
                    output.warnings.push_back(std::move(warning));
                }
            }
        }
        output.modelled = interfaces.transform(offset);
        output.kriging = interfaces.krigingReport(offset);
        if (output.kriging) {
            if (cases.empty()) {
                cases = impl->workspace.validCases();
            }
            for (KrigingReport::LeftOutCase& worst : output.kriging->worstCases) {
                worst.row = cases.at(worst.row);
            }
        }
    }
    impl->result = std::move(result);
    return *impl->result;
}

const FitResult& Evaluator::calibratedFit()
{
    fit();
    const FittedModel* const fitted = fittedModel();
    for (std::size_t i = 0; i < impl->result->outputs.size() && fitted != nullptr; ++i) {
        OutputFit& output = impl->result->outputs[i];
        if (output.calibration) {
            continue;
        }
        try {
            output.calibration = fitted->calibrationReport(impl->workspace.outputOffsets()[i]);
        } catch (const SurrogateModelInterface::Error&) {
            // Without intervals there is nothing to report, unless this was the error that cancels.
            FitProgress::report(1.0, "Calibrating the intervals");
        }
    }
    return *impl->result;
}

const std::vector<ResponseSurfaceStatistics>& Evaluator::statistics()
{
    const ModelInterfaces interfaces(model());
    const InputCoding coding = impl->workspace.modelChoices().coding;
    if (impl->statistics && impl->codingOfStatistics == coding) {
        return *impl->statistics;
    }
    std::vector<ResponseSurfaceStatistics> results;
    const std::vector<std::string> blockNames =
        impl->workspace.modelChoices().designColumns.blockNames(impl->workspace.project());
    std::vector<std::size_t> cases;
    for (const int offset : impl->workspace.outputOffsets()) {
        std::optional<ResponseSurfaceStatistics> statistics =
            interfaces.responseSurfaceStatistics(offset, coding);
        if (!statistics) {
            results.clear();
            break;
        }
        if (cases.empty()) {
            cases = impl->workspace.validCases();
        }
        results.push_back(std::move(*statistics));
        for (BlockEffect& one : results.back().blockEffects) {
            one.name = blockNames.at(one.block);
        }
        for (CaseLeverage& one : results.back().largestLeverages) {
            one.row = cases.at(one.row);
        }
        for (CaseDiagnostics& one : results.back().cases) {
            one.row = cases.at(one.row);
        }
    }
    impl->codingOfStatistics = coding;
    return impl->statistics.emplace(std::move(results));
}

const SessionFindings& Evaluator::findings()
{
    const std::vector<ResponseSurfaceStatistics>& ofFit = statistics();
    if (!impl->findings) {
        impl->findings = SessionFindings::ofFit(impl->workspace, ofFit);
    }
    return *impl->findings;
}

GridEvaluation Evaluator::evaluate(const std::optional<double>& percent)
{
    model();
    const auto filter =
        SurrogateModelQueryToTable::New(impl->workspace.manager(), impl->workspace.interpolation());
    // Without a callback it keeps errors out of VTK's output window: they are thrown instead.
    const vtkNew<vtkCallbackCommand> errorSilencer;
    filter->AddObserver("ErrorEvent", errorSilencer);

    GridEvaluation evaluation;
    const Stopwatch watch;
    filter->Update();
    evaluation.seconds = watch.seconds();
    const std::string error = filter->getLastError();
    if (!error.empty()) {
        throw SurrogateModelInterface::Error(error);
    }

    // The filter has the outputs in the order of their creation.
    evaluation.table = vtkSmartPointer<vtkTable>::New();
    for (const auto* variables : {&impl->workspace.inputs(), &impl->workspace.outputs()}) {
        for (const VarPtr& variable : *variables) {
            evaluation.table->AddColumn(
                filter->GetOutput()->GetColumnByName(variable.lock()->name().c_str()));
        }
    }
    const std::vector<std::size_t> swept = impl->workspace.sweptInputs();
    const std::vector<double> held = impl->workspace.heldValues();
    for (std::size_t i = 0; i < held.size(); ++i) {
        if (!std::binary_search(swept.begin(), swept.end(), i)) {
            evaluation.held.push_back({impl->workspace.inputs()[i].lock()->name(), held[i]});
        }
    }
    impl->describe(firstColumns(*evaluation.table, impl->workspace.inputs().size()),
                   static_cast<std::size_t>(evaluation.table->GetNumberOfRows()), percent,
                   evaluation);
    return evaluation;
}

PointEvaluation Evaluator::predict(const std::vector<const double*>& points, std::size_t count,
                                   const std::optional<double>& percent)
{
    const SurrogateModelInterface& fitted = model();
    const std::vector<double*> inputs = readOnly(points);
    const std::vector<int>& offsets = impl->workspace.outputOffsets();
    PointEvaluation evaluation;
    const Stopwatch watch;
    evaluation.outputs.assign(offsets.size(), std::vector<double>(count));
    // The model writes its outputs in the order of their offsets.
    std::map<int, double*> byOffset;
    for (std::size_t i = 0; i < offsets.size(); ++i) {
        byOffset[offsets[i]] = evaluation.outputs[i].data();
    }
    std::vector<double*> outputs;
    for (const auto& [offset, column] : byOffset) {
        outputs.push_back(column);
    }
    fitted.interpolateDependentValues(inputs, {offsets.begin(), offsets.end()}, outputs, count);
    evaluation.seconds = watch.seconds();
    impl->describe(inputs, count, percent, evaluation);
    return evaluation;
}

std::vector<char> Evaluator::outsideCases(const std::vector<const double*>& points,
                                          std::size_t count)
{
    const PredictiveModel* const predictive = ModelInterfaces(model()).predictive();
    return predictive == nullptr ? std::vector<char>(count)
                                 : predictive->outsideCases(readOnly(points), count);
}

std::string Evaluator::equationText()
{
    model();
    std::ostringstream text;
    const std::set<VarPtr> dependents = impl->dependents();
    SurfaceCoefficientExporter(*impl->workspace.manager(), dependents, text).exportData();
    return text.str();
}

std::vector<std::string> Evaluator::equations()
{
    const SurrogateModelInterface& fitted = model();
    std::vector<std::string> texts;
    for (const int offset : impl->workspace.outputOffsets()) {
        texts.push_back(fitted.surfaceCoefficientInformation(offset));
    }
    return texts;
}
