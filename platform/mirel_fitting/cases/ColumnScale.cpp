#include <mirel_fitting/cases/ColumnScale.h>

#include <mirel_fitting/machine/SimdLanes.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

struct Extremes
{
    double lowest;
    double highest;
};

/** Eight independent lanes hide the latency of a comparison. */
SURROGATE_SIMD Extremes extremesOf(const double* values, std::size_t count)
{
    constexpr std::size_t lanes = 8;
    double low[lanes];
    double high[lanes];
    std::fill_n(low, lanes, values[0]);
    std::fill_n(high, lanes, values[0]);
    std::size_t k = 0;
    for (; k + lanes <= count; k += lanes) {
        for (std::size_t lane = 0; lane < lanes; ++lane) {
            const double value = values[k + lane];
            low[lane] = value < low[lane] ? value : low[lane];
            high[lane] = value > high[lane] ? value : high[lane];
        }
    }
    for (; k < count; ++k) {
        low[0] = std::min(low[0], values[k]);
        high[0] = std::max(high[0], values[k]);
    }
    return {*std::min_element(low, low + lanes), *std::max_element(high, high + lanes)};
}

SURROGATE_SIMD void scaleValues(const double* values, std::size_t count, double centre,
                                double perUnit, double* scaled)
{
    for (std::size_t k = 0; k < count; ++k) {
        scaled[k] = (values[k] - centre) * perUnit;
    }
}

} // namespace

ColumnScale::ColumnScale(const double* values, std::size_t count)
{
    const Extremes extremes = extremesOf(values, count);
    lowest = extremes.lowest;
    highest = extremes.highest;
    if (lowest == highest) {
        middle = lowest;
        return;
    }
    // Halved before they are combined: the range of finite values may itself overflow.
    middle = lowest / 2.0 + highest / 2.0;
    const double halfRange = highest / 2.0 - lowest / 2.0;
    // Kept where the unit and its reciprocal are both normal numbers.
    constexpr int largestExponent = 1000;
    int exponent = 0;
    const double mantissa = std::frexp(halfRange, &exponent);
    if (mantissa == 0.5) {
        --exponent;
    }
    scale = std::ldexp(1.0, std::clamp(exponent, -largestExponent, largestExponent));
}

double ColumnScale::largest() const
{
    return std::max(std::fabs(lowest), std::fabs(highest));
}

bool ColumnScale::isConstantUpToRounding() const
{
    constexpr double fewUnits = 4.0 * std::numeric_limits<double>::epsilon();
    return spread() <= fewUnits * largest();
}

double ColumnScale::rounding() const
{
    return std::numeric_limits<double>::epsilon() / 2.0 * (largest() / scale);
}

void ColumnScale::apply(const double* values, std::size_t count, double* scaled) const
{
    scaleValues(values, count, middle, 1.0 / scale, scaled);
}
