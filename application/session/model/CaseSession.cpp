#include "session/model/CaseSession.h"

#include "session/cases/VariableNames.h"
#include "session/files/FileFingerprint.h"
#include "session/model/InputSymbols.h"
#include "session/model/SessionState.h"
#include "session/project/ProjectDocument.h"
#include "session/text/QuotedText.h"
#include "session/text/SessionErrors.h"

#include <surrogatemodel/SurfaceCoefficientExporter.h>
#include <surrogatemodel/SurrogateModelManager.h>
#include <surrogatemodel/SurrogateModelQueryToTable.h>
#include <surrogatemodel/SurrogateModelUserDist.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <property/Property.h>

#include <mirel_analyzercommon/DeleteSignaler.h>
#include <mirel_analyzercommon/GenericUndoCommand.h>
#include <mirel_analyzercommon/UndoStack.h>
#include <mirel_datamanagement/Project.h>
#include <mirel_fitting/FittedModel.h>
#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateModelInterface.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>
#include <mirel_fitting/TermSelectionScope.h>
#include <mirel_modelexport/ModelExport.h>
#include <mirel_signals/SignalConnectionCollection.h>

#include <boost/make_shared.hpp>
#include <vtkCommand.h>
#include <vtkDoubleArray.h>
#include <vtkTable.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <map>
#include <set>
#include <sstream>
#include <utility>

namespace {
using Collection = SurrogateModelUserDistCollection;
using Manager = SurrogateModelManagerInterface;

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

/** Takes the filter's error report, which would go to VTK's output window: it is thrown instead. */
class ErrorTaker : public vtkCommand
{
public:
    static ErrorTaker* New() { return new ErrorTaker; }
    void Execute(vtkObject*, unsigned long, void*) override {}
};

/** The values of a text; the message names the variable and, in one sentence, the fault. */
std::vector<double> valuesOf(const std::string& text, const std::string& name)
{
    SurrogateModelUserDist distribution(text);
    std::vector<double> values;
    distribution.get(values);
    if (!distribution.isValid()) {
        std::string fault = distribution.errorString();
        fault.replace(fault.find('\n'), 1, ": ");
        throw DistributionTextError("The text \"" + text + "\" for \"" + name +
                                    "\" cannot be read. " + fault +
                                    ". Write numbers and ranges like 4 - 80 : 20, 42.");
    }
    return values;
}

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
} // namespace

class CaseSession::Impl
{
public:
    explicit Impl(CaseTable& table,
                  const boost::shared_ptr<SurrogateModelInterface>& model = nullptr)
        : path(table.path), separator(table.separator), hasDecimalComma(table.hasDecimalComma),
          state(table, model)
    {
        connections.add(state.project->connectSignalChanged([this] {
            knownCounts.reset();
            knownExcluded.reset();
        }));
        connections.add(state.manager->independentVars()->connectSignalChanged(
            [this](const std::vector<VarPtr>&) { takeInputs(); }));
        connections.add(state.manager->connectSignalModelChanged([this] { fitted = nullptr; }));
        knownExcluded.emplace();
    }

    void takeInputs()
    {
        inputs = state.manager->independentVars()->get();
        knownCounts.reset();
    }

    const std::vector<std::size_t>& excluded()
    {
        if (!knownExcluded) {
            knownExcluded = state.excluded();
        }
        return *knownExcluded;
    }

    const CaseCounts& counts()
    {
        if (!knownCounts) {
            knownCounts = countCases(*state.project, inputs, state.outputs, excluded());
        }
        return *knownCounts;
    }

    std::set<VarPtr> dependents() const { return {state.outputs.begin(), state.outputs.end()}; }

    int offsetOf(const VarPtr& output) const
    {
        return static_cast<int>(state.manager->offsetForVariableName(output.lock()->name()));
    }

    std::set<int> offsets() const
    {
        std::set<int> all;
        for (const VarPtr& output : state.outputs) {
            all.insert(offsetOf(output));
        }
        return all;
    }

    /** What is to be in force whenever the manager is asked for a model. */
    TermSelectionScope termScope() const
    {
        return TermSelectionScope(state.terms().areSelected
                                      ? TermSelectionScope::Selection::BackwardAicc
                                      : TermSelectionScope::Selection::All,
                                  state.terms().polynomial);
    }

    /** The inputs' values in the first columns of a table. */
    std::vector<double*> pointsOf(vtkTable& table) const
    {
        std::vector<double*> points;
        points.reserve(inputs.size());
        for (std::size_t i = 0; i < inputs.size(); ++i) {
            vtkAbstractArray* const column = table.GetColumn(static_cast<vtkIdType>(i));
            points.push_back(vtkDoubleArray::SafeDownCast(column)->GetPointer(0));
        }
        return points;
    }

    void lookOutside(const std::vector<double*>& points, std::size_t count)
    {
        const auto* const model = dynamic_cast<const PredictiveModel*>(fitted);
        extrapolation =
            model == nullptr
                ? std::string()
                : withInputNames(model->extrapolationWarning(points, count), namesOf(inputs));
    }

    std::vector<PredictionLimits> limits(const SurrogateModelInterface& model,
                                         const std::vector<double*>& points, std::size_t count,
                                         double level)
    {
        limitFaults.clear();
        std::vector<PredictionLimits> results;
        for (const VarPtr& output : state.outputs) {
            const double none = std::nan("");
            PredictionLimits one = {std::vector<double>(count, none),
                                    std::vector<double>(count, none)};
            const std::string fault = findLimits(model, points, offsetOf(output), level, one);
            if (!fault.empty()) {
                one = {std::vector<double>(count, none), std::vector<double>(count, none)};
                limitFaults.push_back("The limits of " + quotedText(output.lock()->name()) +
                                      " are empty. " + fault);
            }
            results.push_back(std::move(one));
        }
        return results;
    }

    /** @return why there are none; empty if there are. */
    static std::string findLimits(const SurrogateModelInterface& model,
                                  const std::vector<double*>& points, int offset, double level,
                                  PredictionLimits& limits)
    {
        const auto* const intervals = dynamic_cast<const FittedModel*>(&model);
        if (intervals == nullptr) {
            return "The model has no prediction intervals.";
        }
        try {
            PredictionIntervals found =
                intervals->predictionIntervals(points, offset, level, limits.lower.size());
            limits = {std::move(found.lower), std::move(found.upper)};
        } catch (const SurrogateModelInterface::Error& error) {
            return error.what();
        }
        return {};
    }

    std::string path;
    char separator;
    bool hasDecimalComma;
    SessionState state;
    std::vector<VarPtr> inputs;
    std::optional<CaseCounts> knownCounts;
    std::optional<std::vector<std::size_t>> knownExcluded;
    ProjectDocument loaded;
    SurrogateModelInterface* fitted = nullptr;
    std::string extrapolation;
    std::string exportedReport;
    std::vector<std::string> limitFaults;
    SessionTimes times;
    DeleteSignaler deleted; ///< ends the undo steps that act on the state
    SignalConnectionCollection connections;
};

CaseSession::CaseSession(CaseTable table)
{
    const UndoStack::SuspendUndoRecording unrecorded;
    impl = std::make_unique<Impl>(table);
}

CaseSession::CaseSession(CaseTable table, const CaseRoles& roles,
                         const std::vector<std::size_t>& excluded, Model model)
    : CaseSession(std::move(table))
{
    chooseRoles(roles);
    exclude(excluded);
    chooseModel(model);
}

CaseSession::CaseSession(const ExportedModel& model)
{
    CaseTable table;
    CaseRoles roles;
    for (const ExportedModel::Input& input : model.inputs) {
        roles.inputs.push_back(table.columns.size());
        table.columns.emplace_back().name = input.name;
    }
    for (const ExportedModel::Output& output : model.outputs) {
        roles.outputs.push_back(table.columns.size());
        table.columns.emplace_back().name = output.name;
    }
    {
        const UndoStack::SuspendUndoRecording unrecorded;
        impl = std::make_unique<Impl>(table, model.predictor());
    }
    impl->exportedReport = model.report;
    const std::vector<VarPtr> variables = impl->state.project->variables();
    for (std::size_t k = 0; k < model.inputs.size(); ++k) {
        impl->state.project->setRange(variables[k],
                                      {model.inputs[k].minimum, model.inputs[k].maximum});
    }
    // After the ranges, whose lower ends become the evaluation point.
    chooseRoles(roles);
    chooseModel(model.isKriging() ? Kriging : ResponseSurface);
}

CaseSession::CaseSession(CaseSession&&) noexcept = default;

CaseSession::~CaseSession()
{
    if (impl != nullptr && Project::project() == impl->state.project) {
        Project::setProject(nullptr);
    }
}

const Project& CaseSession::project() const
{
    return *impl->state.project;
}

const SurrogateModelManagerInterface& CaseSession::manager() const
{
    return *impl->state.manager;
}

CaseSession::Model CaseSession::modelType() const
{
    return impl->state.manager->type()->get() == Manager::Kriging ? Kriging : ResponseSurface;
}

const std::vector<VarPtr>& CaseSession::inputs() const
{
    return impl->inputs;
}

const std::vector<VarPtr>& CaseSession::outputs() const
{
    return impl->state.outputs;
}

const CaseCounts& CaseSession::counts() const
{
    return impl->counts();
}

std::vector<std::size_t> CaseSession::validCases() const
{
    return ::validCases(*impl->state.project, impl->inputs, impl->state.outputs, impl->excluded());
}

void CaseSession::chooseRoles(const CaseRoles& roles)
{
    const UndoStack::SuspendUndoRecording unrecorded;
    // Looking at a million records for what is known takes a noticeable time.
    const std::vector<std::size_t> excluded = impl->excluded();
    impl->state.chooseRoles(roles);
    impl->knownExcluded = excluded;
}

void CaseSession::exclude(const std::vector<std::size_t>& excluded)
{
    if (excluded != impl->excluded()) {
        impl->state.exclude(excluded);
        impl->knownExcluded = excluded;
    }
}

void CaseSession::chooseModel(Model model)
{
    const UndoStack::SuspendUndoRecording unrecorded;
    impl->state.manager->type()->set(model == Kriging ? Manager::Kriging
                                                      : Manager::ResponseSurface);
}

void CaseSession::chooseTerms(Terms terms)
{
    const UndoStack::SuspendUndoRecording unrecorded;
    TermSettings settings = impl->state.terms();
    settings.areSelected = terms == SelectedTerms;
    impl->state.chooseTerms(settings);
}

CaseSession::Terms CaseSession::terms() const
{
    return impl->state.terms().areSelected ? SelectedTerms : AllTerms;
}

void CaseSession::choosePolynomial(PolynomialTerms terms)
{
    const UndoStack::SuspendUndoRecording unrecorded;
    TermSettings settings = impl->state.terms();
    settings.polynomial = terms;
    impl->state.chooseTerms(settings);
}

PolynomialTerms CaseSession::polynomial() const
{
    return impl->state.terms().polynomial;
}

void CaseSession::load(const ProjectDocument& document, Recording recording)
{
    const SessionSettings before = impl->state.settings();
    {
        const UndoStack::SuspendUndoRecording unrecorded;
        impl->state.load(document);
    }
    impl->loaded = document;
    impl->knownExcluded = document.excluded;
    SessionSettings after = impl->state.settings();
    if (recording == OneUndoStep && !(after == before)) {
        const auto setter = [&state = impl->state](const SessionSettings& settings) {
            return [&state, settings] { state.setSettings(settings); };
        };
        UndoStack().push(new GenericUndoCommand(setter(after), setter(before), &impl->deleted,
                                                "Load Project", -1));
    }
}

ProjectDocument CaseSession::document() const
{
    if (impl->path == "-") {
        throw UsageError("A project cannot find cases again that came from the standard input; "
                         "put them into a file.");
    }
    ProjectDocument document = impl->loaded;
    impl->state.save(document);
    document.caseFile = {impl->path, FileFingerprint::of(impl->path), impl->separator,
                         impl->hasDecimalComma};
    return document;
}

void CaseSession::sweep(std::size_t input, const std::string& text)
{
    const VarPtr variable = impl->inputs.at(input);
    const std::string name = variable.lock()->name();
    valuesOf(text, name);

    const UndoStack::SuspendUndoRecording unrecorded;
    Collection distributions = impl->state.userDistributions->get();
    distributions.setUserDistString(name, text);
    distributions.setMode(name, Collection::UserDefined);
    impl->state.userDistributions->set(distributions);
    // The typed values take the place of these; any number of them says that it is swept.
    impl->state.interpolation->sweep(variable, 2);
}

void CaseSession::sweepEvenly(std::size_t input, std::size_t count)
{
    const VarPtr variable = impl->inputs.at(input);
    if (count < 2 || count > mostSweptValues) {
        throw UsageError("\"" + variable.lock()->name() + "\" can be swept evenly over 2 to " +
                         std::to_string(mostSweptValues) + " values, not " + std::to_string(count) +
                         '.');
    }
    const UndoStack::SuspendUndoRecording unrecorded;
    const std::string name = variable.lock()->name();
    Collection distributions = impl->state.userDistributions->get();
    if (distributions.getMode(name) == Collection::UserDefined) {
        distributions.setMode(name, Collection::Auto);
        impl->state.userDistributions->set(distributions);
    }
    impl->state.interpolation->sweep(variable, count);
}

void CaseSession::stayAt(std::size_t input, const std::string& text)
{
    const VarPtr variable = impl->inputs.at(input);
    const std::string name = variable.lock()->name();
    if (valuesOf(text, name).size() != 1) {
        throw DistributionTextError("The text \"" + text + "\" for \"" + name +
                                    "\" has several values where one is wanted.");
    }

    const UndoStack::SuspendUndoRecording unrecorded;
    Collection point = impl->state.manager->evaluationPoint()->get();
    point.setUserDistString(name, text);
    impl->state.manager->evaluationPoint()->set(point);
    impl->state.interpolation->stayAtEvaluationPoint(variable);
}

std::vector<std::size_t> CaseSession::sweptInputs() const
{
    const auto& sweeps = impl->state.interpolation->sweeps();
    std::vector<std::size_t> positions;
    for (std::size_t i = 0; i < impl->inputs.size(); ++i) {
        if (sweeps.count(impl->inputs[i]) > 0) {
            positions.push_back(i);
        }
    }
    return positions;
}

SurrogateModelInterface& CaseSession::fit()
{
    if (impl->fitted != nullptr) {
        return *impl->fitted;
    }
    const Stopwatch watch;
    const TermSelectionScope scope = impl->termScope();
    try {
        SurrogateModelInterface& model = impl->state.manager->model(impl->dependents());
        model.activateDependentVariables(impl->offsets());
        impl->fitted = &model;
    } catch (const SurrogateModelInterface::Error& error) {
        if (impl->counts().valid > 0) {
            throw;
        }
        throw SurrogateModelInterface::Error(
            std::string(error.what()) + " Cases: " + std::to_string(impl->counts().read) +
            " read, " + std::to_string(impl->counts().excluded) + " excluded, " +
            std::to_string(impl->counts().invalid) + " with missing or infinite values.");
    }
    impl->times.fit = watch.seconds();
    return *impl->fitted;
}

std::vector<OutputFit> CaseSession::fits()
{
    const SurrogateModelInterface& model = fit();
    const auto* metrics = dynamic_cast<const PredictiveModel*>(&model);
    const auto* kriging = dynamic_cast<const KrigingSurrogateModel*>(&model);

    const std::vector<std::string> inputNames = namesOf(impl->inputs);
    const std::vector<std::size_t> cases =
        kriging == nullptr ? std::vector<std::size_t>() : validCases();
    std::vector<OutputFit> results;
    results.reserve(impl->state.outputs.size());
    for (const VarPtr& output : impl->state.outputs) {
        const int offset = impl->offsetOf(output);
        OutputFit result;
        result.name = output.lock()->name();
        if (metrics != nullptr) {
            result.metrics = metrics->fitMetrics(offset);
            for (const std::string& warning : metrics->fitWarnings(offset)) {
                result.warnings.push_back(withInputNames(warning, inputNames));
            }
        }
        if (kriging != nullptr) {
            result.kriging = kriging->krigingReport(offset);
            for (KrigingReport::LeftOutCase& worst : result.kriging->worstCases) {
                worst.row = cases.at(worst.row);
            }
        }
        results.push_back(std::move(result));
    }
    return results;
}

std::vector<ResponseSurfaceStatistics> CaseSession::statistics()
{
    const auto* const model = dynamic_cast<const SurrogateResponseSurfaceModel*>(&fit());
    std::vector<ResponseSurfaceStatistics> results;
    if (model == nullptr) {
        return results;
    }
    const std::vector<std::size_t> cases = validCases();
    for (const VarPtr& output : impl->state.outputs) {
        results.push_back(model->responseSurfaceStatistics(impl->offsetOf(output)));
        for (CaseLeverage& one : results.back().largestLeverages) {
            one.row = cases.at(one.row);
        }
    }
    return results;
}

vtkSmartPointer<vtkTable> CaseSession::evaluate()
{
    fit();
    const auto filter =
        SurrogateModelQueryToTable::New(impl->state.manager, impl->state.interpolation);
    const auto errorTaker = vtkSmartPointer<ErrorTaker>::Take(ErrorTaker::New());
    filter->AddObserver("ErrorEvent", errorTaker);

    const TermSelectionScope scope = impl->termScope();
    const Stopwatch watch;
    filter->Update();
    impl->times.evaluate = watch.seconds();
    const std::string error = filter->getLastError();
    if (!error.empty()) {
        throw SurrogateModelInterface::Error(error);
    }

    // The filter has the outputs in the order of their creation.
    const auto result = vtkSmartPointer<vtkTable>::New();
    for (const auto* variables : {&impl->inputs, &impl->state.outputs}) {
        for (const VarPtr& variable : *variables) {
            result->AddColumn(
                filter->GetOutput()->GetColumnByName(variable.lock()->name().c_str()));
        }
    }
    impl->lookOutside(impl->pointsOf(*result), static_cast<std::size_t>(result->GetNumberOfRows()));
    return result;
}

std::vector<std::vector<double>> CaseSession::predict(const std::vector<const double*>& points,
                                                      std::size_t count)
{
    const SurrogateModelInterface& model = fit();
    const Stopwatch watch;
    const std::vector<double*> inputs = readOnly(points);
    std::vector<std::vector<double>> results(impl->state.outputs.size(),
                                             std::vector<double>(count));
    std::map<int, double*> byOffset;
    for (std::size_t i = 0; i < results.size(); ++i) {
        byOffset[impl->offsetOf(impl->state.outputs[i])] = results[i].data();
    }
    std::vector<double*> outputs;
    outputs.reserve(byOffset.size());
    for (const auto& [offset, column] : byOffset) {
        outputs.push_back(column);
    }
    model.interpolateDependentValues(inputs, impl->offsets(), outputs, count);
    impl->times.evaluate = watch.seconds();
    impl->lookOutside(inputs, count);
    return results;
}

std::vector<PredictionLimits> CaseSession::limits(const std::vector<const double*>& points,
                                                  std::size_t count, double percent)
{
    return impl->limits(fit(), readOnly(points), count, percent / 100.0);
}

std::vector<PredictionLimits> CaseSession::limits(vtkTable& table, double percent)
{
    return impl->limits(fit(), impl->pointsOf(table),
                        static_cast<std::size_t>(table.GetNumberOfRows()), percent / 100.0);
}

const std::vector<std::string>& CaseSession::limitFaults() const
{
    return impl->limitFaults;
}

const std::string& CaseSession::extrapolation() const
{
    return impl->extrapolation;
}

std::string CaseSession::equationText()
{
    fit();
    std::ostringstream text;
    const TermSelectionScope scope = impl->termScope();
    const std::set<VarPtr> dependents = impl->dependents();
    SurfaceCoefficientExporter(*impl->state.manager, dependents, text).exportData();
    return text.str();
}

std::vector<std::string> CaseSession::equations()
{
    const SurrogateModelInterface& model = fit();
    std::vector<std::string> texts;
    texts.reserve(impl->state.outputs.size());
    for (const VarPtr& output : impl->state.outputs) {
        texts.push_back(model.surfaceCoefficientInformation(impl->offsetOf(output)));
    }
    return texts;
}

const std::string& CaseSession::exportedReport() const
{
    return impl->exportedReport;
}

const SessionTimes& CaseSession::times() const
{
    return impl->times;
}
