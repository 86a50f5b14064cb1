#include <mirel_fitting/polynomial/PolynomialFit.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace fittingtest;

namespace {

PolynomialFit fit(Cases cases, int order = 2)
{
    return {QuadraticBasis(cases.inputs.size(), order), cases.inputPointers(),
            cases.outputPointers(), cases.count()};
}

} // namespace

TEST(PolynomialFit, KeepsCoefficientsOfScaledInputsAboutTheOutputsCentre)
{
    // z = (V1 - 10) / 8 and y = 100 + 3 z.
    const PolynomialFit result = fit({{{2, 6, 14, 18}}, {{97, 98.5, 101.5, 103}}}, 1);
    const PolynomialFit::Output& output = result.outputs()[0];

    EXPECT_EQ(result.inputScales()[0].centre(), 10.0);
    EXPECT_EQ(result.inputScales()[0].unit(), 8.0);
    EXPECT_EQ(output.scale.centre(), 100.0);
    EXPECT_NEAR(output.coefficients[0], 0.0, 1e-15);
    EXPECT_NEAR(output.coefficients[1], 3.0, 1e-14);
}

TEST(PolynomialFit, SumsSquaresInTheUnitsOfTheOutput)
{
    const PolynomialFit result = fit({{}, {{1.0, 2.0, 6.0}}}, 0);
    const PolynomialFit::Output& output = result.outputs()[0];
    const double unit = output.scale.unit();

    EXPECT_NEAR(output.totalSquares * unit * unit, 14.0, 1e-13);
    EXPECT_NEAR(output.residualSquares * unit * unit, 14.0, 1e-13);
    // Leaving one of three out moves the mean away by half the residual.
    EXPECT_NEAR(output.press * unit * unit, 14.0 * 2.25, 1e-13);

    const PolynomialFit ofFour = fit({{}, {{1.0, 2.0, 6.0, 7.0}}}, 0);
    ASSERT_EQ(ofFour.keptCount(), 1u);
    const std::vector<double> direction = ofFour.coefficientDirection(0);
    EXPECT_NEAR(direction[0] * direction[0], 0.25, 1e-15);
}

TEST(PolynomialFit, SumsSquaresAboutAMeanFarFromTheMiddle)
{
    // One value stands far off: almost all scaled outputs are -1.
    for (const std::size_t count : {1000, 5000}) {
        Cases cases{{Random(3).column(count, 0.0, 1.0)}, {Random(4).column(count, 5.0, 6.0)}};
        cases.outputs[0][77] = 1e7;
        double mean = 0.0;
        for (const double value : cases.outputs[0]) {
            mean += value / static_cast<double>(count);
        }
        double squares = 0.0;
        for (const double value : cases.outputs[0]) {
            squares += (value - mean) * (value - mean);
        }

        const PolynomialFit result = fit(cases);
        const double unit = result.outputs()[0].scale.unit();

        EXPECT_NEAR(result.outputs()[0].totalSquares * unit * unit, squares, 1e-12 * squares);
    }
}

TEST(PolynomialFit, CountsResidualDegreesOfFreedom)
{
    Cases cases = twoInputs(30, 1.0);
    EXPECT_EQ(fit(cases).degreesOfFreedom(), 24u);
    cases.inputs[0].assign(30, 5.0);
    const PolynomialFit result = fit(cases);
    EXPECT_EQ(result.keptCount(), 3u);
    EXPECT_EQ(result.degreesOfFreedom(), 27u);
    EXPECT_FALSE(result.isKept(1));
    EXPECT_TRUE(result.isKept(2));
}

TEST(PolynomialFit, HasLeveragesOfAtMostOne)
{
    // As many cases as terms: each determines itself, and rounding goes both ways.
    for (std::uint64_t seed = 1; seed <= 20; ++seed) {
        Random random(seed);
        Cases cases;
        cases.inputs = {random.column(6, 0.0, 1.0), random.column(6, 0.0, 1.0)};
        cases.outputs = {random.column(6, 0.0, 1.0)};
        const PolynomialFit result = fit(cases);

        for (const double leverage : result.leverages()) {
            EXPECT_LE(leverage, 1.0);
            EXPECT_NEAR(leverage, 1.0, 1e-9);
        }
    }
}

TEST(PolynomialFit, FitsNoOutputsToo)
{
    for (const std::size_t count : {30, 5000}) { // by rotations, and by normal equations
        Cases cases = twoInputs(count, 1.0);
        const PolynomialFit result(QuadraticBasis(2, 2), cases.inputPointers(), {}, count);
        EXPECT_EQ(result.keptCount(), 6u);
        EXPECT_TRUE(result.outputs().empty());
        EXPECT_EQ(result.leverages().size(), count);
    }
}
