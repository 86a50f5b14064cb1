// What fits and predictions cost against the number of cases, inputs, points and outputs, each
// alone; one thread. draw-costs makes the pictures of docs/performance.md of it. A label is the
// title of a panel; in each picture the names after the slash tell what varies.
#include "TestFunctions.h"

#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>
#include <mirel_fitting/ThreadCount.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace {

/** Smooth outputs of inputs in [0, 1), of which the first matter most. */
struct Cases
{
    Cases(std::size_t inputCount, std::size_t rows, std::size_t outputCount = 1)
        : rows(rows), inputs(uniformColumns(inputCount, rows)),
          outputs(outputCount, std::vector<double>(rows))
    {
        for (std::size_t r = 0; r < rows; ++r) {
            double sum = 0.0;
            for (std::size_t k = 0; k < inputCount; ++k) {
                sum += inputs[k][r] / static_cast<double>(k + 1);
            }
            for (std::size_t k = 0; k < outputCount; ++k) {
                outputs[k][r] = std::sin(3.0 * sum + static_cast<double>(k)) +
                                inputs.front()[r] * inputs.back()[r];
            }
        }
        independent = pointersTo(inputs);
        dependent = pointersTo(outputs);
        for (std::size_t k = 0; k < outputCount; ++k) {
            offsets.insert(static_cast<int>(k));
        }
    }

    std::unique_ptr<SurrogateModelInterface> krigingModel() const
    {
        auto model = std::make_unique<KrigingSurrogateModel>(
            independent, dependent, static_cast<int>(rows), KrigingOptions());
        model->activateDependentVariables(offsets);
        return model;
    }

    std::unique_ptr<SurrogateModelInterface> responseSurface() const
    {
        auto model = std::make_unique<SurrogateResponseSurfaceModel>(independent, dependent, rows);
        model->activateDependentVariables(offsets);
        return model;
    }

    std::size_t rows;
    std::vector<std::vector<double>> inputs;
    std::vector<std::vector<double>> outputs;
    std::vector<double*> independent;
    std::vector<double*> dependent;
    std::set<int> offsets;
};

void fitKriging(benchmark::State& state, const Cases& cases, const char* title)
{
    setThreadCount(1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(cases.krigingModel());
    }
    setThreadCount(0);
    state.SetLabel(title);
}

void fitSurface(benchmark::State& state, const Cases& cases, const char* title)
{
    setThreadCount(1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(cases.responseSurface());
    }
    setThreadCount(0);
    state.SetLabel(title);
}

std::size_t size(const benchmark::State& state)
{
    return static_cast<std::size_t>(state.range(0));
}

void krigingByCases(benchmark::State& state)
{
    fitKriging(state, Cases(8, size(state)), "Kriging, 8 inputs: fit");
}
BENCHMARK(krigingByCases)
    ->ArgName("cases")
    ->RangeMultiplier(2)
    ->Range(32, 2048)
    ->Unit(benchmark::kMillisecond);

void surfaceByCases(benchmark::State& state)
{
    fitSurface(state, Cases(8, size(state)), "Response surface, 8 inputs: fit");
}
BENCHMARK(surfaceByCases)
    ->ArgName("cases")
    ->RangeMultiplier(10)
    ->Range(100, 1000000)
    ->Unit(benchmark::kMillisecond);

void krigingByInputs(benchmark::State& state)
{
    fitKriging(state, Cases(size(state), 300), "Kriging, 300 cases: fit");
}
BENCHMARK(krigingByInputs)
    ->ArgName("inputs")
    ->RangeMultiplier(2)
    ->Range(1, 32)
    ->Unit(benchmark::kMillisecond);

void surfaceByInputs(benchmark::State& state)
{
    fitSurface(state, Cases(size(state), 10000), "Response surface, 10 000 cases: fit");
}
BENCHMARK(surfaceByInputs)
    ->ArgName("inputs")
    ->RangeMultiplier(2)
    ->Range(1, 32)
    ->Unit(benchmark::kMillisecond);

void predict(benchmark::State& state, const SurrogateModelInterface& model,
             std::vector<std::vector<double>> columns, const char* title)
{
    const std::vector<double*> inputs = pointersTo(columns);
    std::vector<double> result(columns.front().size());
    std::vector<double*> outputs = {result.data()};
    setThreadCount(1);
    for (auto _ : state) {
        model.interpolateDependentValues(inputs, {0}, outputs, result.size());
        benchmark::DoNotOptimize(result.data());
    }
    setThreadCount(0);
    state.SetLabel(title);
}

const SurrogateModelInterface& krigingOfThousand()
{
    static const auto model = Cases(8, 1000).krigingModel();
    return *model;
}

void scatteredByPoints(benchmark::State& state)
{
    predict(state, krigingOfThousand(), uniformColumns(8, size(state), 2),
            "Kriging, 1000 cases, 8 inputs: scattered");
}
BENCHMARK(scatteredByPoints)
    ->ArgName("points")
    ->RangeMultiplier(10)
    ->Range(100, 1000000)
    ->Unit(benchmark::kMillisecond);

void gridByPoints(benchmark::State& state)
{
    const auto values =
        static_cast<std::size_t>(std::llround(std::cbrt(static_cast<double>(state.range(0)))));
    std::vector<std::vector<double>> columns = evenGrid(3, values);
    columns.resize(8, std::vector<double>(columns[0].size(), 0.5));
    predict(state, krigingOfThousand(), std::move(columns),
            "Kriging, 1000 cases: grids over 3 of 8 inputs");
}
BENCHMARK(gridByPoints)
    ->ArgName("points")
    ->Arg(5 * 5 * 5)
    ->Arg(10 * 10 * 10)
    ->Arg(22 * 22 * 22)
    ->Arg(46 * 46 * 46)
    ->Arg(100 * 100 * 100)
    ->Unit(benchmark::kMillisecond);

void surfaceByPoints(benchmark::State& state)
{
    static const auto model = Cases(8, 1000).responseSurface();
    predict(state, *model, uniformColumns(8, size(state), 2), "Response surface, 8 inputs: points");
}
BENCHMARK(surfaceByPoints)
    ->ArgName("points")
    ->RangeMultiplier(10)
    ->Range(100, 1000000)
    ->Unit(benchmark::kMillisecond);

void krigingByOutputs(benchmark::State& state)
{
    fitKriging(state, Cases(4, 200, size(state)), "Kriging, 200 cases, 4 inputs: fit");
}
BENCHMARK(krigingByOutputs)
    ->ArgName("outputs")
    ->RangeMultiplier(2)
    ->Range(1, 32)
    ->Unit(benchmark::kMillisecond);

void surfaceByOutputs(benchmark::State& state)
{
    fitSurface(state, Cases(8, 10000, size(state)),
               "Response surface, 10 000 cases, 8 inputs: fit");
}
BENCHMARK(surfaceByOutputs)
    ->ArgName("outputs")
    ->RangeMultiplier(2)
    ->Range(1, 32)
    ->Unit(benchmark::kMillisecond);

} // namespace
