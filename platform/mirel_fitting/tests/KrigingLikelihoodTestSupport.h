#pragma once

#include <mirel_fitting/cases/KrigingData.h>

#include "KrigingTestSupport.h"

#include <memory>

inline const std::vector<double> someLengths = {0.4, 1.5};
inline constexpr double someNugget = 1e-3;

/** Cases with a linear trend. */
inline std::shared_ptr<KrigingData> someData(std::size_t cases)
{
    UniformNumbers numbers(11);
    auto data = std::make_shared<KrigingData>();
    data->cases = cases;
    data->inputs = 2;
    data->terms = 3;
    data->coordinates = numbers.next(2 * cases);
    data->trend.assign(cases, 1.0);
    data->trend.insert(data->trend.end(), data->coordinates.begin(), data->coordinates.end());
    for (std::size_t i = 0; i < cases; ++i) {
        const double x = data->coordinates[i];
        data->output.push_back(std::sin(7.0 * x) + data->coordinates[cases + i]);
    }
    data->replicates.assign(cases, 1.0);
    data->withinSquares.assign(cases, 0.0);
    return data;
}

/** The same cases row by row, without those in `left`. */
inline DirectKriging direct(const KrigingData& data, const std::vector<double>& lengths,
                            double nugget, std::size_t left = static_cast<std::size_t>(-1))
{
    DirectKriging::Matrix points;
    DirectKriging::Matrix trend;
    DirectKriging::Vector output;
    for (std::size_t i = 0; i < data.cases; ++i) {
        if (i == left) {
            continue;
        }
        points.emplace_back();
        trend.emplace_back();
        for (std::size_t k = 0; k < data.inputs; ++k) {
            points.back().push_back(data.coordinates[k * data.cases + i]);
        }
        for (std::size_t t = 0; t < data.terms; ++t) {
            trend.back().push_back(data.trend[t * data.cases + i]);
        }
        output.push_back(data.output[i]);
    }
    return DirectKriging(points, trend, output, lengths, nugget);
}
