#include <mirel_fitting/responsesurface/StationaryPointFinder.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>

using namespace fittingtest;

namespace {

PolynomialFit fit(Cases cases)
{
    return {QuadraticBasis(cases.inputs.size(), 2), cases.inputPointers(), cases.outputPointers(),
            cases.count()};
}

/** A function at the points of a 5 x 5 grid over [-2, 2]^2. */
Cases onGrid(double (*function)(double, double))
{
    Cases cases{{{}, {}}, {{}}};
    for (int i = -2; i <= 2; ++i) {
        for (int j = -2; j <= 2; ++j) {
            cases.inputs[0].push_back(i);
            cases.inputs[1].push_back(j);
            cases.outputs[0].push_back(function(i, j));
        }
    }
    return cases;
}

struct Found
{
    bool isCurved;
    std::optional<StationaryPoint> stationaryPoint;
};

Found stationary(double (*function)(double, double))
{
    const PolynomialFit surface = fit(onGrid(function));
    const StationaryPointFinder finder(surface, 0);
    return {finder.isCurved(), finder.find()};
}

} // namespace

TEST(StationaryPointFinder, FindsTheMinimumOfABowl)
{
    // Coded inputs are in units of half their range, 2: the curvatures 1 and 2 become 4 and 8.
    const Found found = stationary(
        [](double x, double y) { return (x - 1) * (x - 1) + 2 * (y + 1) * (y + 1) + 5; });

    ASSERT_TRUE(found.stationaryPoint);
    EXPECT_EQ(found.stationaryPoint->nature, StationaryPoint::Nature::Minimum);
    EXPECT_NEAR(found.stationaryPoint->coordinates[0], 1.0, 1e-12);
    EXPECT_NEAR(found.stationaryPoint->coordinates[1], -1.0, 1e-12);
    EXPECT_NEAR(found.stationaryPoint->value, 5.0, 1e-12);
    EXPECT_NEAR(found.stationaryPoint->curvatures[0], 4.0, 1e-12);
    EXPECT_NEAR(found.stationaryPoint->curvatures[1], 8.0, 1e-12);
    EXPECT_TRUE(found.stationaryPoint->isInsideData);
}

TEST(StationaryPointFinder, FindsTheSaddleOfAProductOutsideTheCases)
{
    const Found found = stationary([](double x, double y) { return (x - 3) * (y - 1); });

    ASSERT_TRUE(found.stationaryPoint);
    EXPECT_EQ(found.stationaryPoint->nature, StationaryPoint::Nature::Saddle);
    EXPECT_NEAR(found.stationaryPoint->coordinates[0], 3.0, 1e-12);
    EXPECT_NEAR(found.stationaryPoint->coordinates[1], 1.0, 1e-12);
    EXPECT_FALSE(found.stationaryPoint->isInsideData);
}

TEST(StationaryPointFinder, FindsNoneOnASlope)
{
    const Found found = stationary([](double x, double y) { return x * x + y; });

    EXPECT_TRUE(found.isCurved);
    EXPECT_FALSE(found.stationaryPoint);
    EXPECT_FALSE(stationary([](double x, double y) { return x + y; }).isCurved);
}

TEST(StationaryPointFinder, TakesTheMiddleOfARidge)
{
    // Stationary along the line x + y = 1; nearest to the middle of the ranges is (0.5, 0.5).
    const Found found = stationary([](double x, double y) { return (x + y - 1) * (x + y - 1); });

    ASSERT_TRUE(found.stationaryPoint);
    EXPECT_EQ(found.stationaryPoint->nature, StationaryPoint::Nature::Ridge);
    EXPECT_NEAR(found.stationaryPoint->coordinates[0], 0.5, 1e-12);
    EXPECT_NEAR(found.stationaryPoint->coordinates[1], 0.5, 1e-12);
    EXPECT_EQ(found.stationaryPoint->curvatures[0], 0.0);
}

TEST(StationaryPointFinder, LeavesOutAnInputThatThePolynomialDoesNotHave)
{
    Cases cases = onGrid([](double x, double) { return -x * x; });
    cases.inputs[1].assign(25, 3.0);
    const PolynomialFit surface = fit(cases);

    const std::optional<StationaryPoint> point = StationaryPointFinder(surface, 0).find();

    ASSERT_TRUE(point);
    EXPECT_EQ(point->nature, StationaryPoint::Nature::Maximum);
    EXPECT_NEAR(point->coordinates[0], 0.0, 1e-12);
    EXPECT_TRUE(std::isnan(point->coordinates[1]));
    EXPECT_NEAR(point->value, 0.0, 1e-12);
}
