#include "session/model/Workspace.h"

#include "session/cases/ColumnFigures.h"
#include "session/cases/VariableNames.h"
#include "session/files/FileFingerprint.h"
#include "session/model/SessionState.h"
#include "session/project/ProjectDocument.h"
#include "session/text/DecimalText.h"
#include "session/text/SessionErrors.h"
#include "session/text/UnitText.h"

#include <surrogatemodel/SurrogateModelManager.h>
#include <surrogatemodel/SurrogateModelUserDist.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <mirel_analyzercommon/DeleteSignaler.h>
#include <mirel_analyzercommon/GenericUndoCommand.h>
#include <mirel_analyzercommon/UndoStack.h>
#include <mirel_datamanagement/Project.h>
#include <mirel_modelexport/ModelExport.h>
#include <mirel_signals/SignalConnectionCollection.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <optional>
#include <utility>

namespace {
using Collection = SurrogateModelUserDistCollection;

/** The values of a text; the message names the variable and, in one sentence, the fault. */
std::vector<double> valuesOf(const std::string& text, const std::string& name)
{
    const SurrogateModelUserDist distribution(text);
    if (!distribution.isValid()) {
        throw DistributionTextError("The text \"" + text + "\" for \"" + name +
                                    "\" cannot be read. " + distribution.refusal());
    }
    const std::string excess = excessOfValues(distribution, name);
    if (!excess.empty()) {
        throw DistributionTextError(excess);
    }
    std::vector<double> values;
    distribution.get(values);
    return values;
}

} // namespace

class Workspace::Impl
{
public:
    explicit Impl(CaseTable& table,
                  const boost::shared_ptr<SurrogateModelInterface>& model = nullptr)
        : state(table, model), source(std::move(table))
    {
        connections.add(state.project->connectSignalChanged([this] { forgetCases(); }));
        connections.add(state.manager->independentVars()->connectSignalChanged(
            [this](const std::vector<VarPtr>& variables) {
                inputs = variables;
                forgetCases();
            }));
        connections.add(state.interpolation->connectSignalInterpolationVariablesChanged(
            [this] { forgetCases(); }));
    }

    void restore(const SessionSettings& settings, const ProjectDocument& document)
    {
        state.setSettings(settings);
        loaded = document;
    }

    SessionState state;
    CaseTable source; ///< without the values, which the state takes
    std::vector<ColumnRole> reasonedRoles;
    std::vector<VarPtr> inputs;
    std::optional<CaseCounts> knownCounts;
    std::optional<std::vector<int>> knownOffsets;
    ProjectDocument loaded;
    nlohmann::ordered_json exportedReport;
    DeleteSignaler deleted; ///< makes the undo steps that act on this object inert
    SignalConnectionCollection connections;

private:
    void forgetCases()
    {
        knownCounts.reset();
        knownOffsets.reset();
    }
};

Workspace::Workspace(CaseTable table)
{
    const UndoStack::SuspendUndoRecording unrecorded;
    impl = std::make_unique<Impl>(table);
}

Workspace::Workspace(CaseTable table, const CaseRoles& roles,
                     const std::vector<std::size_t>& excluded, ModelType type)
    : Workspace(std::move(table))
{
    const UndoStack::SuspendUndoRecording unrecorded;
    chooseRoles(roles);
    exclude(excluded);
    chooseModel(type);
}

Workspace::Workspace(const ExportedModel& model)
{
    const UndoStack::SuspendUndoRecording unrecorded;
    CaseTable table; // a column without cases for each variable
    CaseRoles roles;
    const auto addColumn = [&table](const std::string& name, std::vector<std::size_t>& role) {
        role.push_back(table.columns.size());
        table.columns.emplace_back().name = name;
    };
    for (const ExportedModel::Input& input : model.inputs) {
        addColumn(input.name, roles.inputs);
    }
    for (const ExportedModel::Output& output : model.outputs) {
        addColumn(output.name, roles.outputs);
    }
    impl = std::make_unique<Impl>(table, model.predictor());
    impl->exportedReport = model.report;
    const std::vector<VarPtr> variables = impl->state.project->variables();
    for (std::size_t k = 0; k < model.inputs.size(); ++k) {
        impl->state.project->setRange(variables[k],
                                      {model.inputs[k].minimum, model.inputs[k].maximum});
    }
    // After the ranges, whose lower ends become the evaluation point.
    chooseRoles(roles);
    chooseModel(model.isKriging() ? Kriging : ResponseSurface);
    for (std::size_t k = 0; k < model.inputs.size(); ++k) {
        if (model.inputs[k].held) {
            stayAt(k, numberText(*model.inputs[k].held));
        }
    }
}

Workspace::~Workspace()
{
    if (Project::project() == impl->state.project) {
        Project::setProject(nullptr);
    }
}

const Project& Workspace::project() const
{
    return *impl->state.project;
}

boost::shared_ptr<const SurrogateModelManagerInterface> Workspace::manager() const
{
    return impl->state.manager;
}

boost::shared_ptr<const SweepInterpolationVariables> Workspace::interpolation() const
{
    return impl->state.interpolation;
}

const SessionModelFactory& Workspace::modelFactory() const
{
    return *impl->state.factory;
}

const std::vector<VarPtr>& Workspace::inputs() const
{
    return impl->inputs;
}

const std::vector<VarPtr>& Workspace::outputs() const
{
    return impl->state.interpolation->outputs();
}

const std::vector<int>& Workspace::outputOffsets() const
{
    if (!impl->knownOffsets) {
        std::vector<int> offsets;
        for (const VarPtr& output : outputs()) {
            offsets.push_back(static_cast<int>(
                impl->state.manager->offsetForVariableName(output.lock()->name())));
        }
        impl->knownOffsets = std::move(offsets);
    }
    return *impl->knownOffsets;
}

const CaseCounts& Workspace::counts() const
{
    if (!impl->knownCounts) {
        CaseCounts counts =
            countCases(project(), inputs(), outputs(), impl->state.project->excludedRows());
        counts.excluded = impl->state.excluded().size();
        counts.invalid = counts.read - counts.excluded - counts.valid;
        for (const auto& [name, records] : modelChoices().designColumns.leftOut(project())) {
            std::vector<std::size_t> included;
            std::set_difference(records.begin(), records.end(), impl->state.excluded().begin(),
                                impl->state.excluded().end(), std::back_inserter(included));
            counts.leftOutByDesign.emplace_back(name, included.size());
        }
        impl->knownCounts = std::move(counts);
    }
    return *impl->knownCounts;
}

const CaseTable& Workspace::source() const
{
    return impl->source;
}

std::string Workspace::unitOf(const std::string& name) const
{
    const CaseColumn* const column = impl->source.find(name);
    return column == nullptr ? std::string() : column->unit;
}

std::string Workspace::labelOf(const std::string& name) const
{
    return nameWithUnit(name, unitOf(name));
}

std::vector<ColumnRole> Workspace::columnRoles() const
{
    std::vector<ColumnRole> roles;
    for (const VarPtr& variable : project().variables()) {
        const Variable::Nature nature = variable.lock()->nature();
        ColumnRole role;
        role.role = nature == Variable::Independent ? ColumnRole::Input
                    : nature == Variable::Dependent ? ColumnRole::Output
                                                    : ColumnRole::None;
        if (roles.size() < impl->reasonedRoles.size() &&
            impl->reasonedRoles[roles.size()].role == role.role) {
            role.reason = impl->reasonedRoles[roles.size()].reason;
        }
        roles.push_back(role);
    }
    return roles;
}

ReasonedNames Workspace::reasonsAgainstInputs() const
{
    ReasonedNames reasoned;
    const std::vector<ColumnRole> roles = columnRoles();
    const std::vector<std::string> names = namesOf(project().variables());
    for (std::size_t i = 0; i < roles.size(); ++i) {
        if (roles[i].role == ColumnRole::None && !roles[i].reason.empty()) {
            reasoned.emplace_back(names[i], roles[i].reason);
        }
    }
    return reasoned;
}

std::vector<std::size_t> Workspace::validCases() const
{
    return ::validCases(project(), inputs(), outputs(), impl->state.project->excludedRows());
}

void Workspace::chooseRoles(const CaseRoles& roles)
{
    impl->state.chooseRoles(roles);
    impl->reasonedRoles = roles.columns;
}

void Workspace::exclude(const std::vector<std::size_t>& excluded)
{
    impl->state.exclude(excluded);
}

void Workspace::chooseModel(ModelType type)
{
    impl->state.manager->type()->set(type);
}

Workspace::ModelType Workspace::modelType() const
{
    return impl->state.manager->type()->get();
}

void Workspace::choose(const ModelChoices& choices)
{
    const std::string fault = choices.designColumns.fault(project());
    if (!fault.empty()) {
        throw UsageError(fault);
    }
    impl->state.factory->choose(choices);
}

ModelChoices Workspace::modelChoices() const
{
    return impl->state.factory->choices();
}

void Workspace::load(const ProjectDocument& document)
{
    const SessionSettings before = impl->state.settings();
    const ProjectDocument loadedBefore = impl->loaded;
    {
        const UndoStack::SuspendUndoRecording asOneStep;
        impl->state.load(document);
    }
    impl->loaded = document;
    impl->reasonedRoles.clear();
    const SessionSettings after = impl->state.settings();
    if (after == before && document == loadedBefore) {
        return;
    }
    Impl* const target = impl.get();
    UndoStack().push(new GenericUndoCommand(
        [target, after, document] { target->restore(after, document); },
        [target, before, loadedBefore] { target->restore(before, loadedBefore); }, &impl->deleted,
        "Load Project", -1));
}

ProjectDocument Workspace::document() const
{
    const CaseTable& source = impl->source;
    if (source.path == "-") {
        throw UsageError("A project cannot find cases again that came from the standard input; "
                         "put them into a file.");
    }
    ProjectDocument document = impl->loaded;
    impl->state.save(document);
    document.caseFile = {source.path, FileFingerprint::of(source.path), source.layout.separator,
                         source.layout.hasDecimalComma, source.choices};
    if (source.layout.thousandsSeparator != '\0') {
        document.caseFile.reading.thousandsSeparator = source.layout.thousandsSeparator;
    }
    return document;
}

void Workspace::sweep(std::size_t input, const std::string& text)
{
    const VarPtr variable = impl->inputs.at(input);
    const std::string name = variable.lock()->name();
    valuesOf(text, name);

    Collection distributions = impl->state.userDistributions->get();
    distributions.setUserDistString(name, text);
    distributions.setMode(name, Collection::UserDefined);
    impl->state.userDistributions->set(distributions);
    // The typed values take precedence; any count marks the input as swept.
    impl->state.interpolation->sweep(variable, 2);
}

void Workspace::sweepEvenly(std::size_t input, std::size_t count)
{
    const VarPtr variable = impl->inputs.at(input);
    const std::string name = variable.lock()->name();
    if (count < 2 || count > ProjectDocument::maxSweptValues) {
        throw UsageError("\"" + name + "\" can be swept evenly over 2 to " +
                         std::to_string(ProjectDocument::maxSweptValues) + " values, not " +
                         std::to_string(count) + '.');
    }
    Collection distributions = impl->state.userDistributions->get();
    if (distributions.getMode(name) == Collection::UserDefined) {
        distributions.setMode(name, Collection::Auto);
        impl->state.userDistributions->set(distributions);
    }
    impl->state.interpolation->sweep(variable, count);
}

void Workspace::stayAt(std::size_t input, const std::string& text)
{
    const VarPtr variable = impl->inputs.at(input);
    const std::string name = variable.lock()->name();
    if (valuesOf(text, name).size() != 1) {
        throw DistributionTextError("The text \"" + text + "\" for \"" + name +
                                    "\" has several values where one is wanted.");
    }
    Collection point = impl->state.manager->evaluationPoint()->get();
    point.setUserDistString(name, text);
    point.setMode(name, Collection::UserDefined);
    impl->state.manager->evaluationPoint()->set(point);
    impl->state.interpolation->stayAtEvaluationPoint(variable);
}

void Workspace::holdAtMedians(const std::vector<std::size_t>& inputs)
{
    const std::vector<std::size_t> cases = validCases();
    if (cases.empty()) {
        return;
    }
    Collection point = impl->state.manager->evaluationPoint()->get();
    for (const std::size_t input : inputs) {
        const VarPtr variable = impl->inputs.at(input);
        const std::string name = variable.lock()->name();
        point.setUserDistString(
            name, numberText(medianOf(valuesAt(project().numericValues(variable), cases))));
        // Auto marks a default; the text is used either way.
        point.setMode(name, Collection::Auto);
    }
    impl->state.manager->evaluationPoint()->set(point);
}

std::vector<std::pair<double, double>> Workspace::sweepRanges() const
{
    const std::vector<std::size_t> cases = validCases();
    std::vector<std::pair<double, double>> ranges;
    for (const VarPtr& input : impl->inputs) {
        ranges.push_back(sweepRange(project(), input, cases));
    }
    return ranges;
}

std::vector<double> Workspace::heldValues() const
{
    const Collection point = impl->state.manager->evaluationPoint()->get();
    std::vector<double> held;
    for (const std::string& name : namesOf(impl->inputs)) {
        std::vector<double> values;
        point.getUserDistributionPoints(name)->get(values);
        held.push_back(values.empty() ? std::nan("") : values.front());
    }
    return held;
}

std::vector<std::size_t> Workspace::sweptInputs() const
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

const nlohmann::ordered_json& Workspace::exportedReport() const
{
    return impl->exportedReport;
}
