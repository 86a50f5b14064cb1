// Parsing a typed distribution text and expanding it into its values.
#include <surrogatemodel/SurrogateModelUserDist.h>

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

void expandTypedText(benchmark::State& state)
{
    const SurrogateModelUserDist text("0 - 10 : 11, 12.5, 20 - 30 : 3");
    std::vector<double> values;
    for (auto _ : state) {
        text.get(values);
        benchmark::DoNotOptimize(values.data());
    }
}
BENCHMARK(expandTypedText);

void expandManySingleValues(benchmark::State& state)
{
    std::string items;
    for (int i = 0; i < state.range(0); ++i) {
        items += (i ? "," : "") + std::to_string(i * 0.37);
    }
    const SurrogateModelUserDist text(items);
    std::vector<double> values;
    for (auto _ : state) {
        text.get(values);
        benchmark::DoNotOptimize(values.data());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(items.size()));
}
BENCHMARK(expandManySingleValues)->ArgName("items")->Arg(100)->Arg(10000)->Arg(100000);

void expandLargeRange(benchmark::State& state)
{
    const SurrogateModelUserDist text("0 - 1 : 1000000");
    std::vector<double> values;
    for (auto _ : state) {
        text.get(values);
        benchmark::DoNotOptimize(values.data());
    }
}
BENCHMARK(expandLargeRange)->Unit(benchmark::kMillisecond);

} // namespace
