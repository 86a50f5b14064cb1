#include "session/diagnosis/DiagnosedCases.h"

#include "session/cases/CaseCounts.h"

#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>

namespace {
/** SplitMix64. Steele, Lea, Flood: Fast splittable pseudorandom number generators, OOPSLA 2014. */
std::uint64_t mixed(std::uint64_t state)
{
    state += 0x9e3779b97f4a7c15u;
    state = (state ^ (state >> 30u)) * 0xbf58476d1ce4e5b9u;
    state = (state ^ (state >> 27u)) * 0x94d049bb133111ebu;
    return state ^ (state >> 31u);
}
} // namespace

bool DiagnosedCases::Column::isConstant() const
{
    return std::adjacent_find(values.begin(), values.end(), std::not_equal_to<>()) == values.end();
}

std::optional<std::size_t> DiagnosedCases::Column::onlyOtherRow() const
{
    if (values.size() < 3) {
        return std::nullopt;
    }
    // The value of most cases is one of the first three.
    const double common = values[0] == values[1] || values[0] == values[2] ? values[0] : values[1];
    std::optional<std::size_t> other;
    for (std::size_t row = 0; row < values.size(); ++row) {
        if (values[row] != common) {
            if (other) {
                return std::nullopt;
            }
            other = row;
        }
    }
    return other;
}

double DiagnosedCases::Column::minimum() const
{
    return *std::min_element(values.begin(), values.end());
}

double DiagnosedCases::Column::maximum() const
{
    return *std::max_element(values.begin(), values.end());
}

std::vector<const double*> pointersTo(const std::vector<DiagnosedCases::Column>& columns)
{
    std::vector<const double*> pointers;
    for (const DiagnosedCases::Column& column : columns) {
        pointers.push_back(column.values.data());
    }
    return pointers;
}

std::vector<std::size_t> sampledRows(std::size_t count, std::size_t max)
{
    std::vector<std::size_t> rows;
    const std::size_t wanted = std::min(count, max);
    rows.reserve(wanted);
    for (std::size_t k = 0; k < wanted; ++k) {
        const std::size_t begin = count * k / wanted;
        const std::size_t end = count * (k + 1) / wanted;
        rows.push_back(begin + mixed(k) % (end - begin));
    }
    return rows;
}

std::vector<std::size_t> DiagnosedCases::positionsOf(const std::vector<std::size_t>& rows) const
{
    std::vector<std::size_t> found;
    for (const std::size_t row : rows) {
        found.push_back(positions[row]);
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::vector<std::string> DiagnosedCases::twoValuedInputs() const
{
    std::vector<std::string> names;
    for (const Column& input : inputs) {
        if (input.isTwoValued()) {
            names.push_back(input.name);
        }
    }
    return names;
}

std::size_t DiagnosedCases::termCount(bool withConstants) const
{
    std::vector<bool> isCounted;
    for (const Column& input : inputs) {
        isCounted.push_back(withConstants || !input.isConstant());
    }
    return SurrogateResponseSurfaceModel::termCount(responseSurface, isCounted);
}

DiagnosedCases DiagnosedCases::sample(std::size_t maxCases) const
{
    if (count() <= maxCases) {
        return *this;
    }
    const std::vector<std::size_t> rows = sampledRows(count(), maxCases);
    DiagnosedCases sampled;
    sampled.isKriging = isKriging;
    sampled.responseSurface = responseSurface;
    sampled.isSample = true;
    sampled.transformsOutputs = transformsOutputs;
    for (const Column& column : inputs) {
        sampled.inputs.push_back({column.name, valuesAt(column.values, rows)});
    }
    for (const Column& column : outputs) {
        sampled.outputs.push_back({column.name, valuesAt(column.values, rows)});
    }
    if (!blocks.empty()) {
        sampled.blocks = valuesAt(blocks, rows);
    }
    sampled.positions = positionsOf(rows);
    return sampled;
}

double lastDigit(const std::vector<double>& values)
{
    constexpr int maxDigits = 9;
    constexpr double tolerance = 1e-9;
    constexpr double rounding = 1e-14; // of the number, by the division
    double step = 1.0;
    std::size_t first = 0;
    for (int digits = 0; digits <= maxDigits; ++digits, step /= 10.0) {
        while (first < values.size()) {
            const double scaled = values[first] / step;
            if (std::fabs(scaled - std::round(scaled)) > tolerance + rounding * std::fabs(scaled)) {
                break;
            }
            ++first;
        }
        if (first == values.size()) {
            return step;
        }
    }
    return 0.0;
}
