#pragma once

#include "KrigingFitTestSupport.h"

// Fits of more cases than the exact model takes, with sizes that make a few hundred cases many.

inline KrigingFitOptions manyAreMoreThan(std::size_t maxExact)
{
    KrigingFitOptions options;
    options.trendOrder = 1;
    options.sizes.maxExact = maxExact;
    options.sizes.subset = 150;
    options.sizes.searched = 100;
    options.sizes.neighbours = 30;
    options.sizes.measured = 200;
    options.sizes.estimated = 100;
    return options;
}

inline std::vector<double> predicted(const KrigingFit& fit, Columns points)
{
    std::vector<double> values(points.front().size());
    fit.predictor.predict(pointersTo(points), 0, values.size(), values.data());
    return values;
}

/** Smooth, with one rough corner. */
inline double hill(const std::vector<double>& x)
{
    return std::sin(3.0 * x[0]) * x[1] + 1.0 / (0.05 + x[0] + x[2] * x[2]);
}

/** So smooth that cases far away matter. */
inline double bowl(const std::vector<double>& x)
{
    return std::exp(x[0] * x[1] + 0.5 * x[2]) + std::sin(x[2] + 2.0 * x[3]);
}

inline bool mentions(const KrigingFit& fit, const std::string& words)
{
    const std::vector<std::string> warnings = KrigingTexts::warnings(fit);
    return std::any_of(warnings.begin(), warnings.end(), [&](const std::string& text) {
        return text.find(words) != std::string::npos;
    });
}
