#include <mirel_fitting/cases/ColumnScale.h>

#include <algorithm>
#include <cmath>
#include <limits>

ColumnScale::ColumnScale(const double* values, std::size_t count)
{
    const auto [smallest, largest] = std::minmax_element(values, values + count);
    lowest = *smallest;
    highest = *largest;
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
    return spread() <= roundingOfConstant * largest();
}

double ColumnScale::rounding() const
{
    return std::numeric_limits<double>::epsilon() / 2.0 * (largest() / scale);
}

void ColumnScale::apply(const double* values, std::size_t count, double* scaled) const
{
    std::transform(values, values + count, scaled,
                   [origin = middle, perUnit = 1.0 / scale](double value) {
                       return (value - origin) * perUnit;
                   });
}
