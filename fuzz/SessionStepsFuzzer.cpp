// A session of one host application: project, pipeline, manager, undo stack and filter in the order
// that the bytes say, beside a plain model of what they hold.
#include "FuzzCheck.h"

#include <surrogatemodel/InterpolationVariablesAbstract.h>
#include <surrogatemodel/SurrogateModelFactory.h>
#include <surrogatemodel/SurrogateModelManager.h>
#include <surrogatemodel/SurrogateModelQueryToTable.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <mirel_analyzercommon/GuardedUndoStack.h>
#include <mirel_analyzercommon/UndoStack.h>
#include <mirel_datamanagement/Project.h>
#include <mirel_datapipeline/ProjectDataPipelineManager.h>
#include <property/Property.h>

#include <boost/make_shared.hpp>

#include <QString>

#include <vtkCallbackCommand.h>
#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkTable.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <map>
#include <memory>
#include <utility>

namespace {

using Manager = SurrogateModelManagerInterface;
using Distributions = SurrogateModelUserDistCollection;

/** Numbers from the input's bytes; zeros behind its end. */
class Bytes
{
public:
    Bytes(const std::uint8_t* begin, std::size_t size) : next(begin), end(begin + size) {}
    bool isEmpty() const { return next == end; }
    std::size_t below(std::size_t count) { return isEmpty() ? 0 : *next++ % count; }
    double value()
    {
        constexpr double odd[] = {NAN, INFINITY, 1e300, -0.0};
        const std::size_t number = below(64);
        return number < 4 ? odd[number] : (static_cast<double>(number) - 30) / 4;
    }

private:
    const std::uint8_t* next;
    const std::uint8_t* end;
};

/** The first listed input is swept over three points of its range. */
class FirstSwept : public InterpolationVariablesAbstract
{
public:
    FirstSwept(const boost::shared_ptr<const Manager>& manager,
               const veska::PropertyAbstract<Distributions>& distributions, VarPtr wanted)
        : InterpolationVariablesAbstract(manager, distributions),
          inputs(manager->independentVars()), wanted(std::move(wanted))
    {}
    std::set<VarPtr> dependentVariables() const override { return {wanted}; }

protected:
    boost::shared_ptr<InterpolationPointsInterface>
    interpolationPoints(VarPtr variable) const override
    {
        const std::vector<VarPtr> listed = inputs->get();
        if (listed.empty() || variable != listed.front()) {
            return nullptr;
        }
        return boost::make_shared<DistributedPoints>(variable.lock()->range(), 3);
    }

private:
    boost::shared_ptr<veska::PropertyAbstract<std::vector<VarPtr>>> inputs;
    VarPtr wanted;
};

struct PlainVariable
{
    VarPtr handle;
    std::string name;
    Variable::Nature nature = Variable::Unassigned;
    std::map<unsigned long, double> cells; ///< by record; none: missing
};

struct Settings
{
    std::vector<VarPtr> inputs;
    Manager::ModelType type = Manager::ResponseSurface;
    std::map<std::string, std::string> typed; ///< evaluation points that were typed, by name

    bool operator==(const Settings& other) const
    {
        return inputs == other.inputs && type == other.type && typed == other.typed;
    }
};

/** The product and the plain model of it, changed together. */
class Session
{
public:
    Session()
    {
        Project::setProject(project);
        project->connectSignalChanged([this] { hasChanged = true; });
        stack.clear();
        wanted = addVariable("y", Variable::Dependent);
        const VarPtr x = addVariable("x", Variable::Independent);
        for (int record = 0; record < 5; ++record) {
            addRecord();
            setCell(record, 0, record * record);
            setCell(record, 1, record);
        }
        open();
        chooseInputs({x});
    }

    ~Session()
    {
        macro.reset();
        filter = nullptr;
        manager.reset();
        stack.clear();
    }

    void step(Bytes& bytes);
    void check() const;

private:
    VarPtr addVariable(const std::string& name, Variable::Nature nature)
    {
        const VarPtr handle = project->addNumericVariable(name, nature);
        variables.push_back({handle, name, nature, {}});
        dataChanged();
        return handle;
    }
    void addRecord()
    {
        records.push_back(project->addRecord());
        dataChanged();
    }
    void setCell(std::size_t record, std::size_t variable, double value)
    {
        project->setValue(records[record], variables[variable].handle, value);
        variables[variable].cells[records[record].id()] = value;
        dataChanged();
    }

    /** The manager takes variables out of the list that are no inputs any more. */
    void dataChanged()
    {
        if (!std::exchange(hasChanged, false) || !manager) {
            return;
        }
        Settings pruned = settings;
        pruned.inputs.erase(std::remove_if(pruned.inputs.begin(), pruned.inputs.end(),
                                           [this](const VarPtr& input) {
                                               const PlainVariable* const known = find(input);
                                               return known == nullptr ||
                                                      known->nature != Variable::Independent;
                                           }),
                            pruned.inputs.end());
        record(pruned);
    }
    void chooseInputs(const std::vector<VarPtr>& inputs)
    {
        manager->independentVars()->set(inputs);
        Settings changed = settings;
        changed.inputs = inputs;
        record(changed);
    }
    void typePoint(const std::string& name, const std::string& text)
    {
        const Distributions before = manager->evaluationPoint()->get();
        Distributions point = before;
        point.setUserDistString(name, text);
        manager->evaluationPoint()->set(point);
        if (point == before) {
            settings.typed[name] = text;
            return;
        }
        Settings changed = settings;
        changed.typed[name] = text;
        record(changed, true);
    }

    /** One undo step, or a part of the open one. */
    void record(const Settings& changed, bool isNew = false)
    {
        if (changed == settings && !isNew) {
            return;
        }
        settings = changed;
        if (macro && hasStep) {
            history.back() = settings;
            return;
        }
        hasStep = macro != nullptr;
        history.resize(position + 1);
        history.push_back(settings);
        ++position;
    }

    const PlainVariable* find(const VarPtr& handle) const
    {
        const auto found = std::find_if(variables.begin(), variables.end(),
                                        [&](const auto& known) { return known.handle == handle; });
        return found == variables.end() ? nullptr : &*found;
    }

    void open()
    {
        const UndoStack::SuspendUndoRecording unrecorded;
        manager = boost::make_shared<SurrogateModelManager>(pipeline);
        filter = SurrogateModelQueryToTable::New(
            manager, boost::make_shared<FirstSwept>(manager, distributions, wanted));
        filter->AddObserver("ErrorEvent", vtkNew<vtkCallbackCommand>());
        settings = Settings();
        history = {settings};
        position = 0;
        hasStep = false;
    }
    void evaluate();
    std::vector<std::vector<double>> validCases() const;

    boost::shared_ptr<Project> project = boost::make_shared<Project>();
    boost::shared_ptr<ProjectDataPipelineManager> pipeline =
        boost::make_shared<ProjectDataPipelineManager>(project);
    veska::Property<Distributions> distributions;
    GuardedUndoStack& stack = UndoStack().stack();
    boost::shared_ptr<SurrogateModelManager> manager;
    vtkSmartPointer<SurrogateModelQueryToTable> filter;
    std::unique_ptr<UndoStack::Macro> macro;
    VarPtr wanted;

    std::vector<PlainVariable> variables; ///< in project order
    std::vector<PlainVariable> removed;
    std::vector<RecordPtr> records;
    std::set<RecordPtr> excluded;
    Settings settings;
    std::vector<Settings> history;
    std::size_t position = 0;
    bool hasChanged = false; ///< whether the project has said so since dataChanged()
    bool hasStep = false;    ///< whether the open macro has recorded something
};

void Session::step(Bytes& bytes)
{
    static const std::string names[] = {"x", "y", "b", "c", "d e", "\xc3\xa4"};
    static const std::string texts[] = {"0", "1.5", "1 - 2 : 3", "", "2 - 1 : 2", "x"};
    const auto isFree = [this](const std::string& name) {
        return std::none_of(variables.begin(), variables.end(),
                            [&](const PlainVariable& known) { return known.name == name; });
    };
    const std::string& name = names[bytes.below(6)];
    const std::size_t variable = variables.empty() ? 0 : bytes.below(variables.size());
    const std::size_t row = records.empty() ? 0 : bytes.below(records.size());
    const auto nature = static_cast<Variable::Nature>(bytes.below(3));
    switch (bytes.below(18)) {
    case 0:
        if (isFree(name) && variables.size() < 6) {
            addVariable(name, nature);
        }
        break;
    case 1:
        if (!variables.empty()) {
            project->removeVariable(variables[variable].handle);
            removed.push_back(variables[variable]);
            variables.erase(variables.begin() + static_cast<std::ptrdiff_t>(variable));
            dataChanged();
        }
        break;
    case 2:
        if (!removed.empty() && isFree(removed.back().name)) {
            project->restoreVariable(removed.back().handle, variable);
            variables.insert(variables.begin() + static_cast<std::ptrdiff_t>(variable),
                             removed.back());
            removed.pop_back();
            dataChanged();
        }
        break;
    case 3:
        if (!variables.empty() && isFree(name)) {
            project->renameVariable(variables[variable].handle, name);
            variables[variable].name = name;
            dataChanged();
        }
        break;
    case 4:
        if (!variables.empty()) {
            variables[variable].nature = nature;
            project->setNature(variables[variable].handle, nature);
            dataChanged();
        }
        break;
    case 5:
    case 6:
        if (!variables.empty() && !records.empty()) {
            setCell(row, variable, bytes.value());
        }
        break;
    case 7:
        if (!records.empty()) {
            const bool isIncluded = excluded.erase(records[row]) > 0;
            if (!isIncluded) {
                excluded.insert(records[row]);
            }
            project->setIncluded(records[row], isIncluded);
            dataChanged();
        }
        break;
    case 8:
        if (records.size() < 9) {
            addRecord();
        }
        break;
    case 9:
        if (!records.empty()) {
            project->removeRecord(records[row]);
            records.erase(records.begin() + static_cast<std::ptrdiff_t>(row));
            dataChanged();
        }
        break;
    case 10: {
        std::vector<VarPtr> inputs;
        for (const PlainVariable& known : variables) {
            if (known.nature == Variable::Independent && bytes.below(2) == 1) {
                inputs.push_back(known.handle);
            }
        }
        chooseInputs(inputs);
        break;
    }
    case 11: {
        Settings changed = settings;
        changed.type = static_cast<Manager::ModelType>(row % 2);
        manager->type()->set(changed.type);
        record(changed);
        break;
    }
    case 12:
        typePoint(name, texts[row % 6]);
        break;
    case 13:
        if (!macro) {
            stack.undo();
            position -= position > 0 ? 1 : 0;
            settings = history[position];
        }
        break;
    case 14:
        if (!macro) {
            stack.redo();
            position += position + 1 < history.size() ? 1 : 0;
            settings = history[position];
        }
        break;
    case 15:
        if (macro) {
            macro.reset();
        } else {
            macro = std::make_unique<UndoStack::Macro>(QStringLiteral("Step"));
        }
        hasStep = false;
        break;
    case 16:
        // The filter may outlive the manager's owner, and commands of the former manager its end.
        if (!macro) {
            manager.reset();
            if (row % 2 == 0) {
                filter = nullptr;
            } else if (filter) {
                filter->Update();
            }
            if (row % 3 == 0) {
                stack.undo();
            }
            open();
            stack.clear();
        }
        break;
    default:
        evaluate();
    }
}

/** The valid cases as columns: inputs, then dependents. */
std::vector<std::vector<double>> Session::validCases() const
{
    std::vector<const PlainVariable*> columns;
    std::size_t checked = 0;
    for (const VarPtr& input : settings.inputs) {
        columns.push_back(find(input));
    }
    checked = columns.size();
    for (const PlainVariable& known : variables) {
        if (known.nature == Variable::Dependent) {
            columns.push_back(&known);
        }
    }
    std::vector<std::vector<double>> cases(columns.size());
    for (const RecordPtr& record : records) {
        std::vector<double> cells;
        bool isValid = excluded.count(record) == 0;
        for (std::size_t column = 0; column < columns.size(); ++column) {
            const auto cell = columns[column]->cells.find(record.id());
            cells.push_back(cell == columns[column]->cells.end() ? NAN : cell->second);
            const bool counts = column < checked || columns[column]->handle == wanted;
            isValid = isValid && (!counts || std::isfinite(cells.back()));
        }
        for (std::size_t column = 0; isValid && column < columns.size(); ++column) {
            cases[column].push_back(cells[column]);
        }
    }
    return cases;
}

/** What the filter delivers, against a model made here of the cases above. */
void Session::evaluate()
{
    // Undo may have put variables back into the list that are no inputs now, until the data change.
    const bool isPlain =
        find(wanted) != nullptr && find(wanted)->nature == Variable::Dependent &&
        std::all_of(settings.inputs.begin(), settings.inputs.end(), [this](const VarPtr& input) {
            return find(input) != nullptr && find(input)->nature == Variable::Independent;
        });
    filter->Update();
    vtkTable* const table = filter->GetOutput();
    const std::size_t inputCount = settings.inputs.size();
    if (!isPlain || inputCount == 0) {
        return;
    }
    std::vector<std::vector<double>> cases = validCases();
    std::vector<double*> columns;
    for (std::vector<double>& column : cases) {
        columns.push_back(column.data());
    }
    const auto middle = columns.begin() + static_cast<std::ptrdiff_t>(inputCount);
    const int count = static_cast<int>(cases[0].size());
    int offset = 0;
    for (const PlainVariable& known : variables) {
        if (known.handle == wanted) {
            break;
        }
        offset += known.nature == Variable::Dependent ? 1 : 0;
    }
    try {
        if (count == 0) {
            throw SurrogateModelInterface::Error("no cases");
        }
        const auto model = SurrogateModelFactory().makeModel(
            settings.type, {columns.begin(), middle}, {middle, columns.end()}, count);
        model->activateDependentVariables({offset});
        FUZZ_CHECK(filter->getLastError().empty());
        FUZZ_CHECK(table->GetNumberOfColumns() == static_cast<vtkIdType>(inputCount + 1));

        const auto values = [table](std::size_t column) {
            auto* const array =
                vtkDoubleArray::SafeDownCast(table->GetColumn(static_cast<vtkIdType>(column)));
            FUZZ_CHECK(array != nullptr);
            return array->GetPointer(0);
        };
        std::vector<double*> points;
        for (std::size_t input = 0; input < inputCount; ++input) {
            points.push_back(values(input));
            FUZZ_CHECK(table->GetColumnName(static_cast<vtkIdType>(input)) ==
                       find(settings.inputs[input])->name);
        }
        const auto rows = static_cast<std::size_t>(table->GetNumberOfRows());
        std::vector<double> expected(rows);
        std::vector<double*> outputs = {expected.data()};
        model->interpolateDependentValues(points, {offset}, outputs, rows);
        FUZZ_CHECK(rows == 0 ||
                   std::memcmp(expected.data(), values(inputCount), rows * sizeof(double)) == 0);
    } catch (const SurrogateModelInterface::Error&) {
        FUZZ_CHECK(!filter->getLastError().empty());
        FUZZ_CHECK(table->GetNumberOfRows() == 0);
    }
}

void Session::check() const
{
    const std::vector<VarPtr> order = project->variables();
    FUZZ_CHECK(order.size() == variables.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        const auto locked = order[i].lock();
        FUZZ_CHECK(order[i] == variables[i].handle);
        FUZZ_CHECK(locked->name() == variables[i].name);
        FUZZ_CHECK(locked->nature() == variables[i].nature);
    }
    FUZZ_CHECK(project->records() == records);
    FUZZ_CHECK(manager->independentVars()->get() == settings.inputs);
    FUZZ_CHECK(manager->type()->get() == settings.type);
    const Distributions point = manager->evaluationPoint()->get();
    for (const auto& [name, text] : settings.typed) {
        FUZZ_CHECK(point.getUserDistString(name) == text);
    }
    if (!macro) {
        FUZZ_CHECK(stack.count() == static_cast<int>(history.size()) - 1);
        FUZZ_CHECK(stack.index() == static_cast<int>(position));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    Session session;
    for (Bytes rest(bytes, size); !rest.isEmpty();) {
        session.step(rest);
        session.check();
    }
    return 0;
}
