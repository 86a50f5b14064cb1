// Evaluating response surfaces at points and over grids, and the memory of a fit.
#include "TestFunctions.h"

#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <fstream>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace {

using Columns = std::vector<std::vector<double>>;

std::vector<double*> pointersTo(Columns& columns)
{
    std::vector<double*> pointers;
    pointers.reserve(columns.size());
    for (std::vector<double>& column : columns) {
        pointers.push_back(column.data());
    }
    return pointers;
}

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

/** So many values of each input, the last one varying fastest. */
Columns grid(std::size_t inputs, std::size_t values)
{
    std::size_t count = 1;
    for (std::size_t k = 0; k < inputs; ++k) {
        count *= values;
    }
    Columns columns(inputs, std::vector<double>(count));
    std::size_t repeats = count;
    for (std::vector<double>& column : columns) {
        repeats /= values;
        for (std::size_t row = 0; row < count; ++row) {
            column[row] =
                static_cast<double>(row / repeats % values) / static_cast<double>(values - 1);
        }
    }
    return columns;
}

/** The same rows in another order, which is no grid. */
void shuffle(Columns& columns)
{
    std::vector<std::size_t> order(columns[0].size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::mt19937_64 generator(1);
    for (std::size_t i = order.size(); i > 1; --i) {
        std::swap(order[i - 1], order[generator() % i]);
    }
    for (std::vector<double>& column : columns) {
        const std::vector<double> before = column;
        for (std::size_t i = 0; i < order.size(); ++i) {
            column[i] = before[order[i]];
        }
    }
}

void predict(benchmark::State& state, Columns& points)
{
    const SurrogateResponseSurfaceModel model = surfaceOver(points.size());
    std::vector<double> values(points[0].size());
    std::vector<double*> outputs{values.data()};
    for (auto _ : state) {
        model.interpolateDependentValues(pointersTo(points), {0}, outputs, values.size());
        benchmark::DoNotOptimize(values.data());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(values.size()));
}

void predictGrid(benchmark::State& state)
{
    Columns points =
        grid(static_cast<std::size_t>(state.range(0)), static_cast<std::size_t>(state.range(1)));
    predict(state, points);
}

void predictScattered(benchmark::State& state)
{
    Columns points =
        grid(static_cast<std::size_t>(state.range(0)), static_cast<std::size_t>(state.range(1)));
    shuffle(points);
    predict(state, points);
}

void shapes(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"inputs", "values"})
        ->Args({2, 1000})
        ->Args({3, 100})
        ->Args({6, 10})
        ->Args({8, 6})
        ->Unit(benchmark::kMillisecond);
}
BENCHMARK(predictGrid)->Apply(shapes);
BENCHMARK(predictScattered)->Apply(shapes);

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
