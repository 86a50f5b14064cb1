#pragma once

#include <mirel_fitting/ThreadCount.h>
#include <mirel_fitting/kriging/grid/KrigingGrid.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace gridtest {

const double epsilon = std::numeric_limits<double>::epsilon();
const double notANumber = std::numeric_limits<double>::quiet_NaN();
const double infinity = std::numeric_limits<double>::infinity();

/** Made-up cases, weights and coefficients; one more column, the second, is no input. */
struct Model
{
    explicit Model(std::size_t inputs, int trendOrder = 2, std::size_t cases = 60)
    {
        const std::vector<double> coordinates = UniformNumbers(1).next(cases * inputs);
        std::vector<double> lengths;
        for (std::size_t k = 0; k < inputs; ++k) {
            fitted.inputs.push_back(k == 0 ? 0 : k + 1);
            fitted.minimum.push_back(static_cast<double>(k) - 1.0);
            fitted.range.push_back(2.0 + static_cast<double>(k));
            lengths.push_back(0.3 + 0.4 * static_cast<double>(k));
        }
        columnCount = inputs + 1;
        const auto trend =
            std::make_shared<KrigingTrend>(cases, inputs, coordinates, trendOrder, 0);
        UniformNumbers numbers(2);
        for (std::size_t t = 0; t < trend->size(); ++t) {
            fitted.coefficients.push_back(numbers.next() - 0.5);
        }
        for (std::size_t j = 0; j < cases; ++j) {
            fitted.weights.push_back(100.0 * (numbers.next() - 0.5));
        }
        fitted.trend = trend;
        auto correlation = std::make_shared<MaternCorrelation>(cases, inputs, coordinates.data());
        correlation->setLengths(lengths);
        fitted.correlation = correlation;
        fitted.offset = 10.0;
        fitted.scale = 3.0;
    }

    FittedKriging fitted;
    std::size_t columnCount;
};

/** `axes` name the columns in the order of their nesting, the slowest first; the others are 0.5. */
inline Columns gridOf(std::size_t columnCount,
                      const std::vector<std::pair<std::size_t, std::vector<double>>>& axes)
{
    std::size_t count = 1;
    for (const auto& axis : axes) {
        count *= axis.second.size();
    }
    Columns columns(columnCount, std::vector<double>(count, 0.5));
    std::size_t stride = count;
    for (const auto& axis : axes) {
        stride /= axis.second.size();
        for (std::size_t i = 0; i < count; ++i) {
            columns[axis.first][i] = axis.second[i / stride % axis.second.size()];
        }
    }
    return columns;
}

inline std::vector<double> evenly(std::size_t count, double from, double to)
{
    std::vector<double> result;
    for (std::size_t i = 0; i < count; ++i) {
        result.push_back(from +
                         (to - from) * static_cast<double>(i) / static_cast<double>(count - 1));
    }
    return result;
}

inline std::vector<double> scattered(const Model& model, Columns columns)
{
    std::vector<double> result(columns[0].size());
    KrigingPredictor(model.fitted).predict(pointersTo(columns), 0, result.size(), result.data());
    return result;
}

inline ProductGrid wholeGrid(const std::vector<double*>& columns, std::size_t count)
{
    const std::vector<ProductGrid> grids = ProductGrid::split(columns, count);
    EXPECT_EQ(grids.size(), 1u);
    return grids.front();
}

/** The matrix product, and the sums along each axis that they can run along. */
inline std::vector<GridMethod> possibleMethods(const Model& model, const ProductGrid& grid)
{
    std::vector<GridMethod> methods = {GridMethod::matrixProduct(model.fitted, grid)};
    for (std::size_t axis = 0; axis < grid.axes().size(); ++axis) {
        methods.push_back(GridMethod::axisSums(model.fitted, grid, axis));
    }
    methods.erase(
        std::remove_if(methods.begin(), methods.end(),
                       [](const GridMethod& method) { return !std::isfinite(method.cost); }),
        methods.end());
    return methods;
}

using Check = std::function<void(const std::vector<double>& predictions)>;

/** Predictions over the grid by each method that is possible for it. */
inline void forEachMethod(const Model& model, Columns columns, const Check& check)
{
    const std::vector<double*> pointers = pointersTo(columns);
    const ProductGrid grid = wholeGrid(pointers, columns[0].size());
    const std::vector<GridMethod> methods = possibleMethods(model, grid);
    ASSERT_FALSE(methods.empty());
    const KrigingPredictor predictor(model.fitted);
    for (const GridMethod& method : methods) {
        SCOPED_TRACE(method.kind == GridMethod::Kind::MatrixProduct
                         ? "matrix product"
                         : "sums along axis " + std::to_string(method.axis));
        std::vector<double> result(columns[0].size(), -77.0);
        predictGrid(predictor, pointers, grid, method, result.data());
        check(result);
    }
}

/** 4 eps sum |w_j c_j| and 1e-12 of the standard deviation. */
inline std::vector<double> tolerances(Model model, const Columns& columns)
{
    model.fitted.coefficients.assign(model.fitted.coefficients.size(), 0.0);
    model.fitted.offset = 0.0;
    for (double& weight : model.fitted.weights) {
        weight = std::fabs(weight);
    }
    std::vector<double> result = scattered(model, columns);
    for (double& value : result) {
        value = 4.0 * epsilon * value + 1e-12 * model.fitted.scale;
    }
    return result;
}

/** By each method: the scattered predictions, and NaN where a column is not finite. */
inline void expectTheScatteredPredictions(const Model& model, const Columns& columns)
{
    const std::vector<double> expected = scattered(model, columns);
    const std::vector<double> tolerance = tolerances(model, columns);
    forEachMethod(model, columns, [&](const std::vector<double>& found) {
        for (std::size_t i = 0; i < found.size(); ++i) {
            const bool isFinite =
                std::all_of(columns.begin(), columns.end(),
                            [i](const auto& column) { return std::isfinite(column[i]); });
            ASSERT_EQ(std::isnan(found[i]), !isFinite) << "row " << i;
            if (isFinite) {
                ASSERT_NEAR(found[i], expected[i], tolerance[i]) << "row " << i;
            }
        }
    });
}

/** By each method. */
inline void expectTheSameBitsForAnyNumberOfThreads(const Model& model, const Columns& columns)
{
    std::vector<std::vector<double>> byOne;
    std::vector<std::vector<double>> byThree;
    setThreadCount(1);
    forEachMethod(model, columns, [&](const auto& found) { byOne.push_back(found); });
    setThreadCount(3);
    forEachMethod(model, columns, [&](const auto& found) { byThree.push_back(found); });
    setThreadCount(0);

    EXPECT_EQ(byOne, byThree);
}

} // namespace gridtest
