// Setting a list of many variables, undoing and redoing it, with the listeners that an application
// has, beside a plain copy of what such a step holds. All of it is proportional to the list.
#include <surrogatemodel/InterpolationVariablesAbstract.h>
#include <surrogatemodel/SurrogateModelManager.h>
#include <surrogatemodel/SurrogateModelQueryToTable.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <mirel_analyzercommon/UndoStack.h>
#include <mirel_datamanagement/Project.h>
#include <mirel_datapipeline/ProjectDataPipelineManager.h>
#include <mirel_signals/SignalConnectionCollection.h>
#include <property/Property.h>

#include <QUndoStack>

#include <boost/make_shared.hpp>

#include <benchmark/benchmark.h>

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

/** Nothing is swept. */
class EvaluationPointOnly : public InterpolationVariablesAbstract
{
public:
    using InterpolationVariablesAbstract::InterpolationVariablesAbstract;

    std::set<VarPtr> dependentVariables() const override { return {}; }

protected:
    boost::shared_ptr<InterpolationPointsInterface> interpolationPoints(VarPtr) const override
    {
        return nullptr;
    }
};

/** A project of so many inputs, a manager, and a filter that listens to it. */
struct Study
{
    explicit Study(std::size_t count)
    {
        {
            const Project::ChangeGroup group(*project);
            for (std::size_t k = 0; k < count; ++k) {
                inputs.push_back(project->addNumericVariable("input " + std::to_string(k),
                                                             Variable::Independent, {0.5, 1.5}));
            }
        }
        Project::setProject(project);
        manager = boost::make_shared<SurrogateModelManager>(
            boost::make_shared<ProjectDataPipelineManager>(project));
        variables = boost::make_shared<EvaluationPointOnly>(manager, distributions);
        filter = SurrogateModelQueryToTable::New(manager, variables);
        UndoStack().stack().clear();
    }
    ~Study()
    {
        UndoStack().stack().clear();
        Project::setProject(nullptr);
    }

    boost::shared_ptr<Project> project = boost::make_shared<Project>();
    std::vector<VarPtr> inputs;
    veska::Property<SurrogateModelUserDistCollection> distributions;
    boost::shared_ptr<SurrogateModelManager> manager;
    boost::shared_ptr<EvaluationPointOnly> variables;
    vtkSmartPointer<SurrogateModelQueryToTable> filter;
};

void overVariables(benchmark::internal::Benchmark* measured)
{
    measured->ArgName("variables")->Arg(100)->Arg(1000)->Arg(10000);
    measured->Unit(benchmark::kMicrosecond);
}

/** With default evaluation points for all of them, taken back afterwards. */
void setFirstList(benchmark::State& state)
{
    for (auto _ : state) {
        state.PauseTiming();
        {
            const Study study(static_cast<std::size_t>(state.range(0)));
            state.ResumeTiming();
            study.manager->independentVars()->set(study.inputs);
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
    state.SetLabel("beside copyListAndPoints");
}
BENCHMARK(setFirstList)->Apply(overVariables);

void undoAndRedoList(benchmark::State& state)
{
    const Study study(static_cast<std::size_t>(state.range(0)));
    study.manager->independentVars()->set(study.inputs);
    QUndoStack& stack = UndoStack().stack();
    for (auto _ : state) {
        stack.undo();
        stack.redo();
    }
    state.SetLabel("beside copyListAndPoints");
}
BENCHMARK(undoAndRedoList)->Apply(overVariables);

/** A slider sets the evaluation point of one input. */
void setEvaluationPoint(benchmark::State& state)
{
    const Study study(static_cast<std::size_t>(state.range(0)));
    study.manager->independentVars()->set(study.inputs);
    std::size_t step = 0;
    for (auto _ : state) {
        SurrogateModelUserDistCollection point = study.manager->evaluationPoint()->get();
        point.setUserDistString("input 0", std::to_string(++step));
        study.manager->evaluationPoint()->set(point);
        UndoStack().stack().clear();
    }
    state.SetLabel("beside copyListAndPoints");
}
BENCHMARK(setEvaluationPoint)->Apply(overVariables);

/** The filter collects the inputs before it evaluates. */
void collectInputs(benchmark::State& state)
{
    const Study study(static_cast<std::size_t>(state.range(0)));
    study.manager->independentVars()->set(study.inputs);
    for (auto _ : state) {
        benchmark::DoNotOptimize(study.variables->inputIndependentVariables());
    }
    state.SetLabel("beside copyListAndPoints");
}
BENCHMARK(collectInputs)->Apply(overVariables);

void emitAndBlock(benchmark::State& state)
{
    boost::signals2::signal<void()> signal;
    SignalConnectionCollection connections;
    std::size_t calls = 0;
    for (std::int64_t k = 0; k < state.range(0); ++k) {
        connections.add(signal.connect([&calls] { ++calls; }));
    }
    for (auto _ : state) {
        signal();
        connections.block();
        signal();
        connections.unblock();
    }
    benchmark::DoNotOptimize(calls);
    state.SetLabel("beside copyListAndPoints");
}
BENCHMARK(emitAndBlock)->ArgName("listeners")->Arg(100)->Arg(1000)->Arg(10000);

/** The two values that a step keeps. */
void copyListAndPoints(benchmark::State& state)
{
    const Study study(static_cast<std::size_t>(state.range(0)));
    std::map<std::string, std::pair<int, std::string>> points;
    for (const VarPtr& input : study.inputs) {
        points[input.lock()->name()] = {1, "0.5"};
    }
    for (auto _ : state) {
        const std::vector<VarPtr> list = study.inputs;
        const std::map<std::string, std::pair<int, std::string>> copy = points;
        benchmark::DoNotOptimize(list.data());
        benchmark::DoNotOptimize(copy.size());
    }
}
BENCHMARK(copyListAndPoints)->Apply(overVariables);

} // namespace
