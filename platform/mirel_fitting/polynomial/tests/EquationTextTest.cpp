#include <mirel_fitting/polynomial/EquationText.h>

#include "EquationEvaluator.h"

#include <gtest/gtest.h>

#include <limits>

using namespace fittingtest;

namespace {

std::string written(const QuadraticBasis& basis, const std::vector<double>& expanded,
                    const std::vector<char>& isWritten = {})
{
    return equationText(basis, {expanded, 0.0, {}, {}, isWritten}, 1.0, 0.0);
}

} // namespace

TEST(EquationText, ReadsLikeAFormula)
{
    EXPECT_EQ(written(QuadraticBasis(2, 2), {5.5, -1.25, 2.0, 0.1, 0.5, -3.0}),
              "5.5 - 1.25 * V1 + 2 * V2 + 0.1 * V1^2 + 0.5 * V1 * V2 - 3 * V2^2");
    EXPECT_EQ(written(QuadraticBasis(1, 1), {-2.0, 1.0}), "-2 + 1 * V1");
    EXPECT_EQ(written(QuadraticBasis(1, 1), {-0.0, -0.0}), "0 + 0 * V1");
}

TEST(EquationText, LeavesDroppedTermsOut)
{
    EXPECT_EQ(written(QuadraticBasis(2, 1), {1.0, 0.0, 3.0}, {1, 0, 1}), "1 + 3 * V2");
}
TEST(EquationText, WritesCentredInputsWithTheSignOfTheCentre)
{
    const QuadraticBasis basis(3, 2);
    const EquationForms forms = {
        std::vector<double>(10, 1.0), 1e-8, {0, 2, 3, 4, 5, 6, 7, 8, 9, 10}, {42.5, -6.0, 0.0}, {}};
    EXPECT_EQ(equationText(basis, forms, 1.0, 1.0),
              "1 + 2 * (V1 - 42.5) + 3 * (V2 + 6) + 4 * V3 + 5 * (V1 - 42.5)^2"
              " + 6 * (V1 - 42.5) * (V2 + 6) + 7 * (V1 - 42.5) * V3 + 8 * (V2 + 6)^2"
              " + 9 * (V2 + 6) * V3 + 10 * V3^2");
}

TEST(EquationText, IsInTheInputsThemselvesUnlessThatRoundsAwayABillionthOfTheRange)
{
    const QuadraticBasis basis(1, 1);
    const EquationForms forms = {{3.0, 2.0}, 1e-8, {5.0, 2.0}, {1.0}, {}};
    EXPECT_EQ(equationText(basis, forms, 10.0, 0.5), "3.5 + 2 * V1");
    EXPECT_EQ(equationText(basis, forms, 9.9, 0.5), "5.5 + 2 * (V1 - 1)");
    EXPECT_EQ(equationText(basis, forms, std::numeric_limits<double>::quiet_NaN(), 0.5),
              "5.5 + 2 * (V1 - 1)");
}

TEST(EquationText, CoefficientsReadBackAsTheSameDouble)
{
    const QuadraticBasis constant(0, 0);
    for (const double value : {0.1, 1.0 / 3.0, 1e22, 6.02214076e23, 5e-324, 123456789.123456789,
                               std::numeric_limits<double>::max()}) {
        EXPECT_EQ(EquationEvaluator(written(constant, {value}) + "\n", {}).value(), value);
    }
}

TEST(EquationTextEvaluator, KnowsThePrecedenceOfOperations)
{
    EXPECT_EQ(EquationEvaluator("-2 - 3 * V1^2 + 4 * (V2 - 1.5) * V1\n", {2.0, 2.5}).value(), -6.0);
    EXPECT_THROW(EquationEvaluator("1 + V1", {2.0}).value(), std::runtime_error);
    EXPECT_THROW(EquationEvaluator("1 + V1 V1\n", {2.0}).value(), std::runtime_error);
}
