// Laying out a grid of values, and running the filter that evaluates a model over it.
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

#include <vtkAbstractArray.h>
#include <vtkTable.h>

#include <boost/make_shared.hpp>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <set>
#include <string>

namespace {

/** The first inputs evenly over [0, 1], the others at the evaluation point. */
class EvenGrid : public InterpolationVariablesAbstract
{
public:
    EvenGrid(boost::shared_ptr<const SurrogateModelManagerInterface> manager,
             const veska::PropertyAbstract<SurrogateModelUserDistCollection>& distributions,
             std::set<VarPtr> outputs)
        : InterpolationVariablesAbstract(manager, distributions), outputs(std::move(outputs))
    {}

    void sweep(std::set<VarPtr> inputs, std::size_t valuesPerInput)
    {
        swept = std::move(inputs);
        count = valuesPerInput;
    }

    std::set<VarPtr> dependentVariables() const override { return outputs; }

protected:
    boost::shared_ptr<InterpolationPointsInterface>
    interpolationPoints(VarPtr variable) const override
    {
        if (swept.count(variable) == 0) {
            return nullptr;
        }
        return boost::make_shared<DistributedPoints>(std::make_pair(0.0, 1.0), count);
    }

private:
    std::set<VarPtr> outputs;
    std::set<VarPtr> swept;
    std::size_t count = 0;
};

/** Writes one value, to measure the filter without a model. */
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

/** A project of smooth outputs as the open one, with a manager over its inputs. */
template <class Manager>
struct Study
{
    Study(std::size_t inputCount, std::size_t cases, std::size_t outputCount)
    {
        std::vector<std::vector<double>> columns = uniformColumns(inputCount, cases);
        std::set<VarPtr> outputs;
        for (std::size_t k = 0; k < outputCount; ++k) {
            std::vector<double> output(cases);
            for (std::size_t r = 0; r < cases; ++r) {
                double sum = static_cast<double>(k);
                for (std::size_t i = 0; i < inputCount; ++i) {
                    sum += columns[i][r] / static_cast<double>(i + 1);
                }
                output[r] = std::sin(3.0 * sum) + columns.front()[r] * columns.back()[r];
            }
            outputs.insert(project->addNumericVariable("y" + std::to_string(k), Variable::Dependent,
                                                       std::move(output)));
        }
        for (std::size_t i = 0; i < inputCount; ++i) {
            inputs.push_back(project->addNumericVariable(
                "x" + std::to_string(i), Variable::Independent, std::move(columns[i])));
        }
        Project::setProject(project);
        const UndoStack::SuspendUndoRecording suspension;
        manager =
            boost::make_shared<Manager>(boost::make_shared<ProjectDataPipelineManager>(project));
        manager->independentVars()->set(inputs);
        grid = boost::make_shared<EvenGrid>(manager, distributions, outputs);
        filter = SurrogateModelQueryToTable::New(manager, grid);
    }
    ~Study() { Project::setProject(nullptr); }

    void sweep(std::size_t inputCount, std::size_t valuesPerInput)
    {
        grid->sweep({inputs.begin(), inputs.begin() + static_cast<std::ptrdiff_t>(inputCount)},
                    valuesPerInput);
        filter->Modified();
    }

    void moveSlider()
    {
        position = position < 0.9 ? position + 0.01 : 0.1;
        const UndoStack::SuspendUndoRecording suspension;
        SurrogateModelUserDistCollection point = manager->evaluationPoint()->get();
        point.setUserDistString("x7", std::to_string(position));
        manager->evaluationPoint()->set(point);
    }

    boost::shared_ptr<Project> project = boost::make_shared<Project>();
    std::vector<VarPtr> inputs;
    veska::Property<SurrogateModelUserDistCollection> distributions;
    boost::shared_ptr<Manager> manager;
    boost::shared_ptr<EvenGrid> grid;
    vtkSmartPointer<SurrogateModelQueryToTable> filter;
    double position = 0.5;
};

/** Three inputs and one output: four columns. */
const std::size_t gridColumns = 4;

std::size_t gridBytes(const benchmark::State& state)
{
    const auto values = static_cast<std::size_t>(state.range(0));
    return values * values * values * gridColumns * sizeof(double);
}

void fillGrid(benchmark::State& state)
{
    Study<IdleManager> study(gridColumns - 1, 200, 1);
    study.sweep(gridColumns - 1, static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        const SurrogateModelInputTableBuilder builder(*study.manager, *study.grid);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(gridBytes(state)));
}
BENCHMARK(fillGrid)
    ->ArgName("valuesPerInput")
    ->Arg(10)
    ->Arg(100)
    ->Arg(215) // 10 million rows
    ->Unit(benchmark::kMillisecond);

/** A floor: memory of the size of the grid, fresh from the system, set to one byte. */
void setFreshMemory(benchmark::State& state)
{
    for (auto _ : state) {
        void* const memory = std::malloc(gridBytes(state));
        benchmark::DoNotOptimize(std::memset(memory, 1, gridBytes(state)));
        std::free(memory);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(gridBytes(state)));
}
BENCHMARK(setFreshMemory)->ArgName("valuesPerInput")->Arg(215)->Unit(benchmark::kMillisecond);

/** Another floor: first fill of fresh columns of the same size. */
void fillFreshColumns(benchmark::State& state)
{
    for (auto _ : state) {
        for (std::size_t c = 0; c < gridColumns; ++c) {
            std::vector<double> column(gridBytes(state) / gridColumns / sizeof(double), 0.5);
            benchmark::DoNotOptimize(column.data());
        }
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(gridBytes(state)));
}
BENCHMARK(fillFreshColumns)->ArgName("valuesPerInput")->Arg(215)->Unit(benchmark::kMillisecond);

void runFilterOverIdleModel(benchmark::State& state)
{
    Study<IdleManager> study(gridColumns - 1, 200, 1);
    study.sweep(gridColumns - 1, static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        SurrogateModelQueryToTable::New(study.manager, study.grid)->Update();
    }
}
BENCHMARK(runFilterOverIdleModel)
    ->ArgName("valuesPerInput")
    ->Arg(100)
    ->Arg(215)
    ->Unit(benchmark::kMillisecond);

/** Kriging of 1000 cases, 8 inputs and 2 outputs, over a million points; fitting takes a second. */
Study<SurrogateModelManager>& krigingStudy(const benchmark::State& state)
{
    static const auto study = std::make_unique<Study<SurrogateModelManager>>(8, 1000, 2);
    Project::setProject(study->project); // repetitions of other benchmarks come in between
    study->manager->type()->set(SurrogateModelManagerInterface::Kriging);
    study->sweep(static_cast<std::size_t>(state.range(0)),
                 static_cast<std::size_t>(
                     std::llround(std::pow(1e6, 1.0 / static_cast<double>(state.range(0))))));
    study->filter->Update(); // fits
    return *study;
}

void overSweptInputs(benchmark::internal::Benchmark* measured)
{
    measured->ArgName("sweptInputs")->DenseRange(1, 8);
    measured->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
}

/** A slider changes the evaluation point of one input, and the filter evaluates anew. */
void updateFilter(benchmark::State& state)
{
    Study<SurrogateModelManager>& study = krigingStudy(state);
    for (auto _ : state) {
        study.moveSlider();
        study.filter->Update();
    }
}
BENCHMARK(updateFilter)->Apply(overSweptInputs);

/** The part of the model: tables that are there are evaluated. */
void interpolate(benchmark::State& state)
{
    Study<SurrogateModelManager>& study = krigingStudy(state);
    const SurrogateModelInputTableBuilder builder(*study.manager, *study.grid);
    const vtkSmartPointer<vtkTable> table = builder.suppliedIndependentVarValues();
    std::vector<double*> columns;
    for (vtkIdType k = 0; k < table->GetNumberOfColumns(); ++k) {
        columns.push_back(static_cast<double*>(table->GetColumn(k)->GetVoidPointer(0)));
    }
    const auto rows = static_cast<std::size_t>(table->GetNumberOfRows());
    std::vector<std::vector<double>> results(2, std::vector<double>(rows));
    std::vector<double*> outputs = pointersTo(results);
    const SurrogateModelInterface& model = study.manager->model(std::set<int>{0, 1});
    for (auto _ : state) {
        model.interpolateDependentValues(columns, {0, 1}, outputs, rows);
    }
}
BENCHMARK(interpolate)->Apply(overSweptInputs);

} // namespace
