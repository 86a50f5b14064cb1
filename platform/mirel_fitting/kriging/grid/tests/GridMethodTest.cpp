#include <mirel_fitting/kriging/grid/GridMethod.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

#include <functional>
#include <numeric>

namespace {

using Kind = GridMethod::Kind;

/** The estimates need the numbers of inputs and cases only. */
FittedKriging modelOf(std::size_t inputs, std::size_t cases)
{
    FittedKriging model;
    model.inputs.resize(inputs);
    std::iota(model.inputs.begin(), model.inputs.end(), std::size_t{0});
    model.weights.assign(cases, 1.0);
    model.correlation = std::make_shared<MaternCorrelation>(
        cases, inputs, std::vector<double>(cases * inputs, 0.5).data());
    return model;
}

/** The first column is the fastest. */
ProductGrid gridOf(const std::vector<std::size_t>& sizes)
{
    const std::size_t rows =
        std::accumulate(sizes.begin(), sizes.end(), std::size_t{1}, std::multiplies<>());
    Columns columns;
    std::size_t stride = 1;
    for (const std::size_t size : sizes) {
        std::vector<double> column(rows);
        for (std::size_t i = 0; i < rows; ++i) {
            column[i] = static_cast<double>(i / stride % size);
        }
        columns.push_back(std::move(column));
        stride *= size;
    }
    return ProductGrid::split(pointersTo(columns), rows).front();
}

GridMethod cheapestOf(const std::vector<std::size_t>& sizes, std::size_t cases)
{
    return GridMethod::cheapest(modelOf(sizes.size(), cases), gridOf(sizes));
}

} // namespace

TEST(GridMethod, SumsAlongTheLongAxisAndMultipliesGroupsOfShortOnes)
{
    const GridMethod method = cheapestOf({6, 2000}, 200);

    EXPECT_EQ(method.kind, Kind::AxisSums);
    EXPECT_EQ(method.axis, 1u);
    EXPECT_EQ(cheapestOf({1000}, 200).kind, Kind::AxisSums);
    EXPECT_EQ(cheapestOf({3, 3, 3, 3, 3, 3}, 200).kind, Kind::MatrixProduct);
    EXPECT_EQ(GridMethod::fastAxes(gridOf({4, 5, 20})), 2u); // 20 and 20
}

TEST(GridMethod, TakesPointByPointWhatIsNoGridOfMany)
{
    EXPECT_EQ(cheapestOf({50}, 60).kind, Kind::Scattered);
    EXPECT_EQ(cheapestOf({2, 2}, 60).kind, Kind::Scattered);
    EXPECT_NE(cheapestOf({20, 20}, 60).kind, Kind::Scattered);
    EXPECT_NE(cheapestOf({5000}, 60).kind, Kind::Scattered);

    Columns diagonal(2, std::vector<double>(5000));
    for (std::size_t i = 0; i < 5000; ++i) {
        diagonal[0][i] = diagonal[1][i] = static_cast<double>(i);
    }
    const ProductGrid grid = ProductGrid::split(pointersTo(diagonal), 5000).front();

    EXPECT_EQ(GridMethod::cheapest(modelOf(2, 60), grid).kind, Kind::Scattered);

    FittedKriging trendAlone = modelOf(2, 60);
    trendAlone.correlation = nullptr;

    EXPECT_EQ(GridMethod::cheapest(trendAlone, gridOf({20, 20})).kind, Kind::Scattered);
}
