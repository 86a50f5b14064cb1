#include <mirel_fitting/responsesurface/RidgeAnalysis.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

void expectPoint(const std::vector<double>& found, const std::vector<double>& expected)
{
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t k = 0; k < found.size(); ++k) {
        EXPECT_NEAR(found[k], expected[k], 1e-14) << k;
    }
}

} // namespace

TEST(RidgeAnalysis, BeginsInTheMiddleAndFollowsTheGradientWhereTheCurvaturesAreEqual)
{
    expectPoint(RidgeAnalysis({1.0, 2.0}, {3.0, 4.0}).largest(0.0), {0.0, 0.0});
    for (const double curvature : {-2.0, 0.0, 7.0}) {
        expectPoint(RidgeAnalysis({curvature, curvature}, {3.0, 4.0}).largest(0.5), {0.3, 0.4});
    }
}

TEST(RidgeAnalysis, HasTheMultiplierOfItsLength)
{
    // With m = 4: w = 6 / (2 * 3), 4 / (2 * 2), squares 1 and 1.
    expectPoint(RidgeAnalysis({1.0, 2.0}, {6.0, 4.0}).largest(std::sqrt(2.0)), {1.0, 1.0});
    // A maximum inside the length: m = 0 is its value of the multiplier.
    expectPoint(RidgeAnalysis({-1.0, -2.0}, {2.0, 4.0}).largest(std::sqrt(2.0)), {1.0, 1.0});
}

TEST(RidgeAnalysis, LeavesASymmetryToItsPositiveSide)
{
    // At the multiplier 2 the other coordinate is 2 / (2 * 1) = 1; the rest of the length 2 is
    // along the direction without a slope.
    expectPoint(RidgeAnalysis({1.0, 2.0}, {2.0, 0.0}).largest(2.0), {1.0, std::sqrt(3.0)});
    expectPoint(RidgeAnalysis({3.0}, {0.0}).largest(1.0), {1.0});
}

TEST(RidgeAnalysis, KeepsItsLengthBesideASmallSlope)
{
    const std::vector<double> point = RidgeAnalysis({1.0, 2.0}, {2.0, 1e-12}).largest(2.0);

    EXPECT_NEAR(point[0] * point[0] + point[1] * point[1], 4.0, 1e-13);
    EXPECT_GT(point[1], 1.7);
}
