// Evaluating response surfaces, and the time and memory of a fit.
#include "TestFunctions.h"

#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <fstream>
#include <string>
#include <vector>

namespace {

using Columns = std::vector<std::vector<double>>;

Columns outputOf(const Columns& inputs)
{
    Columns output(1, std::vector<double>(inputs[0].size(), 0.0));
    for (const std::vector<double>& column : inputs) {
        for (std::size_t i = 0; i < column.size(); ++i) {
            output[0][i] += std::sin(3.0 * column[i]) * inputs[0][i];
        }
    }
    return output;
}

SurrogateResponseSurfaceModel surfaceOver(std::size_t inputs)
{
    constexpr std::size_t rows = 1000;
    Columns columns = uniformColumns(inputs, rows);
    Columns output = outputOf(columns);
    return {pointersTo(columns), pointersTo(output), rows};
}

void predict(benchmark::State& state)
{
    Columns points = evenGrid(static_cast<std::size_t>(state.range(0)),
                              static_cast<std::size_t>(state.range(1)));
    const SurrogateResponseSurfaceModel model = surfaceOver(points.size());
    std::vector<double> values(points[0].size());
    std::vector<double*> outputs{values.data()};
    for (auto _ : state) {
        model.interpolateDependentValues(pointersTo(points), {0}, outputs, values.size());
        benchmark::DoNotOptimize(values.data());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(values.size()));
}
BENCHMARK(predict)
    ->ArgNames({"inputs", "values"})
    ->Args({2, 1000})
    ->Args({3, 100})
    ->Args({6, 10})
    ->Args({8, 6})
    ->Unit(benchmark::kMillisecond);

/** In MiB, a figure of the process as Linux reports it; NaN elsewhere. */
double processMemory(const std::string& name)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(name + ':', 0) == 0) {
            return std::stod(line.substr(name.size() + 1)) / 1024.0;
        }
    }
    return std::nan("");
}

/** The peak of the memory in use begins anew, and what was freed is no longer in use. */
void forgetPeak()
{
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5";
}

/** "beyond" is the peak memory in MiB beyond what was in use before the fit, cases included. */
void fitInMemory(benchmark::State& state)
{
    const auto rows = static_cast<std::size_t>(state.range(0));
    Columns inputs = uniformColumns(8, rows);
    Columns output = outputOf(inputs);
    double beyond = 0.0;
    for (auto _ : state) {
        forgetPeak();
        const double before = processMemory("VmRSS");
        const SurrogateResponseSurfaceModel model(pointersTo(inputs), pointersTo(output), rows);
        benchmark::DoNotOptimize(&model);
        beyond = std::max(beyond, processMemory("VmHWM") - before);
    }
    state.counters["beyond"] = beyond;
}
BENCHMARK(fitInMemory)
    ->ArgName("cases")
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);

} // namespace
