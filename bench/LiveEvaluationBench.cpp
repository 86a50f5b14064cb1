// What a slider asks for: the evaluation point of one input changes, and the filter evaluates two
// outputs of a Kriging model of 1000 cases over a grid of a million points anew.
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
#include <cstring>
#include <memory>
#include <set>
#include <string>

namespace {

const std::size_t inputCount = 8;
const std::size_t cases = 1000;
const std::size_t outputCount = 2;

/** The first inputs over [0, 1], the others at the evaluation point. */
class PartGrid : public InterpolationVariablesAbstract
{
public:
    PartGrid(boost::shared_ptr<const SurrogateModelManagerInterface> manager,
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

/** A project of two smooth outputs as the open one; fitting it takes a second. */
struct Study
{
    Study()
    {
        std::vector<std::vector<double>> columns = uniformColumns(inputCount, cases);
        std::vector<std::vector<double>> outputs(outputCount, std::vector<double>(cases));
        for (std::size_t r = 0; r < cases; ++r) {
            double sum = 0.0;
            for (std::size_t k = 0; k < inputCount; ++k) {
                sum += columns[k][r] / static_cast<double>(k + 1);
            }
            outputs[0][r] = std::sin(3.0 * sum) + columns[0][r] * columns[7][r];
            outputs[1][r] = std::exp(0.5 * sum) * columns[1][r];
        }
        for (std::size_t k = 0; k < inputCount; ++k) {
            inputs.push_back(project->addNumericVariable(
                "x" + std::to_string(k), Variable::Independent, std::move(columns[k])));
        }
        std::set<VarPtr> dependents;
        for (std::size_t k = 0; k < outputCount; ++k) {
            dependents.insert(project->addNumericVariable(
                "y" + std::to_string(k), Variable::Dependent, std::move(outputs[k])));
        }
        Project::setProject(project);
        const UndoStack::SuspendUndoRecording suspension;
        manager = boost::make_shared<SurrogateModelManager>(
            boost::make_shared<ProjectDataPipelineManager>(project));
        manager->type()->set(SurrogateModelManagerInterface::Kriging);
        manager->independentVars()->set(inputs);
        grid = boost::make_shared<PartGrid>(manager, distributions, dependents);
        filter = SurrogateModelQueryToTable::New(manager, grid);
    }
    ~Study() { Project::setProject(nullptr); }

    void sweep(std::size_t count)
    {
        const auto perInput =
            static_cast<std::size_t>(std::llround(std::pow(1e6, 1.0 / static_cast<double>(count))));
        grid->sweep({inputs.begin(), inputs.begin() + static_cast<std::ptrdiff_t>(count)},
                    perInput);
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
    boost::shared_ptr<SurrogateModelManager> manager;
    boost::shared_ptr<PartGrid> grid;
    vtkSmartPointer<SurrogateModelQueryToTable> filter;
    double position = 0.5;
};

Study& study()
{
    static const auto shared = std::make_unique<Study>();
    return *shared;
}

void overSweptInputs(benchmark::internal::Benchmark* measured)
{
    measured->ArgName("sweptInputs")->DenseRange(1, 8);
    measured->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
}

void updateFilter(benchmark::State& state)
{
    study().sweep(static_cast<std::size_t>(state.range(0)));
    study().filter->Modified();
    study().filter->Update(); // fits
    for (auto _ : state) {
        study().moveSlider();
        study().filter->Update();
    }
}
BENCHMARK(updateFilter)->Apply(overSweptInputs);

/** The part of the tables. */
void buildTables(benchmark::State& state)
{
    study().sweep(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        study().moveSlider();
        const SurrogateModelInputTableBuilder builder(*study().manager, *study().grid);
    }
}
BENCHMARK(buildTables)->Apply(overSweptInputs);

/** The part of the model: tables that are there are evaluated. */
void interpolate(benchmark::State& state)
{
    study().sweep(static_cast<std::size_t>(state.range(0)));
    const SurrogateModelInputTableBuilder builder(*study().manager, *study().grid);
    const vtkSmartPointer<vtkTable> table = builder.suppliedIndependentVarValues();
    std::vector<double*> columns;
    for (vtkIdType k = 0; k < table->GetNumberOfColumns(); ++k) {
        columns.push_back(static_cast<double*>(table->GetColumn(k)->GetVoidPointer(0)));
    }
    const auto rows = static_cast<std::size_t>(table->GetNumberOfRows());
    std::vector<std::vector<double>> results(outputCount, std::vector<double>(rows));
    std::vector<double*> outputs = {results[0].data(), results[1].data()};
    const SurrogateModelInterface& model = study().manager->model(std::set<int>{0, 1});
    for (auto _ : state) {
        model.interpolateDependentValues(columns, {0, 1}, outputs, rows);
    }
}
BENCHMARK(interpolate)->Apply(overSweptInputs);

/** First fill of fresh memory of the size of the table. */
void fillFreshColumns(benchmark::State& state)
{
    for (auto _ : state) {
        // At once: parts of it would be memory that has just been given back.
        std::vector<double> columns(1000000 * (inputCount + outputCount), 0.5);
        benchmark::DoNotOptimize(columns.data());
    }
}
BENCHMARK(fillFreshColumns)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

/** Copying as many bytes between columns that have been touched before. */
void copySameBytes(benchmark::State& state)
{
    std::vector<double> from(1000000 * (inputCount + outputCount), 0.5);
    std::vector<double> to(from);
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), from.size() * sizeof(double));
        benchmark::DoNotOptimize(to.data());
    }
}
BENCHMARK(copySameBytes)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

} // namespace
