#pragma once

#include "KrigingTestSupport.h"

#include <mirel_fitting/kriging/fit/KrigingFitter.h>
#include <mirel_fitting/kriging/report/KrigingTexts.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

inline double wave(const std::vector<double>& x)
{
    return std::sin(6.0 * x[0]) + (x.size() > 1 ? x[1] * x[1] : 0.0);
}

inline KrigingFitOptions withTrend(int order)
{
    KrigingFitOptions options;
    options.trendOrder = order;
    return options;
}

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
