#include <mirel_fitting/polynomial/EquationText.h>

#include "EquationEvaluator.h"

#include <gtest/gtest.h>

#include <limits>

using namespace fittingtest;

TEST(EquationText, ReadsLikeAFormulaAndEndsTheLine)
{
    const QuadraticBasis basis(2, 2);
    EXPECT_EQ(EquationText(basis).write({5.5, -1.25, 2.0, 0.1, 0.5, -3.0}),
              "5.5 - 1.25 * V1 + 2 * V2 + 0.1 * V1^2 + 0.5 * V1 * V2 - 3 * V2^2\n");
    EXPECT_EQ(EquationText(QuadraticBasis(1, 1)).write({-2.0, 1.0}), "-2 + 1 * V1\n");
    EXPECT_EQ(EquationText(QuadraticBasis(1, 1)).write({-0.0, -0.0}), "0 + 0 * V1\n");
}

TEST(EquationText, LeavesDroppedTermsOut)
{
    const QuadraticBasis basis(2, 1);
    EquationText text(basis);
    text.leaveOut(1);
    EXPECT_EQ(text.write({1.0, 0.0, 3.0}), "1 + 3 * V2\n");
}

TEST(EquationText, WritesCentredInputsWithTheSignOfTheCentre)
{
    const QuadraticBasis basis(3, 2);
    const EquationText::Forms forms = {
        std::vector<double>(10, 1.0), 1e-8, {0, 2, 3, 4, 5, 6, 7, 8, 9, 10}, {42.5, -6.0, 0.0}};
    EXPECT_EQ(EquationText(basis).write(forms, 1.0, 1.0),
              "1 + 2 * (V1 - 42.5) + 3 * (V2 + 6) + 4 * V3 + 5 * (V1 - 42.5)^2"
              " + 6 * (V1 - 42.5) * (V2 + 6) + 7 * (V1 - 42.5) * V3 + 8 * (V2 + 6)^2"
              " + 9 * (V2 + 6) * V3 + 10 * V3^2\n");
}

TEST(EquationText, IsInTheInputsThemselvesUnlessThatRoundsAwayABillionthOfTheRange)
{
    const QuadraticBasis basis(1, 1);
    const EquationText::Forms forms = {{3.0, 2.0}, 1e-8, {5.0, 2.0}, {1.0}};
    EXPECT_EQ(EquationText(basis).write(forms, 10.0, 0.5), "3.5 + 2 * V1\n");
    EXPECT_EQ(EquationText(basis).write(forms, 9.9, 0.5), "5.5 + 2 * (V1 - 1)\n");
    EXPECT_EQ(EquationText(basis).write(forms, std::numeric_limits<double>::quiet_NaN(), 0.5),
              "5.5 + 2 * (V1 - 1)\n");
}

TEST(EquationText, CoefficientsReadBackAsTheSameDouble)
{
    const QuadraticBasis constant(0, 0);
    for (const double value : {0.1, 1.0 / 3.0, 1e22, 6.02214076e23, 5e-324, 123456789.123456789,
                               std::numeric_limits<double>::max()}) {
        EXPECT_EQ(EquationEvaluator(EquationText(constant).write({value}), {}).value(), value);
    }
}

TEST(EquationTextEvaluator, KnowsThePrecedenceOfOperations)
{
    EXPECT_EQ(EquationEvaluator("-2 - 3 * V1^2 + 4 * (V2 - 1.5) * V1\n", {2.0, 2.5}).value(), -6.0);
    EXPECT_THROW(EquationEvaluator("1 + V1", {2.0}).value(), std::runtime_error);
    EXPECT_THROW(EquationEvaluator("1 + V1 V1\n", {2.0}).value(), std::runtime_error);
}
