// Two benchmarks that every program has: work that no change of ours makes faster or slower. Beside
// them compare-runs judges all others, so that a busy or another machine does not count as a
// change.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <vector>

namespace {

/** Operations within the first-level cache. */
void referenceArithmetic(benchmark::State& state)
{
    std::vector<double> numbers(1024, 0.5);
    for (auto _ : state) {
        for (double& number : numbers) {
            number = std::sqrt(1.0 + std::exp(-number));
        }
        benchmark::DoNotOptimize(numbers.data());
    }
}
BENCHMARK(referenceArithmetic);

/** Copies between columns that are larger than the caches. */
void referenceMemory(benchmark::State& state)
{
    std::vector<double> from(4000000, 0.5);
    std::vector<double> to(from);
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), from.size() * sizeof(double));
        benchmark::DoNotOptimize(to.data());
    }
}
BENCHMARK(referenceMemory)->Unit(benchmark::kMillisecond);

} // namespace
