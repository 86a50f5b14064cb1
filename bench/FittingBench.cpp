// Fitting and evaluating both models on the borehole function.
#include "TestFunctions.h"

#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>
#include <mirel_fitting/ThreadCount.h>

#include <benchmark/benchmark.h>
#include <cblas.h>
#include <lapacke.h>

#include <cmath>

#include <cmath>
#include <utility>

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

/**
 * The floor of one likelihood with its gradient: Cholesky factor and inverse of a matrix of the
 * order of the cases, on one thread. A fit is a number of these.
 */
void factoriseAndInvert(benchmark::State& state)
{
    const auto cases = static_cast<std::size_t>(state.range(0));
    const auto order = static_cast<lapack_int>(cases);
    std::vector<double> matrix(cases * cases);
    for (std::size_t j = 0; j < cases; ++j) {
        for (std::size_t i = j; i < cases; ++i) {
            matrix[j * cases + i] = std::exp(-0.1 * static_cast<double>(i - j));
        }
    }
    const int threads = openblas_get_num_threads();
    openblas_set_num_threads(1);
    for (auto _ : state) {
        std::vector<double> factor = matrix;
        LAPACKE_dpotrf_work(LAPACK_COL_MAJOR, 'L', order, factor.data(), order);
        LAPACKE_dpotri_work(LAPACK_COL_MAJOR, 'L', order, factor.data(), order);
        benchmark::DoNotOptimize(factor.data());
    }
    openblas_set_num_threads(threads);
}
BENCHMARK(factoriseAndInvert)
    ->ArgName("cases")
    ->Arg(50)
    ->Arg(200)
    ->Arg(500)
    ->Arg(1000)
    ->Arg(2000)
    ->Unit(benchmark::kMillisecond);

void fitKriging(benchmark::State& state)
{
    const Cases cases(static_cast<std::size_t>(state.range(0)));
    setThreadCount(static_cast<int>(state.range(1)));
    for (auto _ : state) {
        KrigingSurrogateModel model(cases.independent, cases.dependent,
                                    static_cast<int>(state.range(0)), 0.0001, {}, 1, 0.5, 0.0, 0);
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
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

/** Lengths are given: fitting is not what is measured. */
KrigingSurrogateModel krigingOver(std::size_t inputs, std::size_t rows)
{
    std::vector<std::vector<double>> columns = uniformColumns(inputs, rows);
    std::vector<double> output(rows, 0.0);
    std::vector<double*> independent;
    for (std::vector<double>& column : columns) {
        for (std::size_t i = 0; i < rows; ++i) {
            output[i] += std::sin(3.0 * column[i]) * column[0];
        }
        independent.push_back(column.data());
    }
    return KrigingSurrogateModel(independent, {output.data()}, static_cast<int>(rows), 0.0001,
                                 std::vector<double>(inputs, 1.0), 1, 0.5, 1e-8, 1);
}

/** 8 inputs, 1000 cases; what every further answer costs, in calls of interpolateDependentValues()
 *  for as many points. */
struct Evaluation
{
    explicit Evaluation(std::size_t points)
        : model(krigingOver(8, 1000)), inputs(uniformColumns(8, points, 2)),
          result(points), outputs{result.data()}
    {
        for (std::vector<double>& input : inputs) {
            independent.push_back(input.data());
        }
        predict(); // fits
    }

    void predict()
    {
        model.interpolateDependentValues(independent, {0}, outputs, inputs[0].size());
    }

    KrigingSurrogateModel model;
    std::vector<std::vector<double>> inputs;
    std::vector<double> result;
    std::vector<double*> outputs;
    std::vector<double*> independent;
};

void predictScattered(benchmark::State& state)
{
    Evaluation evaluation(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        evaluation.predict();
    }
}
BENCHMARK(predictScattered)
    ->ArgName("points")
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();

void differentiate(benchmark::State& state)
{
    Evaluation evaluation(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            evaluation.model.gradients(evaluation.independent, 0, evaluation.inputs[0].size()));
    }
}
BENCHMARK(differentiate)
    ->ArgName("points")
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();

void standardErrors(benchmark::State& state)
{
    Evaluation evaluation(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(evaluation.model.standardErrors(
            evaluation.independent, 0, FittedModel::ErrorKind::Mean, evaluation.inputs[0].size()));
    }
}
BENCHMARK(standardErrors)
    ->ArgName("points")
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();

/** Every input evenly over [0, 1], the last one fastest. */
std::vector<std::vector<double>> evenGrid(std::size_t inputs, std::size_t valuesPerInput)
{
    std::size_t rows = 1;
    for (std::size_t k = 0; k < inputs; ++k) {
        rows *= valuesPerInput;
    }
    std::vector<std::vector<double>> columns(inputs, std::vector<double>(rows));
    std::size_t stride = rows;
    for (std::vector<double>& column : columns) {
        stride /= valuesPerInput;
        for (std::size_t i = 0; i < rows; ++i) {
            column[i] = static_cast<double>(i / stride % valuesPerInput) /
                        static_cast<double>(valuesPerInput - 1);
        }
    }
    return columns;
}

/** `isScattered`: the same points in an order in which they are no grid, for the ratio. */
void evaluateKrigingOverGrid(benchmark::State& state, bool isScattered)
{
    const auto inputs = static_cast<std::size_t>(state.range(0));
    KrigingSurrogateModel model = krigingOver(inputs, static_cast<std::size_t>(state.range(2)));
    model.activateDependentVariables({0});
    std::vector<std::vector<double>> columns =
        evenGrid(inputs, static_cast<std::size_t>(state.range(1)));
    std::vector<double*> independent;
    for (std::vector<double>& column : columns) {
        if (isScattered) {
            std::swap(column[1], column[column.size() / 2 + 1]);
            std::swap(column[2], column[column.size() / 3]);
        }
        independent.push_back(column.data());
    }
    std::vector<double> values(columns[0].size());
    std::vector<double*> outputs{values.data()};
    for (auto _ : state) {
        model.interpolateDependentValues(independent, {0}, outputs, values.size());
        benchmark::DoNotOptimize(values.data());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(values.size()));
}
BENCHMARK_CAPTURE(evaluateKrigingOverGrid, grid, false)
    ->ArgNames({"inputs", "values", "cases"})
    ->Args({2, 1000, 1000})
    ->Args({3, 100, 1000})
    ->Args({6, 10, 1000})
    ->Args({8, 6, 1000})
    ->Args({2, 1000, 200})
    ->Args({2, 40, 1000})
    ->Args({2, 100, 200})
    ->Args({3, 20, 300})
    ->Args({4, 12, 100})
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK_CAPTURE(evaluateKrigingOverGrid, scattered, true)
    ->ArgNames({"inputs", "values", "cases"})
    ->Args({2, 1000, 1000})
    ->Args({3, 100, 1000})
    ->Args({6, 10, 1000})
    ->Args({8, 6, 1000})
    ->Args({2, 1000, 200})
    ->Args({2, 40, 1000})
    ->Args({2, 100, 200})
    ->Args({3, 20, 300})
    ->Args({4, 12, 100})
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

void overPointsOfALine(benchmark::internal::Benchmark* measured)
{
    measured->ArgName("points")->Arg(50)->Arg(200)->Arg(1000)->Arg(1000000);
    measured->Unit(benchmark::kMicrosecond)->MeasureProcessCPUTime()->UseRealTime();
}

/** One of 8 inputs over [0, 1], the others constant: what a slider or a plot asks for. */
void evaluateKrigingOverLine(benchmark::State& state, bool isScattered)
{
    const auto points = static_cast<std::size_t>(state.range(0));
    KrigingSurrogateModel model = krigingOver(8, 1000);
    model.activateDependentVariables({0});
    std::vector<std::vector<double>> columns(8, std::vector<double>(points, 0.4));
    std::vector<double*> independent;
    independent.reserve(columns.size());
    for (std::vector<double>& column : columns) {
        independent.push_back(column.data());
    }
    for (std::size_t i = 0; i < points; ++i) {
        columns[3][i] = static_cast<double>(i) / static_cast<double>(points - 1);
        columns[4][i] += isScattered ? 1e-9 * columns[3][i] : 0.0;
    }
    std::vector<double> values(points);
    std::vector<double*> outputs{values.data()};
    for (auto _ : state) {
        model.interpolateDependentValues(independent, {0}, outputs, points);
        benchmark::DoNotOptimize(values.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK_CAPTURE(evaluateKrigingOverLine, line, false)->Apply(overPointsOfALine);
BENCHMARK_CAPTURE(evaluateKrigingOverLine, scattered, true)->Apply(overPointsOfALine);

} // namespace
