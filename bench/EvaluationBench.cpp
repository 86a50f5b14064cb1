// Laying out a grid of values and running the filter that evaluates a model over it.
#include "TestFunctions.h"

#include <surrogatemodel/InterpolationVariablesAbstract.h>
#include <surrogatemodel/SurrogateModelInputTableBuilder.h>
#include <surrogatemodel/SurrogateModelManager.h>
#include <surrogatemodel/SurrogateModelQueryToTable.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <mirel_analyzercommon/UndoStack.h>
#include <mirel_datamanagement/Project.h>
#include <mirel_datapipeline/ProjectDataPipelineManager.h>
#include <mirel_fitting/SurrogateModelInterface.h>
#include <property/Property.h>

#include <vtkTable.h>

#include <boost/make_shared.hpp>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <string>

namespace {

const std::size_t inputCount = 3;

/** Every input evenly over [0, 1]; one output. */
class EvenGrid : public InterpolationVariablesAbstract
{
public:
    EvenGrid(boost::shared_ptr<const SurrogateModelManagerInterface> manager,
             const veska::PropertyAbstract<SurrogateModelUserDistCollection>& distributions,
             std::size_t valuesPerInput, VarPtr output)
        : InterpolationVariablesAbstract(manager, distributions), valuesPerInput(valuesPerInput),
          output(output)
    {}

    std::set<VarPtr> dependentVariables() const override { return {output}; }

protected:
    boost::shared_ptr<InterpolationPointsInterface> interpolationPoints(VarPtr) const override
    {
        return boost::make_shared<DistributedPoints>(std::make_pair(0.0, 1.0), valuesPerInput);
    }

private:
    std::size_t valuesPerInput;
    VarPtr output;
};

/** A project of 200 cases as the open one, with a manager over its inputs. */
struct Study
{
    explicit Study(std::size_t valuesPerInput)
    {
        std::vector<std::vector<double>> columns = uniformColumns(inputCount, 200);
        std::vector<double> results(200);
        for (std::size_t r = 0; r < results.size(); ++r) {
            results[r] = std::sin(3 * columns[0][r]) * columns[1][r] + columns[2][r];
        }
        for (std::size_t i = 0; i < inputCount; ++i) {
            inputs.push_back(project->addNumericVariable(
                "x" + std::to_string(i), Variable::Independent, std::move(columns[i])));
        }
        output = project->addNumericVariable("y", Variable::Dependent, std::move(results));
        Project::setProject(project);
        const UndoStack::SuspendUndoRecording suspension;
        manager = boost::make_shared<SurrogateModelManager>(
            boost::make_shared<ProjectDataPipelineManager>(project));
        manager->independentVars()->set(inputs);
        grid = boost::make_shared<EvenGrid>(manager, distributions, valuesPerInput, output);
    }
    ~Study() { Project::setProject(nullptr); }

    boost::shared_ptr<Project> project = boost::make_shared<Project>();
    std::vector<VarPtr> inputs;
    VarPtr output;
    veska::Property<SurrogateModelUserDistCollection> distributions;
    boost::shared_ptr<SurrogateModelManager> manager;
    boost::shared_ptr<EvenGrid> grid;
};

void fillGrid(benchmark::State& state)
{
    const Study study(static_cast<std::size_t>(state.range(0)));
    std::int64_t rows = 0;
    for (auto _ : state) {
        const SurrogateModelInputTableBuilder builder(*study.manager, *study.grid);
        rows = builder.suppliedIndependentVarValues()->GetNumberOfRows();
    }
    state.SetBytesProcessed(state.iterations() * rows * 8 *
                            static_cast<std::int64_t>(inputCount + 1));
}
BENCHMARK(fillGrid)
    ->ArgName("valuesPerInput")
    ->Arg(10)
    ->Arg(100)
    ->Arg(215) // 10 million rows
    ->Unit(benchmark::kMillisecond);

/** Another floor of the grid: memory of its size, fresh from the system, set to one byte. */
void setFreshMemory(benchmark::State& state)
{
    const std::int64_t rows = state.range(0) * state.range(0) * state.range(0);
    const auto bytes = static_cast<std::size_t>(rows) * (inputCount + 1) * sizeof(double);
    for (auto _ : state) {
        void* const memory = std::malloc(bytes);
        benchmark::DoNotOptimize(std::memset(memory, 1, bytes));
        std::free(memory);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}
BENCHMARK(setFreshMemory)->ArgName("valuesPerInput")->Arg(215)->Unit(benchmark::kMillisecond);

/** The floor: first fill of fresh columns of the same size. */
void fillFreshColumns(benchmark::State& state)
{
    const std::int64_t rows = state.range(0) * state.range(0) * state.range(0);
    for (auto _ : state) {
        for (std::size_t c = 0; c < inputCount + 1; ++c) {
            std::vector<double> column(static_cast<std::size_t>(rows), 0.5);
            benchmark::DoNotOptimize(column.data());
        }
    }
    state.SetBytesProcessed(state.iterations() * rows * 8 *
                            static_cast<std::int64_t>(inputCount + 1));
}
BENCHMARK(fillFreshColumns)->ArgName("valuesPerInput")->Arg(215)->Unit(benchmark::kMillisecond);

/** What the filter costs beside the model: the model writes one value. */
class IdleModel : public SurrogateModelInterface
{
public:
    void activateDependentVariables(const std::set<int>&) override {}
    void interpolateDependentValues(const std::vector<double*>&, const std::set<int>&,
                                    std::vector<double*>& outputs, std::size_t) const override
    {
        *outputs.front() = 1.0;
    }
    bool surfaceCoefficientInformationAvailable() const override { return false; }
    bool qualityMetricInformationAvailable() const override { return false; }
    std::string surfaceCoefficientInformation(int) const override { return {}; }
    std::string qualityMetricInformation(int) const override { return {}; }
};

class IdleManager : public SurrogateModelManager
{
public:
    using SurrogateModelManager::SurrogateModelManager;
    SurrogateModelInterface& model(const std::set<VarPtr>&) const override { return idle; }
    SurrogateModelInterface& model(const std::set<int>&) const override { return idle; }

private:
    mutable IdleModel idle;
};

void runFilterOverIdleModel(benchmark::State& state)
{
    const Study study(static_cast<std::size_t>(state.range(0)));
    const UndoStack::SuspendUndoRecording suspension;
    const auto manager = boost::make_shared<IdleManager>(
        boost::make_shared<ProjectDataPipelineManager>(study.project));
    manager->independentVars()->set(study.inputs);
    for (auto _ : state) {
        const auto grid = boost::make_shared<EvenGrid>(
            manager, study.distributions, static_cast<std::size_t>(state.range(0)), study.output);
        SurrogateModelQueryToTable::New(manager, grid)->Update();
    }
}
BENCHMARK(runFilterOverIdleModel)
    ->ArgName("valuesPerInput")
    ->Arg(100)
    ->Arg(215)
    ->Unit(benchmark::kMillisecond);

void runFilter(benchmark::State& state)
{
    const Study study(static_cast<std::size_t>(state.range(0)));
    const vtkSmartPointer<SurrogateModelQueryToTable> filter =
        SurrogateModelQueryToTable::New(study.manager, study.grid);
    filter->Update(); // fits the model
    for (auto _ : state) {
        filter->Modified();
        filter->Update();
    }
}
BENCHMARK(runFilter)->ArgName("valuesPerInput")->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond);

void fitThroughManager(benchmark::State& state)
{
    const Study study(2);
    for (auto _ : state) {
        state.PauseTiming();
        const UndoStack::SuspendUndoRecording suspension;
        study.manager->independentVars()->set({});
        study.manager->independentVars()->set(study.inputs);
        state.ResumeTiming();
        benchmark::DoNotOptimize(&study.manager->model(std::set<int>{0}));
    }
}
BENCHMARK(fitThroughManager)->Unit(benchmark::kMicrosecond);

} // namespace
