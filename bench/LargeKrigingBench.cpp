// Fitting Kriging to many cases of the borehole function, and what the fits are worth.
#include "TestFunctions.h"

#include <mirel_fitting/KrigingSurrogateModel.h>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

std::unique_ptr<KrigingSurrogateModel> fitted(std::size_t rows)
{
    std::vector<std::vector<double>> inputs = uniformColumns(8, rows);
    std::vector<double> output = boreholeColumn(inputs);
    auto model = std::make_unique<KrigingSurrogateModel>(pointersTo(inputs),
                                                         std::vector<double*>{output.data()},
                                                         static_cast<int>(rows), KrigingOptions());
    model->activateDependentVariables({0});
    return model;
}

/** At points that the model does not know. */
double errorOf(const KrigingSurrogateModel& model)
{
    constexpr std::size_t points = 10000;
    constexpr std::uint64_t otherSeed = 2;
    std::vector<std::vector<double>> columns = uniformColumns(8, points, otherSeed);
    const std::vector<double> expected = boreholeColumn(columns);
    std::vector<double> values(points);
    std::vector<double*> outputs = {values.data()};
    model.interpolateDependentValues(pointersTo(columns), {0}, outputs, points);
    return relativeError(values, expected);
}

void fitManyCases(benchmark::State& state)
{
    double error = 0.0;
    for (auto _ : state) {
        const auto model = fitted(static_cast<std::size_t>(state.range(0)));
        state.PauseTiming();
        error = errorOf(*model);
        state.ResumeTiming();
    }
    state.counters["error"] = error;
}
BENCHMARK(fitManyCases)
    ->ArgName("cases")
    ->Arg(4000)
    ->Arg(10000)
    ->Arg(100000)
    ->Iterations(1)
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kSecond);

void predictFromManyCases(benchmark::State& state)
{
    static const std::unique_ptr<KrigingSurrogateModel> model = fitted(100000);
    const auto points = static_cast<std::size_t>(state.range(0));
    std::vector<std::vector<double>> columns = uniformColumns(8, points, 3);
    std::vector<double> values(points);
    std::vector<double*> outputs = {values.data()};
    for (auto _ : state) {
        model->interpolateDependentValues(pointersTo(columns), {0}, outputs, points);
        benchmark::DoNotOptimize(values.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(predictFromManyCases)
    ->ArgName("points")
    ->Arg(100000)
    ->Iterations(1)
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kSecond);

} // namespace
