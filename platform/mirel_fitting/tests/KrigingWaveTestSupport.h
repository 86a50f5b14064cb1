#pragma once

#include "KrigingTestSupport.h"

#include <cmath>
#include <limits>
#include <vector>

namespace wavetest {

const double notANumber = std::numeric_limits<double>::quiet_NaN();

inline double wave(const std::vector<double>& x)
{
    return std::sin(4.0 * x[0]) + x[0] * x[1] + 0.3 * std::cos(6.0 * x[1]);
}

/** Twelve cases of `wave`, with given lengths and nugget. */
struct Given
{
    KrigingSurrogateModel model(int trendOrder, double nugget) const
    {
        KrigingArguments arguments;
        arguments.correlationLengths = lengths;
        arguments.trendOrder = trendOrder;
        arguments.nugget = nugget;
        arguments.nuggetMode = KrigingOptions::NuggetMode::Fixed;
        return arguments.model(inputs, {valuesOf(wave, inputs)});
    }

    Columns inputs = latinHypercube(12, 2, 3);
    std::vector<double> lengths = {0.4, 0.9};
};

const Columns somePoints = {{0.1, 0.5, 0.93, 1.7, -3.0}, {0.2, 0.6, 0.01, 0.5, 9.0}};

inline Columns gradients(const KrigingSurrogateModel& model, Columns points)
{
    return model.gradients(pointersTo(points), 0, points[0].size());
}

} // namespace wavetest
