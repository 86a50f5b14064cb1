#pragma once

#include "KrigingTestSupport.h"

#include <mirel_fitting/kriging/fit/KrigingFitInput.h>
#include <mirel_fitting/kriging/fit/KrigingFitter.h>
#include <mirel_fitting/kriging/report/KrigingTexts.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

inline double wave(const std::vector<double>& x)
{
    return std::sin(6.0 * x[0]) + (x.size() > 1 ? x[1] * x[1] : 0.0);
}

/** The values with normal noise. */
inline std::vector<double> noisy(std::vector<double> values, double deviation, std::uint64_t seed)
{
    UniformNumbers numbers(seed);
    for (double& value : values) {
        value += deviation * numbers.normal();
    }
    return values;
}

inline KrigingFitOptions withTrend(int order, std::vector<double> fixedLengths = {})
{
    KrigingFitOptions options;
    options.trendOrder = order;
    options.correlationLengths = std::move(fixedLengths);
    return options;
}

inline KrigingFitOptions withFixedNugget(double nugget, KrigingFitOptions options)
{
    options.nugget = nugget;
    options.nuggetMode = KrigingOptions::NuggetMode::Fixed;
    return options;
}

/** Cases and options, as the steps of a fit take them. */
struct FitProblem
{
    FitProblem(Columns points, std::vector<double> values, const KrigingFitOptions& wanted)
        : inputs(std::move(points)), output(std::move(values)), options(wanted)
    {}

    Columns inputs;
    std::vector<double> output;
    KrigingFitOptions options;
    KrigingCases cases{pointersTo(inputs), output.size()};
    KrigingFitInput input{cases, output, options, OutputScale::of(output)};
};

inline KrigingFit fitOf(Columns inputs, const std::vector<double>& output,
                        const KrigingFitOptions& options = withTrend(0))
{
    const KrigingCases cases(pointersTo(inputs), output.size());
    return fitKriging(cases, output, options);
}

inline double valueAt(const KrigingFit& fit, std::vector<double> point)
{
    std::vector<double*> columns;
    columns.reserve(point.size());
    for (double& coordinate : point) {
        columns.push_back(&coordinate);
    }
    double value = 0.0;
    fit.predictor.predict(columns, 0, 1, &value);
    return value;
}

inline bool warns(const KrigingFit& fit, const std::string& sentence)
{
    const std::vector<std::string> warnings = KrigingTexts::warnings(fit);
    return std::find(warnings.begin(), warnings.end(), sentence) != warnings.end();
}
