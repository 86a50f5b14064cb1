#include "session/model/SessionState.h"

#include "session/cases/CaseCounts.h"
#include "session/cases/VariableNames.h"
#include "session/project/ProjectDocument.h"
#include "session/text/SessionErrors.h"

#include <surrogatemodel/SurrogateModelManager.h>
#include <surrogatemodel/SurrogateModelManagerSerializer.h>
#include <surrogatemodel/SurrogateModelUserDist.h>
#include <surrogatemodel/SurrogateModelUserDistCollectionSerializer.h>

#include <property/Property.h>

#include <mirel_datamanagement/Project.h>
#include <mirel_datapipeline/ProjectDataPipelineManager.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <set>
#include <string>

namespace {
using Collection = SurrogateModelUserDistCollection;

/** The project of a table, opened: the library asks for the open project, from the manager's
 *  construction on. */
boost::shared_ptr<Project> projectOf(CaseTable& table)
{
    auto project = boost::make_shared<Project>();
    {
        const Project::ChangeGroup oneChange(*project);
        for (CaseColumn& column : table.columns) {
            try {
                if (column.isNumeric) {
                    project->addNumericVariable(column.name, Variable::Unassigned,
                                                std::move(column.numbers));
                } else {
                    project->addTextVariable(column.name, Variable::Unassigned,
                                             std::move(column.texts));
                }
            } catch (const veska::ExceptionBase& refusal) {
                throw CaseDataError(table.path + ", line 1: " + refusal.what());
            }
        }
    }
    Project::setProject(project);
    return project;
}

[[noreturn]] void refuse(const std::string& sentence)
{
    throw ProjectDocumentError("The project does not fit its cases: " + sentence);
}
} // namespace

std::string excessOfValues(const SurrogateModelUserDist& distribution, const std::string& name)
{
    if (distribution.valueCount() <= ProjectDocument::maxTypedValues) {
        return "";
    }
    return "The text" + (name.empty() ? "" : " for \"" + name + '"') +
           " is too large: it asks for " + std::to_string(distribution.valueCount()) +
           " values, and at most " + std::to_string(ProjectDocument::maxTypedValues) +
           " can be typed. Ask for fewer values.";
}

SessionState::SessionState(CaseTable& table,
                           const boost::shared_ptr<SurrogateModelInterface>& model)
    : project(projectOf(table)), factory(boost::make_shared<SessionModelFactory>(model)),
      manager(boost::make_shared<SurrogateModelManager>(
          boost::make_shared<ProjectDataPipelineManager>(project), factory)),
      userDistributions(boost::make_shared<veska::Property<Collection>>()),
      interpolation(
          boost::make_shared<SweepInterpolationVariables>(manager, *userDistributions, project))
{
    // The manager keeps the factory: a shared pointer back would keep both forever.
    factory->setInputNames(
        [inputs = manager->independentVars()] { return namesOf(inputs->get()); });
    factory->setDesign([this] {
        return factory->designColumns()->get().design(
            *project, validCases(*project, manager->independentVars()->get(),
                                 interpolation->outputs(), project->excludedRows()));
    });
    designConnection = factory->designColumns()->connectSignalChanged(
        [this](const CaseDesignColumns&) { includeOthers(); });
}

/** The manager, which keeps the factory, may live on. */
SessionState::~SessionState()
{
    factory->setDesign(nullptr);
}

SessionSettings SessionState::settings() const
{
    SessionSettings settings;
    static_cast<ModelChoices&>(settings) = factory->choices();
    for (const VarPtr& handle : project->variables()) {
        const auto variable = handle.lock();
        settings.variables[handle] = {variable->nature(), variable->chosenRange()};
    }
    settings.excluded = excludedByUser;
    settings.type = manager->type()->get();
    settings.inputs = manager->independentVars()->get();
    settings.outputs = interpolation->outputs();
    settings.evaluationPoint = manager->evaluationPoint()->get();
    settings.userDistributions = userDistributions->get();
    settings.sweeps = interpolation->sweeps();
    return settings;
}

void SessionState::setSettings(const SessionSettings& settings)
{
    const Project::ChangeGroup oneChange(*project);
    for (const auto& [variable, values] : settings.variables) {
        project->setNature(variable, values.nature);
        if (values.range) {
            project->setRange(variable, *values.range);
        } else {
            project->resetRange(variable);
        }
    }
    exclude(settings.excluded);
    factory->choose(settings);
    manager->type()->set(settings.type);
    manager->independentVars()->set(settings.inputs);
    // After the list, which gives its new entries values of their own.
    manager->evaluationPoint()->set(settings.evaluationPoint);
    userDistributions->set(settings.userDistributions);
    interpolation->setSweeps(settings.sweeps);
    interpolation->setOutputs(settings.outputs);
}

void SessionState::chooseRoles(const CaseRoles& roles)
{
    const Project::ChangeGroup oneChange(*project);
    const std::vector<VarPtr> variables = project->variables();
    std::vector<Variable::Nature> natures(variables.size(), Variable::Unassigned);
    std::vector<VarPtr> inputs;
    std::vector<VarPtr> outputs;
    for (const std::size_t position : roles.inputs) {
        natures[position] = Variable::Independent;
        inputs.push_back(variables[position]);
    }
    for (const std::size_t position : roles.outputs) {
        natures[position] = Variable::Dependent;
        outputs.push_back(variables[position]);
    }
    for (std::size_t i = 0; i < variables.size(); ++i) {
        project->setNature(variables[i], natures[i]);
    }
    manager->independentVars()->set(inputs);
    interpolation->setOutputs(outputs);
}

void SessionState::exclude(const std::vector<std::size_t>& excluded)
{
    excludedByUser = excluded;
    includeOthers();
}

void SessionState::includeOthers()
{
    std::set<std::size_t> excluded(excludedByUser.begin(), excludedByUser.end());
    for (const auto& [name, records] : factory->designColumns()->get().leftOut(*project)) {
        excluded.insert(records.begin(), records.end());
    }
    const Project::ChangeGroup oneChange(*project);
    std::vector<std::size_t> included;
    const std::vector<std::size_t> before = project->excludedRows();
    std::set_difference(before.begin(), before.end(), excluded.begin(), excluded.end(),
                        std::back_inserter(included));
    project->setRowsIncluded(included, true);
    project->setRowsIncluded({excluded.begin(), excluded.end()}, false);
}

void SessionState::load(const ProjectDocument& document)
{
    check(document);
    const SessionSettings before = settings();
    SessionSettings loaded = before;
    for (auto& [variable, values] : loaded.variables) {
        values = {};
    }
    for (const ProjectDocument::VariableEntry& entry : document.variables) {
        loaded.variables[project->variable(entry.name)] = {entry.role, entry.range};
    }
    loaded.excluded = document.excluded;
    loaded.outputs.clear();
    for (const std::string& name : document.outputs) {
        loaded.outputs.push_back(project->variable(name));
    }
    loaded.sweeps.clear();
    for (const ProjectDocument::Sweep& sweep : document.sweeps) {
        loaded.sweeps[project->variable(sweep.name)] = {sweep.count, sweep.range};
    }
    static_cast<ModelChoices&>(loaded) = document;
    loaded.inputs.clear();
    loaded.evaluationPoint = Collection();
    loaded.userDistributions = Collection();

    // The project reports one change, also when the settings are restored.
    const Project::ChangeGroup oneChange(*project);
    try {
        // The manager's settings refer to variables by their natures, which come first.
        setSettings(loaded);
        document.giveSettings(SurrogateModelManagerSerializer(manager),
                              SurrogateModelUserDistCollectionSerializer(userDistributions));
        checkValueCounts();
    } catch (...) {
        setSettings(before);
        throw;
    }
}

void SessionState::save(ProjectDocument& document) const
{
    document.variables.clear();
    for (const VarPtr& handle : project->variables()) {
        const auto variable = handle.lock();
        document.variables.push_back(
            {variable->name(), variable->nature(), variable->chosenRange()});
    }
    document.outputs = namesOf(interpolation->outputs());
    document.excluded = excludedByUser;
    document.sweeps.clear();
    for (const auto& [handle, sweep] : interpolation->sweeps()) {
        // A variable that is no input any more keeps its sweep, without effect.
        const auto variable = handle.lock();
        if (variable->nature() == Variable::Independent) {
            document.sweeps.push_back({variable->name(), sweep.count, sweep.range});
        }
    }
    static_cast<ModelChoices&>(document) = factory->choices();
    document.takeSettings(SurrogateModelManagerSerializer(manager),
                          SurrogateModelUserDistCollectionSerializer(userDistributions));
}

void SessionState::check(const ProjectDocument& document) const
{
    const auto present = [&](const std::string& name) {
        const VarPtr variable = project->variable(name);
        if (variable.isNull()) {
            refuse(VariableNames(namesOf(project->variables())).unknownMessage(name));
        }
        return variable.lock();
    };
    for (const ProjectDocument::VariableEntry& entry : document.variables) {
        if (!present(entry.name)->isNumeric() && entry.role != Variable::Unassigned) {
            refuse('"' + entry.name +
                   "\" is a column of texts, which can be neither an input nor an output.");
        }
    }
    for (const ProjectDocument::Sweep& sweep : document.sweeps) {
        present(sweep.name);
    }
    for (const std::string& output : document.outputs) {
        present(output);
    }
    const std::string fault = document.designColumns.fault(*project);
    if (!fault.empty()) {
        refuse(fault);
    }
    std::set<std::string> inputs;
    for (const std::string& name : document.modelInputs()) {
        if (!inputs.insert(name).second) {
            refuse("the input \"" + name + "\" is there twice.");
        }
    }
    if (!document.excluded.empty() && document.excluded.back() >= project->recordCount()) {
        refuse("There is no case " + std::to_string(document.excluded.back() + 1) +
               " to exclude: the cases are 1 to " + std::to_string(project->recordCount()) + '.');
    }
}

void SessionState::checkValueCounts() const
{
    for (const Collection& texts : {manager->evaluationPoint()->get(), userDistributions->get()}) {
        std::size_t total = 0;
        for (const std::string& name : texts.getVarNameSet()) {
            const auto distribution = texts.getUserDistributionPoints(name);
            const std::string excess = excessOfValues(*distribution, name);
            if (!excess.empty()) {
                throw ProjectDocumentError(excess);
            }
            total += distribution->valueCount();
            if (total > ProjectDocument::maxTypedValues) {
                throw ProjectDocumentError("The texts of all variables ask for more than " +
                                           std::to_string(ProjectDocument::maxTypedValues) +
                                           " values together. Ask for fewer values.");
            }
        }
    }
}
