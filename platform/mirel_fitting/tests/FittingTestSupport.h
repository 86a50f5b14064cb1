#pragma once

#include <mirel_fitting/ColumnPointers.h>
#include <mirel_fitting/SurrogateModelInterface.h>

#include "UniformNumbers.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace fittingtest {

using Column = std::vector<double>;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

/** Cases as models take them; the pointers are good while this object is unchanged. */
struct Cases
{
    std::vector<Column> inputs;
    std::vector<Column> outputs;

    std::vector<double*> inputPointers() { return pointersTo(inputs); }
    std::vector<double*> outputPointers() { return pointersTo(outputs); }
    std::size_t count() const { return outputs.at(0).size(); }
};

class Random : public UniformNumbers
{
public:
    using UniformNumbers::UniformNumbers;

    Column column(std::size_t count, double from, double to)
    {
        Column values(count);
        std::generate(values.begin(), values.end(), [&] { return next(from, to); });
        return values;
    }
};

/** The text of the model error that the action ends with; empty if there is none. */
template <typename Action>
std::string errorOf(const Action& action)
{
    try {
        action();
    } catch (const SurrogateModelInterface::Error& error) {
        return error.what();
    }
    return "";
}

/** One output at the points. */
inline Column predict(const SurrogateModelInterface& model, std::vector<Column> points,
                      int offset = 0)
{
    Column values(points.empty() ? 1 : points[0].size(), -99.0);
    std::vector<double*> outputs{values.data()};
    model.interpolateDependentValues(pointersTo(points), {offset}, outputs, values.size());
    return values;
}

inline double largestDifference(const Column& a, const Column& b)
{
    double largest = 0.0;
    for (std::size_t k = 0; k < a.size(); ++k) {
        largest = std::max(largest, std::fabs(a[k] - b[k]));
    }
    return largest;
}

/** 3 - 2 V1 + V2 + 0.5 V1^2 - V1 V2 + 2 V2^2, and something that no quadratic follows. */
inline double surface(double v1, double v2)
{
    return 3.0 - 2.0 * v1 + v2 + 0.5 * v1 * v1 - v1 * v2 + 2.0 * v2 * v2;
}

inline Cases twoInputs(std::size_t count, double noise)
{
    Random random(11);
    Cases cases{{random.column(count, 0.0, 4.0), random.column(count, -1.0, 2.0)}, {{}}};
    for (std::size_t k = 0; k < count; ++k) {
        cases.outputs[0].push_back(surface(cases.inputs[0][k], cases.inputs[1][k]) +
                                   noise * (random.next() - 0.5));
    }
    return cases;
}

} // namespace fittingtest
