// Fitting and evaluating both models on the borehole function.
#include "TestFunctions.h"

#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include <benchmark/benchmark.h>

namespace {

struct Cases
{
    explicit Cases(std::size_t rows)
        : inputs(uniformColumns(8, rows)), output(boreholeColumn(inputs))
    {
        for (std::vector<double>& column : inputs) {
            independent.push_back(column.data());
        }
        dependent.push_back(output.data());
    }

    std::vector<std::vector<double>> inputs;
    std::vector<double> output;
    std::vector<double*> independent;
    std::vector<double*> dependent;
};

void fitResponseSurface(benchmark::State& state)
{
    const Cases cases(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        SurrogateResponseSurfaceModel model(cases.independent, cases.dependent,
                                            static_cast<std::size_t>(state.range(0)));
        model.activateDependentVariables({0});
        benchmark::DoNotOptimize(&model);
    }
}
BENCHMARK(fitResponseSurface)
    ->ArgName("cases")
    ->Arg(100)
    ->Arg(1000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);

void fitKriging(benchmark::State& state)
{
    const Cases cases(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        KrigingSurrogateModel model(cases.independent, cases.dependent,
                                    static_cast<int>(state.range(0)), 0.0001, {}, 1, 0.5, 0.0, 0);
        model.activateDependentVariables({0});
        benchmark::DoNotOptimize(&model);
    }
}
BENCHMARK(fitKriging)
    ->ArgName("cases")
    ->Arg(50)
    ->Arg(200)
    ->Arg(500)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);

void evaluate(benchmark::State& state, SurrogateModelInterface& model)
{
    const auto points = static_cast<std::size_t>(state.range(0));
    std::vector<std::vector<double>> columns = uniformColumns(8, points, 2);
    std::vector<double*> inputs;
    inputs.reserve(columns.size());
    for (std::vector<double>& column : columns) {
        inputs.push_back(column.data());
    }
    std::vector<double> values(points);
    std::vector<double*> outputs{values.data()};
    for (auto _ : state) {
        model.interpolateDependentValues(inputs, {0}, outputs, points);
        benchmark::DoNotOptimize(values.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void evaluateResponseSurface(benchmark::State& state)
{
    const Cases cases(1000);
    SurrogateResponseSurfaceModel model(cases.independent, cases.dependent, 1000);
    evaluate(state, model);
}
BENCHMARK(evaluateResponseSurface)->ArgName("points")->Arg(1000000)->Unit(benchmark::kMillisecond);

void evaluateKriging(benchmark::State& state)
{
    const auto rows = static_cast<std::size_t>(state.range(1));
    const Cases cases(rows);
    KrigingSurrogateModel model(cases.independent, cases.dependent, static_cast<int>(rows), 0.0001,
                                {}, 1, 0.5, 0.0, 0);
    model.activateDependentVariables({0});
    evaluate(state, model);
}
BENCHMARK(evaluateKriging)
    ->ArgNames({"points", "cases"})
    ->Args({100000, 500})
    ->Args({1000000, 1000})
    ->Unit(benchmark::kMillisecond);

} // namespace
