#include "session/CaseSession.h"

#include "session/SessionErrors.h"
#include "session/SweepInterpolationVariables.h"
#include "session/VariableNames.h"

#include <surrogatemodel/SurfaceCoefficientExporter.h>
#include <surrogatemodel/SurrogateModelManager.h>
#include <surrogatemodel/SurrogateModelQueryToTable.h>
#include <surrogatemodel/SurrogateModelUserDist.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <property/Property.h>

#include <mirel_analyzercommon/UndoStack.h>
#include <mirel_datamanagement/Project.h>
#include <mirel_datapipeline/ProjectDataPipelineManager.h>
#include <mirel_fitting/SurrogateModelInterface.h>

#include <boost/make_shared.hpp>
#include <vtkCommand.h>
#include <vtkTable.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <chrono>
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

/** One per column. */
std::vector<Variable::Nature> naturesOf(const CaseTable& table, const CaseRoles& roles)
{
    std::vector<Variable::Nature> natures(table.columns.size(), Variable::Unassigned);
    for (const std::size_t input : roles.inputs) {
        natures[input] = Variable::Independent;
    }
    for (const std::size_t output : roles.outputs) {
        natures[output] = Variable::Dependent;
    }
    return natures;
}

/** The project of a table, whose columns are moved into it. */
boost::shared_ptr<Project> makeProject(CaseTable& table, const CaseRoles& roles,
                                       const std::vector<std::size_t>& excluded)
{
    const auto project = boost::make_shared<Project>();
    const Project::ChangeGroup oneChange(*project);
    const std::vector<Variable::Nature> natures = naturesOf(table, roles);
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        CaseColumn& column = table.columns[i];
        try {
            if (column.isNumeric) {
                project->addNumericVariable(column.name, natures[i], std::move(column.numbers));
            } else {
                project->addTextVariable(column.name, natures[i], std::move(column.texts));
            }
        } catch (const veska::ExceptionBase& refusal) {
            throw CaseDataError(table.path + ", line 1: " + refusal.what());
        }
    }
    if (!excluded.empty()) {
        const auto ids = project->sharedRecordIds();
        for (const std::size_t position : excluded) {
            project->setIncluded(project->record((*ids)[position]), false);
        }
    }
    return project;
}

std::vector<VarPtr> variablesAt(const Project& project, const std::vector<std::size_t>& positions)
{
    const std::vector<VarPtr> all = project.variables();
    std::vector<VarPtr> chosen;
    chosen.reserve(positions.size());
    for (const std::size_t position : positions) {
        chosen.push_back(all[position]);
    }
    return chosen;
}

/**
 * A sentence of the fitting library with the inputs' names, in quotes, where it has its symbols for
 * them: V1, V2, ... in the order of the inputs. Two symbols side by side are a product; names may
 * hold blanks, so it gets its sign.
 */
std::string withNames(const std::string& sentence, const std::vector<std::string>& inputs)
{
    const auto isWordCharacter = [](char character) {
        return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_';
    };
    std::string result;
    std::size_t productAt = std::string::npos; // where a symbol would be the second of a product
    for (std::size_t i = 0; i < sentence.size();) {
        const bool beginsWord = i == 0 || !isWordCharacter(sentence[i - 1]);
        std::size_t symbol = 0;
        std::size_t end = i + 1;
        if (beginsWord && sentence[i] == 'V') {
            const char* const last = sentence.data() + sentence.size();
            const auto read = std::from_chars(sentence.data() + i + 1, last, symbol);
            end = static_cast<std::size_t>(read.ptr - sentence.data());
        }
        const bool endsWord = end == sentence.size() || !isWordCharacter(sentence[end]);
        if (symbol > 0 && symbol <= inputs.size() && endsWord) {
            result += (i == productAt ? "* \"" : "\"") + inputs[symbol - 1] + '"';
            i = end;
            productAt = sentence.compare(end, 1, " ") == 0 ? end + 1 : std::string::npos;
        } else {
            result += sentence[i++];
        }
    }
    return result;
}

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
} // namespace

class CaseSession::Impl
{
public:
    Impl(CaseTable& table, const CaseRoles& roles, const std::vector<std::size_t>& excluded,
         Model type)
        : model(type), project(makeProject(table, roles, excluded)),
          inputs(variablesAt(*project, roles.inputs)),
          outputs(variablesAt(*project, roles.outputs)),
          counts(countCases(*project, inputs, outputs, excluded))
    {
        // The library asks for the open project, from the manager's construction on.
        Project::setProject(project);
        manager = boost::make_shared<SurrogateModelManager>(
            boost::make_shared<ProjectDataPipelineManager>(project));
        manager->type()->set(type == Kriging ? Manager::Kriging : Manager::ResponseSurface);
        manager->independentVars()->set(inputs);
        interpolation = boost::make_shared<SweepInterpolationVariables>(manager, userDistributions);
        interpolation->setDependentVariables(dependents());
    }

    std::set<VarPtr> dependents() const { return {outputs.begin(), outputs.end()}; }

    int offsetOf(const VarPtr& output) const
    {
        return static_cast<int>(manager->offsetForVariableName(output.lock()->name()));
    }

    std::set<int> offsets() const
    {
        std::set<int> all;
        for (const VarPtr& output : outputs) {
            all.insert(offsetOf(output));
        }
        return all;
    }

    Model model;
    boost::shared_ptr<Project> project;
    std::vector<VarPtr> inputs;
    std::vector<VarPtr> outputs;
    CaseCounts counts;
    veska::Property<Collection> userDistributions;
    boost::shared_ptr<SurrogateModelManager> manager;
    boost::shared_ptr<SweepInterpolationVariables> interpolation;
    SurrogateModelInterface* fitted = nullptr;
    SessionTimes times;
};

CaseSession::CaseSession(CaseTable table, const CaseRoles& roles,
                         const std::vector<std::size_t>& excluded, Model model)
{
    const UndoStack::SuspendUndoRecording unrecorded;
    impl = std::make_unique<Impl>(table, roles, excluded, model);
}

CaseSession::~CaseSession()
{
    if (Project::project() == impl->project) {
        Project::setProject(nullptr);
    }
}

const Project& CaseSession::project() const
{
    return *impl->project;
}

const SurrogateModelManagerInterface& CaseSession::manager() const
{
    return *impl->manager;
}

CaseSession::Model CaseSession::modelType() const
{
    return impl->model;
}

const std::vector<VarPtr>& CaseSession::inputs() const
{
    return impl->inputs;
}

const std::vector<VarPtr>& CaseSession::outputs() const
{
    return impl->outputs;
}

const CaseCounts& CaseSession::counts() const
{
    return impl->counts;
}

void CaseSession::sweep(std::size_t input, const std::string& text)
{
    const VarPtr variable = impl->inputs.at(input);
    const std::string name = variable.lock()->name();
    valuesOf(text, name);

    const UndoStack::SuspendUndoRecording unrecorded;
    Collection distributions = impl->userDistributions.get();
    distributions.setUserDistString(name, text);
    distributions.setMode(name, Collection::UserDefined);
    impl->userDistributions.set(distributions);
    // The typed values take the place of these; any number of them says that it is swept.
    impl->interpolation->sweep(variable, 2);
}

void CaseSession::sweepEvenly(std::size_t input, std::size_t count)
{
    const VarPtr variable = impl->inputs.at(input);
    if (count < 2 || count > mostSweptValues) {
        throw UsageError("\"" + variable.lock()->name() + "\" can be swept evenly over 2 to " +
                         std::to_string(mostSweptValues) + " values, not " + std::to_string(count) +
                         '.');
    }
    impl->interpolation->sweep(variable, count);
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
    Collection point = impl->manager->evaluationPoint()->get();
    point.setUserDistString(name, text);
    impl->manager->evaluationPoint()->set(point);
}

SurrogateModelInterface& CaseSession::fit()
{
    if (impl->fitted != nullptr) {
        return *impl->fitted;
    }
    const Stopwatch watch;
    try {
        SurrogateModelInterface& model = impl->manager->model(impl->dependents());
        model.activateDependentVariables(impl->offsets());
        impl->fitted = &model;
    } catch (const SurrogateModelInterface::Error& error) {
        if (impl->counts.valid > 0) {
            throw;
        }
        throw SurrogateModelInterface::Error(
            std::string(error.what()) + " Cases: " + std::to_string(impl->counts.read) + " read, " +
            std::to_string(impl->counts.excluded) + " excluded, " +
            std::to_string(impl->counts.invalid) + " with missing or infinite values.");
    }
    impl->times.fit = watch.seconds();
    return *impl->fitted;
}

std::vector<OutputFit> CaseSession::fits()
{
    const SurrogateModelInterface& model = fit();
    const auto* metrics = dynamic_cast<const FitMetricsInterface*>(&model);
    const auto* kriging = dynamic_cast<const KrigingReportInterface*>(&model);

    const std::vector<std::string> inputNames = namesOf(impl->inputs);
    std::vector<OutputFit> results;
    results.reserve(impl->outputs.size());
    for (const VarPtr& output : impl->outputs) {
        const int offset = impl->offsetOf(output);
        OutputFit result;
        result.name = output.lock()->name();
        if (metrics != nullptr) {
            result.metrics = metrics->fitMetrics(offset);
            for (const std::string& warning : metrics->fitWarnings(offset)) {
                result.warnings.push_back(withNames(warning, inputNames));
            }
        }
        if (kriging != nullptr) {
            result.kriging = kriging->krigingReport(offset);
        }
        results.push_back(std::move(result));
    }
    return results;
}

vtkSmartPointer<vtkTable> CaseSession::evaluate()
{
    fit();
    const auto filter = SurrogateModelQueryToTable::New(impl->manager, impl->interpolation);
    const auto errorTaker = vtkSmartPointer<ErrorTaker>::Take(ErrorTaker::New());
    filter->AddObserver("ErrorEvent", errorTaker);

    const Stopwatch watch;
    filter->Update();
    impl->times.evaluate = watch.seconds();
    const std::string error = filter->getLastError();
    if (!error.empty()) {
        throw SurrogateModelInterface::Error(error);
    }

    // The filter has the outputs in the order of their creation.
    const auto result = vtkSmartPointer<vtkTable>::New();
    for (const auto* variables : {&impl->inputs, &impl->outputs}) {
        for (const VarPtr& variable : *variables) {
            result->AddColumn(
                filter->GetOutput()->GetColumnByName(variable.lock()->name().c_str()));
        }
    }
    return result;
}

std::vector<std::vector<double>> CaseSession::predict(const std::vector<const double*>& points,
                                                      std::size_t count)
{
    const SurrogateModelInterface& model = fit();
    const Stopwatch watch;
    std::vector<double*> inputs;
    inputs.reserve(points.size());
    for (const double* column : points) {
        // The model only reads its inputs, though through pointers that are not const.
        inputs.push_back(const_cast<double*>(column));
    }

    std::vector<std::vector<double>> results(impl->outputs.size(), std::vector<double>(count));
    std::map<int, double*> byOffset;
    for (std::size_t i = 0; i < results.size(); ++i) {
        byOffset[impl->offsetOf(impl->outputs[i])] = results[i].data();
    }
    std::vector<double*> outputs;
    outputs.reserve(byOffset.size());
    for (const auto& [offset, column] : byOffset) {
        outputs.push_back(column);
    }
    model.interpolateDependentValues(inputs, impl->offsets(), outputs, count);
    impl->times.evaluate = watch.seconds();
    return results;
}

std::string CaseSession::equationText()
{
    fit();
    std::ostringstream text;
    const std::set<VarPtr> dependents = impl->dependents();
    SurfaceCoefficientExporter(*impl->manager, dependents, text).exportData();
    return text.str();
}

std::vector<std::string> CaseSession::equations()
{
    const SurrogateModelInterface& model = fit();
    std::vector<std::string> texts;
    texts.reserve(impl->outputs.size());
    for (const VarPtr& output : impl->outputs) {
        texts.push_back(model.surfaceCoefficientInformation(impl->offsetOf(output)));
    }
    return texts;
}

const SessionTimes& CaseSession::times() const
{
    return impl->times;
}
