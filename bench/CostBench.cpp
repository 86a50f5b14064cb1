// What fits and predictions cost against the number of cases, inputs, points and outputs, each
// alone; one thread. CostPictures draws the results: one picture for each argument name, in which
// the labels are the titles of the panels.
#include "TestFunctions.h"

#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>
#include <mirel_fitting/ThreadCount.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <functional>
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

void fit(benchmark::State& state, const Cases& cases, bool isKriging)
{
    setThreadCount(1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(isKriging ? cases.krigingModel() : cases.responseSurface());
    }
    setThreadCount(0);
}

void predict(benchmark::State& state, const SurrogateModelInterface& model,
             std::vector<std::vector<double>> columns)
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
}

const SurrogateModelInterface& krigingOfThousand()
{
    static const auto model = Cases(8, 1000).krigingModel();
    return *model;
}

/** Over three of eight inputs. @param points the cube of a whole number. */
std::vector<std::vector<double>> gridOf(std::size_t points)
{
    const double values = std::cbrt(static_cast<double>(points));
    std::vector<std::vector<double>> columns = evenGrid(3, std::llround(values));
    columns.resize(8, std::vector<double>(columns[0].size(), 0.5));
    return columns;
}

using Measure = std::function<void(benchmark::State&, std::size_t size)>;

/** @param argument what varies. @param label the title of the panel. */
benchmark::internal::Benchmark* add(const char* name, const char* argument, const char* label,
                                    const Measure& measure)
{
    return benchmark::RegisterBenchmark(name,
                                        [=](benchmark::State& state) {
                                            measure(state,
                                                    static_cast<std::size_t>(state.range(0)));
                                            state.SetLabel(label);
                                        })
        ->ArgName(argument)
        ->Unit(benchmark::kMillisecond);
}

const bool areRegistered = [] {
    using State = benchmark::State;
    add("krigingByCases", "cases", "Kriging, 8 inputs: fit",
        [](State& state, std::size_t cases) { fit(state, Cases(8, cases), true); })
        ->RangeMultiplier(2)
        ->Range(32, 2048);
    add("surfaceByCases", "cases", "Response surface, 8 inputs: fit",
        [](State& state, std::size_t cases) { fit(state, Cases(8, cases), false); })
        ->RangeMultiplier(10)
        ->Range(100, 1000000);
    add("krigingByInputs", "inputs", "Kriging, 300 cases: fit",
        [](State& state, std::size_t inputs) { fit(state, Cases(inputs, 300), true); })
        ->RangeMultiplier(2)
        ->Range(1, 32);
    add("surfaceByInputs", "inputs", "Response surface, 10 000 cases: fit",
        [](State& state, std::size_t inputs) { fit(state, Cases(inputs, 10000), false); })
        ->RangeMultiplier(2)
        ->Range(1, 32);
    add("scatteredByPoints", "points", "Kriging, 1000 cases, 8 inputs: scattered",
        [](State& state, std::size_t points) {
            predict(state, krigingOfThousand(), uniformColumns(8, points, 2));
        })
        ->RangeMultiplier(10)
        ->Range(100, 1000000);
    auto* const grids =
        add("gridByPoints", "points", "Kriging, 1000 cases: grids over 3 of 8 inputs",
            [](State& state, std::size_t points) {
                predict(state, krigingOfThousand(), gridOf(points));
            });
    for (const std::int64_t values : {5, 10, 22, 46, 100}) {
        grids->Arg(values * values * values);
    }
    add("surfaceByPoints", "points", "Response surface, 8 inputs: points",
        [](State& state, std::size_t points) {
            static const auto model = Cases(8, 1000).responseSurface();
            predict(state, *model, uniformColumns(8, points, 2));
        })
        ->RangeMultiplier(10)
        ->Range(100, 1000000);
    add("krigingByOutputs", "outputs", "Kriging, 200 cases, 4 inputs: fit",
        [](State& state, std::size_t outputs) { fit(state, Cases(4, 200, outputs), true); })
        ->RangeMultiplier(2)
        ->Range(1, 32);
    add("surfaceByOutputs", "outputs", "Response surface, 10 000 cases, 8 inputs: fit",
        [](State& state, std::size_t outputs) { fit(state, Cases(8, 10000, outputs), false); })
        ->RangeMultiplier(2)
        ->Range(1, 32);
    return true;
}();

} // namespace
