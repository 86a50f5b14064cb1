// Fits of many cases, which take the normal equations where the terms are clearly separable. Naming
// all terms makes the same fit rotate its factor from the cases.
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>
#include <mirel_fitting/ThreadCount.h>
#include <mirel_fitting/polynomial/PolynomialFit.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace fittingtest;

namespace {

/** Two outputs that are almost quadratic functions of four inputs, far from the origin. */
Cases many(std::size_t count, double noise)
{
    Random random(21);
    Cases cases{{random.column(count, 1000.0, 1003.0), random.column(count, -1e-6, 2e-6),
                 random.column(count, 0.0, 1.0), random.column(count, 5.0, 5.5)},
                {Column(count), Column(count)}};
    for (std::size_t k = 0; k < count; ++k) {
        const double a = cases.inputs[0][k] - 1001.0;
        const double b = 1e6 * cases.inputs[1][k];
        const double c = cases.inputs[2][k];
        const double d = cases.inputs[3][k];
        cases.outputs[0][k] = 3.0 + a - 2.0 * b * c + d * d + noise * (random.next() - 0.5);
        cases.outputs[1][k] = 1e9 * (a * b - c + noise * (random.next() - 0.5));
    }
    return cases;
}

PolynomialFit byNormalEquations(Cases cases, int order = 2)
{
    return {QuadraticBasis(cases.inputs.size(), order), cases.inputPointers(),
            cases.outputPointers(), cases.count()};
}

PolynomialFit byRotations(Cases cases, int order = 2)
{
    const QuadraticBasis basis(cases.inputs.size(), order);
    return {basis, cases.inputPointers(), cases.outputPointers(), cases.count(),
            std::vector<char>(basis.size(), 1)};
}

/** Sum of squares of a coefficient's variance over the directions, per term. */
std::vector<double> variancesOf(const PolynomialFit& fit)
{
    std::vector<double> variances(fit.basis().size(), 0.0);
    for (std::size_t k = 0; k < fit.keptCount(); ++k) {
        const std::vector<double> direction = fit.coefficientDirection(k);
        for (std::size_t term = 0; term < variances.size(); ++term) {
            variances[term] += direction[term] * direction[term];
        }
    }
    return variances;
}

void expectSame(const PolynomialFit& fit, const PolynomialFit& reference)
{
    ASSERT_EQ(fit.keptCount(), reference.keptCount());
    for (std::size_t output = 0; output < fit.outputs().size(); ++output) {
        const PolynomialFit::Output& one = fit.outputs()[output];
        const PolynomialFit::Output& other = reference.outputs()[output];
        const double unit = one.scale.unit();
        for (std::size_t term = 0; term < one.coefficients.size(); ++term) {
            EXPECT_NEAR(one.coefficients[term], other.coefficients[term], 2e-14 * unit);
        }
        EXPECT_NEAR(one.totalSquares, other.totalSquares, 1e-13 * other.totalSquares);
        EXPECT_NEAR(one.residualSquares, other.residualSquares, 1e-12 * other.residualSquares);
        EXPECT_NEAR(one.press, other.press, 1e-12 * other.press);
        EXPECT_LT(largestDifference(one.residuals, other.residuals), 2e-14);
        EXPECT_EQ(one.values, other.values);
    }
    EXPECT_LT(largestDifference(fit.leverages(), reference.leverages()), 1e-15);
    const std::vector<double> variances = variancesOf(fit);
    const std::vector<double> expected = variancesOf(reference);
    for (std::size_t term = 0; term < variances.size(); ++term) {
        EXPECT_NEAR(variances[term], expected[term], 1e-12 * expected[term]);
    }
}

/** Whether the factor is that of the normal equations, where all terms keep their order: in a
 *  rotated one squares stand before products. */
bool tookNormalEquations(const PolynomialFit& fit)
{
    return fit.basis().order() == 2 && fit.keptCount() == fit.basis().size() &&
           fit.keptTerm(fit.basis().inputs() + 2) == fit.basis().inputs() + 2;
}

} // namespace

TEST(NormalEquations, GiveTheFitThatRotationsGive)
{
    // The last block of rows is full, partly full, or a single row.
    for (const std::size_t count : {8192, 5000, 8193}) {
        const Cases cases = many(count, 0.1);
        const PolynomialFit fit = byNormalEquations(cases);

        EXPECT_TRUE(tookNormalEquations(fit));
        expectSame(fit, byRotations(cases));
    }
    expectSame(byNormalEquations(many(5000, 0.1), 1), byRotations(many(5000, 0.1), 1));
}

TEST(NormalEquations, RegainTheDigitsThatTheSquaredConditionNumberCosts)
{
    // Two inputs that are as near to each other as the normal equations take, and exact data.
    // Unrefined, the coefficients are off by 1e-12.
    Cases cases = many(6000, 0.0);
    for (std::size_t k = 0; k < cases.count(); ++k) {
        const double c = cases.inputs[2][k];
        const double d = c + 0.4 * (cases.inputs[3][k] - 5.25);
        cases.inputs[3][k] = d;
        cases.outputs[0][k] = 1.0 + c - 2.0 * d + c * d;
    }

    const PolynomialFit fit = byNormalEquations(cases);

    EXPECT_TRUE(tookNormalEquations(fit));
    const PolynomialFit reference = byRotations(cases);
    const double unit = fit.outputs()[0].scale.unit();
    EXPECT_LT(largestDifference(fit.outputs()[0].coefficients, reference.outputs()[0].coefficients),
              2e-14 * unit);
}

TEST(NormalEquations, LeaveTermsThatAreHardToSeparateToRotations)
{
    // Almost the same input twice.
    Cases cases = many(5000, 0.1);
    for (std::size_t k = 0; k < cases.count(); ++k) {
        cases.inputs[3][k] = cases.inputs[2][k] + 1e-4 * (cases.inputs[3][k] - 5.25);
    }
    const PolynomialFit fit = byNormalEquations(cases);

    EXPECT_FALSE(tookNormalEquations(fit));
    EXPECT_EQ(fit.outputs()[0].coefficients, byRotations(cases).outputs()[0].coefficients);
}

TEST(NormalEquations, LeaveTermsThatCannotBeSeparatedToRotations)
{
    Cases cases = many(5000, 0.1);
    for (std::size_t k = 0; k < cases.count(); ++k) {
        cases.inputs[0][k] = cases.inputs[0][k] > 1001.5 ? 7.0 : 3.0;
        cases.inputs[2][k] = 4.0;
    }
    const SurrogateResponseSurfaceModel model(cases.inputPointers(), cases.outputPointers(),
                                              cases.count());

    EXPECT_EQ(model.fitWarnings(0),
              (std::vector<std::string>{
                  "V3 is the same in every case and was left out, and with it V1 V3, V2 V3, V3^2 "
                  "and V3 V4.",
                  "V1^2 cannot be separated from V1 by these cases and was left out."}));
}
