// Fitting Kriging to the borehole function, and evaluating it at points, over grids and lines.
#include "TestFunctions.h"

#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/ThreadCount.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <utility>

namespace {

using Columns = std::vector<std::vector<double>>;

void fitKriging(benchmark::State& state)
{
    const auto rows = static_cast<std::size_t>(state.range(0));
    Columns inputs = uniformColumns(8, rows);
    Columns output = {boreholeColumn(inputs)};
    setThreadCount(static_cast<int>(state.range(1)));
    for (auto _ : state) {
        KrigingSurrogateModel model(pointersTo(inputs), pointersTo(output), static_cast<int>(rows),
                                    KrigingOptions());
        model.activateDependentVariables({0});
        benchmark::DoNotOptimize(&model);
    }
    setThreadCount(0);
}
BENCHMARK(fitKriging)
    ->ArgNames({"cases", "threads"})
    ->ArgsProduct({{50, 200, 500, 1000, 2000}, {1, 2}})
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

/** Lengths are given: fitting is not what is measured. */
KrigingSurrogateModel krigingOver(std::size_t inputs, std::size_t rows)
{
    Columns columns = uniformColumns(inputs, rows);
    Columns output(1, std::vector<double>(rows, 0.0));
    for (const std::vector<double>& column : columns) {
        for (std::size_t i = 0; i < rows; ++i) {
            output[0][i] += std::sin(3.0 * column[i]) * columns[0][i];
        }
    }
    KrigingOptions options;
    options.correlationLengths.assign(inputs, 1.0);
    options.nugget = 1e-8;
    options.nuggetMode = KrigingOptions::NuggetMode::Fixed;
    return {pointersTo(columns), pointersTo(output), static_cast<int>(rows), options};
}

/** Points, and a model that is evaluated at them. */
struct Evaluation
{
    Evaluation(std::size_t cases, Columns points)
        : columns(std::move(points)), model(krigingOver(columns.size(), cases)),
          inputs(pointersTo(columns)), result(columns[0].size()), outputs{result.data()}
    {
        model.activateDependentVariables({0});
    }

    void measurePredictions(benchmark::State& state)
    {
        for (auto _ : state) {
            model.interpolateDependentValues(inputs, {0}, outputs, result.size());
            benchmark::DoNotOptimize(result.data());
        }
        state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(result.size()));
    }

    Columns columns;
    KrigingSurrogateModel model;
    std::vector<double*> inputs;
    std::vector<double> result;
    std::vector<double*> outputs;
};

/** 8 inputs, 1000 cases. */
Evaluation atScatteredPoints(const benchmark::State& state)
{
    return {1000, uniformColumns(8, static_cast<std::size_t>(state.range(0)), 2)};
}

void overPoints(benchmark::internal::Benchmark* measured)
{
    measured->ArgName("points")->Arg(100000);
    measured->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
}

void predictScattered(benchmark::State& state)
{
    atScatteredPoints(state).measurePredictions(state);
}
BENCHMARK(predictScattered)->Apply(overPoints);

void differentiate(benchmark::State& state)
{
    const Evaluation at = atScatteredPoints(state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(at.model.gradients(at.inputs, 0, at.result.size()));
    }
}
BENCHMARK(differentiate)->Apply(overPoints);

void standardErrors(benchmark::State& state)
{
    const Evaluation at = atScatteredPoints(state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            at.model.standardErrors(at.inputs, 0, FittedModel::ErrorKind::Mean, at.result.size()));
    }
}
BENCHMARK(standardErrors)->Apply(overPoints);

void overGrids(benchmark::internal::Benchmark* measured)
{
    measured->ArgNames({"inputs", "values", "cases"})
        ->Args({2, 1000, 1000})
        ->Args({3, 100, 1000})
        ->Args({6, 10, 1000})
        ->Args({8, 6, 1000})
        ->Args({2, 1000, 200})
        ->Args({2, 40, 1000})
        ->Args({2, 100, 200})
        ->Args({3, 20, 300})
        ->Args({4, 12, 100});
    measured->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
}

/** `isScattered`: the same points in an order in which they are no grid, for the ratio. */
void evaluateKrigingOverGrid(benchmark::State& state, bool isScattered)
{
    Columns columns = evenGrid(static_cast<std::size_t>(state.range(0)),
                               static_cast<std::size_t>(state.range(1)));
    for (std::vector<double>& column : columns) {
        if (isScattered) {
            std::swap(column[1], column[column.size() / 2 + 1]);
            std::swap(column[2], column[column.size() / 3]);
        }
    }
    Evaluation(static_cast<std::size_t>(state.range(2)), std::move(columns))
        .measurePredictions(state);
}
BENCHMARK_CAPTURE(evaluateKrigingOverGrid, grid, false)->Apply(overGrids);
BENCHMARK_CAPTURE(evaluateKrigingOverGrid, scattered, true)->Apply(overGrids);

void overPointsOfALine(benchmark::internal::Benchmark* measured)
{
    measured->ArgName("points")->Arg(50)->Arg(200)->Arg(1000)->Arg(1000000);
    measured->Unit(benchmark::kMicrosecond)->MeasureProcessCPUTime()->UseRealTime();
}

/** One of 8 inputs over [0, 1], the others constant: what a slider or a plot asks for. */
void evaluateKrigingOverLine(benchmark::State& state, bool isScattered)
{
    const auto points = static_cast<std::size_t>(state.range(0));
    Columns columns(8, std::vector<double>(points, 0.4));
    for (std::size_t i = 0; i < points; ++i) {
        columns[3][i] = static_cast<double>(i) / static_cast<double>(points - 1);
        columns[4][i] += isScattered ? 1e-9 * columns[3][i] : 0.0;
    }
    Evaluation(1000, std::move(columns)).measurePredictions(state);
}
BENCHMARK_CAPTURE(evaluateKrigingOverLine, line, false)->Apply(overPointsOfALine);
BENCHMARK_CAPTURE(evaluateKrigingOverLine, scattered, true)->Apply(overPointsOfALine);

} // namespace
