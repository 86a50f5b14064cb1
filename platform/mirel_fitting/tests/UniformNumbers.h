#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

/** Numbers in [0, 1), the same on every machine. */
class UniformNumbers
{
public:
    explicit UniformNumbers(std::uint64_t seed) : generator(seed) {}

    double next() { return static_cast<double>(generator() >> 11) * 0x1.0p-53; }
    double next(double from, double to) { return from + (to - from) * next(); }

    std::vector<double> next(std::size_t count)
    {
        std::vector<double> result(count);
        std::generate(result.begin(), result.end(), [this] { return next(); });
        return result;
    }

    /** Standard normal, by Box and Muller. */
    double normal()
    {
        const double radius = std::sqrt(-2.0 * std::log(1.0 - next()));
        return radius * std::cos(2.0 * std::acos(-1.0) * next());
    }

    std::mt19937_64 generator;
};
