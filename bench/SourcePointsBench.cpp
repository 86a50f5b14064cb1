// Picking the valid cases of a project and packing them into dense columns.
#include "TestFunctions.h"

#include <surrogatemodel/SurrogateModelSourcePoints.h>

#include <mirel_datamanagement/Project.h>
#include <mirel_datapipeline/ProjectDataPipelineManager.h>

#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <boost/make_shared.hpp>

#include <benchmark/benchmark.h>

#include <cstring>
#include <string>

namespace {

const std::size_t columnCount = 10;

/** A project with 8 inputs and 2 outputs as the open one. */
boost::shared_ptr<Project> openProject(std::size_t cases)
{
    auto project = boost::make_shared<Project>();
    std::vector<std::vector<double>> columns = uniformColumns(columnCount, cases);
    for (std::size_t c = 0; c < columnCount; ++c) {
        project->addNumericVariable("v" + std::to_string(c),
                                    c < 8 ? Variable::Independent : Variable::Dependent,
                                    std::move(columns[c]));
    }
    Project::setProject(project);
    return project;
}

void rebuildSourcePoints(benchmark::State& state)
{
    const boost::shared_ptr<Project> project =
        openProject(static_cast<std::size_t>(state.range(0)));
    const ProjectDataPipelineManager pipeline(project);
    pipeline.outputAlgorithm()->Update();
    const std::vector<VarPtr> variables = project->variables();
    const std::vector<VarPtr> inputs(variables.begin(), variables.begin() + 8);
    const std::set<VarPtr> outputs(variables.begin() + 8, variables.end());

    SurrogateModelSourcePoints points;
    for (auto _ : state) {
        points.rebuild(inputs, outputs, pipeline.outputAlgorithm()->GetOutput(), true);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    Project::setProject(nullptr);
}
BENCHMARK(rebuildSourcePoints)
    ->ArgName("cases")
    ->Arg(1000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);

/** The floor: the same bytes copied and nothing looked at. */
void copySameBytes(benchmark::State& state)
{
    const auto cases = static_cast<std::size_t>(state.range(0));
    const std::vector<std::vector<double>> columns = uniformColumns(columnCount, cases);
    for (auto _ : state) {
        for (const std::vector<double>& column : columns) {
            std::vector<double> copy(column);
            benchmark::DoNotOptimize(copy.data());
        }
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(copySameBytes)->ArgName("cases")->Arg(1000000)->Unit(benchmark::kMillisecond);

void buildPipelineTable(benchmark::State& state)
{
    const boost::shared_ptr<Project> project =
        openProject(static_cast<std::size_t>(state.range(0)));
    const ProjectDataPipelineManager pipeline(project);
    for (auto _ : state) {
        pipeline.outputAlgorithm()->Modified();
        pipeline.outputAlgorithm()->Update();
    }
    Project::setProject(nullptr);
}
BENCHMARK(buildPipelineTable)->ArgName("cases")->Arg(1000000)->Unit(benchmark::kMillisecond);

/** Every second case out and in again, looking each time at which are out. */
void excludeHalfOfTheCases(benchmark::State& state)
{
    const boost::shared_ptr<Project> project =
        openProject(static_cast<std::size_t>(state.range(0)));
    std::vector<std::size_t> half;
    for (std::size_t row = 0; row < project->recordCount(); row += 2) {
        half.push_back(row);
    }
    for (auto _ : state) {
        project->setRowsIncluded(half, false);
        benchmark::DoNotOptimize(project->excludedRows().data());
        project->setRowsIncluded(half, true);
        benchmark::DoNotOptimize(project->excludedRows().data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    Project::setProject(nullptr);
}
BENCHMARK(excludeHalfOfTheCases)->ArgName("cases")->Arg(1000000)->Unit(benchmark::kMillisecond);

/** The floor: the same with a plain column of flags. */
void flagHalfOfTheCases(benchmark::State& state)
{
    std::vector<char> isExcluded(static_cast<std::size_t>(state.range(0)));
    std::vector<std::size_t> half;
    for (std::size_t row = 0; row < isExcluded.size(); row += 2) {
        half.push_back(row);
    }
    const auto flag = [&](char value) {
        for (const std::size_t row : half) {
            isExcluded[row] = value;
        }
        std::vector<std::size_t> rows;
        for (std::size_t row = 0; row < isExcluded.size(); ++row) {
            if (isExcluded[row] != 0) {
                rows.push_back(row);
            }
        }
        benchmark::DoNotOptimize(rows.data());
    };
    for (auto _ : state) {
        flag(1);
        flag(0);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(flagHalfOfTheCases)->ArgName("cases")->Arg(1000000)->Unit(benchmark::kMillisecond);

} // namespace
