#include <mirel_modelexport/TableSum.h>

#include <cmath>
#include <cstddef>

TableSum::TableSum(const std::vector<double>& numbers)
{
    constexpr std::size_t factors = 7; // 1 to 7 in turn, so that swapped numbers are found
    // Far above the rounding of a sum of many, in whatever order, and far below what matters.
    constexpr double relative = 1e-13;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const double term = numbers[i] * static_cast<double>(1 + i % factors);
        value += term;
        tolerance += relative * std::fabs(term);
    }
}
