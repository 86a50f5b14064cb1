#pragma once

#include <mirel_fitting/ColumnPointers.h>

#include <cmath>
#include <cstdint>
#include <vector>

/**
 * Deterministic inputs for the benchmarks: the same numbers on every machine.
 * Vigna: splitmix64, public domain, 2015 (the constants).
 */
class UniformNumbers
{
public:
    explicit UniformNumbers(std::uint64_t seed) : state(seed) {}

    /** The next number in [0, 1). */
    double next()
    {
        state += 0x9E3779B97F4A7C15ULL;
        std::uint64_t z = state;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
        z ^= z >> 31;
        return static_cast<double>(z >> 11) / 9007199254740992.0;
    }

private:
    std::uint64_t state;
};

/** `columns` columns of `rows` numbers in [0, 1). */
inline std::vector<std::vector<double>> uniformColumns(std::size_t columns, std::size_t rows,
                                                       std::uint64_t seed = 1)
{
    UniformNumbers numbers(seed);
    std::vector<std::vector<double>> result(columns, std::vector<double>(rows));
    for (std::size_t r = 0; r < rows; ++r) {
        for (std::vector<double>& column : result) {
            column[r] = numbers.next();
        }
    }
    return result;
}

/** Every input evenly over [0, 1], the last one fastest. */
inline std::vector<std::vector<double>> evenGrid(std::size_t inputs, std::size_t valuesPerInput)
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

/** Root mean square error in units of the standard deviation of the true values. */
inline double relativeError(const std::vector<double>& predicted, const std::vector<double>& truth)
{
    double mean = 0.0;
    for (const double value : truth) {
        mean += value / static_cast<double>(truth.size());
    }
    double errors = 0.0;
    double deviations = 0.0;
    for (std::size_t i = 0; i < truth.size(); ++i) {
        errors += (predicted[i] - truth[i]) * (predicted[i] - truth[i]);
        deviations += (truth[i] - mean) * (truth[i] - mean);
    }
    return std::sqrt(errors / deviations);
}

/**
 * Water flow through a borehole, 8 inputs scaled to [0, 1].
 * Harper, Gupta: Sensitivity/Uncertainty Analysis of a Borehole Scenario, BMI/ONWI-516, 1983.
 */
inline double borehole(const double* x)
{
    const auto at = [x](int i, double low, double high) { return low + x[i] * (high - low); };
    const double rw = at(0, 0.05, 0.15);
    const double r = at(1, 100, 50000);
    const double tu = at(2, 63070, 115600);
    const double hu = at(3, 990, 1110);
    const double tl = at(4, 63.1, 116);
    const double hl = at(5, 700, 820);
    const double l = at(6, 1120, 1680);
    const double kw = at(7, 9855, 12045);
    const double logarithm = std::log(r / rw);
    return 2 * 3.14159265358979323846 * tu * (hu - hl) /
           (logarithm * (1 + 2 * l * tu / (logarithm * rw * rw * kw) + tu / tl));
}

/** The values of borehole() at the rows of 8 columns. */
inline std::vector<double> boreholeColumn(const std::vector<std::vector<double>>& inputs)
{
    std::vector<double> result(inputs.front().size());
    double point[8];
    for (std::size_t r = 0; r < result.size(); ++r) {
        for (std::size_t i = 0; i < 8; ++i) {
            point[i] = inputs[i][r];
        }
        result[r] = borehole(point);
    }
    return result;
}
