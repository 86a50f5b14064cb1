// Parsing a distribution text and expanding it into its values, beside a lower bound: reading the
// same numbers with the standard library and sorting them.
#include <surrogatemodel/SurrogateModelUserDist.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <charconv>
#include <functional>
#include <string>
#include <vector>

namespace {

const std::size_t megabyte = 1000000;

/** `item` of 0, 1, 2, ... with commas between, until the text has a megabyte. */
std::string listed(const std::function<std::string(int)>& item)
{
    std::string text = item(0);
    for (int i = 1; text.size() < megabyte; ++i) {
        text += "," + item(i);
    }
    return text;
}

std::string ascendingValues()
{
    return listed([](int i) { return std::to_string(i * 0.37); });
}

std::string shortestValues()
{
    return listed([](int i) { return std::to_string(i % 10); });
}

std::string ranges()
{
    return listed([](int i) {
        return std::to_string(i) + " - " + std::to_string(i + 1) + " : " +
               std::to_string(2 + i % 9);
    });
}

std::string rangeWithLongRunsOfBlanks()
{
    const std::string blanks(megabyte / 4, ' ');
    return "0" + blanks + "-" + blanks + "1" + blanks + ":" + blanks + "3";
}

std::string faultAtTheEnd()
{
    return ascendingValues() + ",x";
}

/** Time per megabyte of several shapes of text. */
void expandMegabyte(benchmark::State& state, const std::function<std::string()>& shape)
{
    const std::string characters = shape();
    for (auto _ : state) {
        const SurrogateModelUserDist text(characters);
        std::vector<double> values;
        text.get(values);
        benchmark::DoNotOptimize(values.data());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(characters.size()));
}
BENCHMARK_CAPTURE(expandMegabyte, ascendingValues, ascendingValues)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(expandMegabyte, shortestValues, shortestValues)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(expandMegabyte, ranges, ranges)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(expandMegabyte, rangeWithLongRunsOfBlanks, rangeWithLongRunsOfBlanks)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(expandMegabyte, faultAtTheEnd, faultAtTheEnd)->Unit(benchmark::kMillisecond);

/** Reads the single values of a megabyte in a plain loop, and sorts them if they need it. */
void readPlainly(benchmark::State& state, const std::function<std::string()>& shape)
{
    const std::string characters = shape();
    for (auto _ : state) {
        std::vector<double> values;
        const char* const end = characters.data() + characters.size();
        for (const char* position = characters.data(); position < end; ++position) {
            values.emplace_back();
            position = std::from_chars(position, end, values.back()).ptr;
        }
        std::sort(values.begin(), values.end());
        values.erase(std::unique(values.begin(), values.end()), values.end());
        benchmark::DoNotOptimize(values.data());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(characters.size()));
}
BENCHMARK_CAPTURE(readPlainly, ascendingValues, ascendingValues)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readPlainly, shortestValues, shortestValues)->Unit(benchmark::kMillisecond);

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

/** Ranges of a million values each, of which every one overlaps all others. */
std::string overlappingRanges(std::int64_t count)
{
    std::string text;
    for (std::int64_t i = 0; i < count; ++i) {
        text += (i ? "," : "") + std::to_string(i) + " - " + std::to_string(1000 + 7 * i) +
                " : 1000000";
    }
    return text;
}

void expandLargeRanges(benchmark::State& state)
{
    const SurrogateModelUserDist text(overlappingRanges(state.range(0)));
    std::vector<double> values;
    for (auto _ : state) {
        text.get(values);
        benchmark::DoNotOptimize(values.data());
    }
}
BENCHMARK(expandLargeRanges)->ArgName("ranges")->Arg(1)->Arg(10)->Unit(benchmark::kMillisecond);

} // namespace
