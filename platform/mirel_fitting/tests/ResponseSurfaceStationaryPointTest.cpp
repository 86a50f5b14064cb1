#include "ResponseSurfaceTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <vector>

using namespace fittingtest;

namespace {

using Nature = StationaryPoint::Nature;

/** The stationary point of a quadratic function of two inputs at a grid over [0, 10] x [0, 10]. */
std::optional<StationaryPoint> stationaryPointOf(double (*function)(double, double))
{
    Cases cases{{{}, {}}, {{}}};
    for (int i = 0; i < 25; ++i) {
        cases.inputs[0].push_back(2.5 * (i % 5));
        cases.inputs[1].push_back(2.5 * static_cast<double>(i / 5));
        cases.outputs[0].push_back(function(cases.inputs[0].back(), cases.inputs[1].back()));
    }
    return statisticsOf(cases).stationaryPoint;
}

} // namespace

TEST(ResponseSurfaceStationaryPoint, IsAMinimumInsideTheData)
{
    const auto point = stationaryPointOf([](double x, double y) {
        return 7.0 + (x - 4.0) * (x - 4.0) + 2.0 * (y - 5.0) * (y - 5.0);
    });

    ASSERT_TRUE(point.has_value());
    EXPECT_EQ(point->nature, Nature::Minimum);
    EXPECT_TRUE(point->isInsideData);
    EXPECT_NEAR(point->coordinates[0], 4.0, 1e-12);
    EXPECT_NEAR(point->coordinates[1], 5.0, 1e-12);
    EXPECT_NEAR(point->value, 7.0, 1e-11);
    // In coded inputs half the range, 5, is 1.
    EXPECT_NEAR(point->curvatures[0], 25.0, 1e-11);
    EXPECT_NEAR(point->curvatures[1], 50.0, 1e-11);
}

TEST(ResponseSurfaceStationaryPoint, IsAMaximumOutsideTheData)
{
    const auto point = stationaryPointOf(
        [](double x, double y) { return -(x - 4.0) * (x - 4.0) - (y - 11.0) * (y - 11.0); });

    ASSERT_TRUE(point.has_value());
    EXPECT_EQ(point->nature, Nature::Maximum);
    EXPECT_FALSE(point->isInsideData);
}

TEST(ResponseSurfaceStationaryPoint, IsASaddleOfAProduct)
{
    const auto point = stationaryPointOf([](double x, double y) { return (x - 3.0) * (y - 6.0); });

    ASSERT_TRUE(point.has_value());
    EXPECT_EQ(point->nature, Nature::Saddle);
    EXPECT_NEAR(point->coordinates[0], 3.0, 1e-11);
    EXPECT_NEAR(point->coordinates[1], 6.0, 1e-11);
}

TEST(ResponseSurfaceStationaryPoint, IsARidgeWhereADirectionHasNoCurvature)
{
    const auto point =
        stationaryPointOf([](double x, double y) { return (x + y - 8.0) * (x + y - 8.0); });

    ASSERT_TRUE(point.has_value());
    EXPECT_EQ(point->nature, Nature::Ridge);
    EXPECT_EQ(point->curvatures[0], 0.0);
    // The point of the ridge that is nearest to the middle.
    EXPECT_NEAR(point->coordinates[0], 4.0, 1e-11);
    EXPECT_NEAR(point->coordinates[1], 4.0, 1e-11);
}

TEST(ResponseSurfaceStationaryPoint, LeavesOutAnInputThatThePolynomialDoesNotHave)
{
    Cases cases = twoInputs(40, 1.0);
    std::fill(cases.inputs[0].begin(), cases.inputs[0].end(), 5.0);
    const ResponseSurfaceStatistics statistics = statisticsOf(cases);

    ASSERT_TRUE(statistics.stationaryPoint.has_value());
    EXPECT_TRUE(std::isnan(statistics.stationaryPoint->coordinates[0]));
    EXPECT_TRUE(std::isfinite(statistics.stationaryPoint->coordinates[1]));
    EXPECT_TRUE(std::isfinite(statistics.stationaryPoint->value));
}

TEST(ResponseSurfaceStationaryPoint, IsNoneWhereTheFunctionRisesWithoutCurvature)
{
    EXPECT_FALSE(stationaryPointOf([](double x, double y) {
                     return (x - 4.0) * (x - 4.0) + y;
                 }).has_value());
}

TEST(ResponseSurfaceStationaryPoint, IsNoneOfALinearFunction)
{
    EXPECT_FALSE(stationaryPointOf([](double x, double y) { return x - 2.0 * y; }).has_value());
    EXPECT_FALSE(statisticsOf(twoInputs(40, 1.0), 1).stationaryPoint.has_value());
}
