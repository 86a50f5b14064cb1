#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <vector>

/** The values at these indices, in their order. */
template <class Value>
std::vector<Value> picked(const std::vector<Value>& values, const std::vector<std::size_t>& indices)
{
    std::vector<Value> result;
    result.reserve(indices.size());
    for (const std::size_t index : indices) {
        result.push_back(values[index]);
    }
    return result;
}

/** 0 of no values. */
inline double rootMeanSquare(const std::vector<double>& values)
{
    const double squares = std::inner_product(values.begin(), values.end(), values.begin(), 0.0);
    return std::sqrt(squares / static_cast<double>(std::max<std::size_t>(values.size(), 1)));
}
