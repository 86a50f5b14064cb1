#include <mirel_fitting/polynomial/PolynomialUnits.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace fittingtest;

namespace {

/** z1 = (V1 - 42) / 64, z2 = (V2 + 6) / 4. */
class PolynomialUnitsOfTwoInputs : public ::testing::Test
{
    const Column v1{4, 80};
    const Column v2{-10, -2};

protected:
    const QuadraticBasis basis{2, 2};
    const std::vector<ColumnScale> scales{{v1.data(), 2}, {v2.data(), 2}};
    const PolynomialUnits units{basis, scales};
};

double value(const std::vector<double>& c, double x, double y)
{
    return c[0] + c[1] * x + c[2] * y + c[3] * x * x + c[4] * x * y + c[5] * y * y;
}

const std::vector<double> scaled{1.5, -64.0, 4.0, 2048.0, 128.0, -32.0};

} // namespace

TEST_F(PolynomialUnitsOfTwoInputs, DividesByTheUnitsForCentredAndCodesRangesForCodedInputs)
{
    EXPECT_EQ(units.centred(scaled), (std::vector<double>{1.5, -1.0, 1.0, 0.5, 0.5, -2.0}));

    const std::vector<double> coded = units.coded(scaled);

    // -1 and 1 stand for 4 and 80, -10 and -2.
    EXPECT_DOUBLE_EQ(value(coded, -1.0, 1.0), value(scaled, (4.0 - 42.0) / 64.0, 1.0));
    EXPECT_DOUBLE_EQ(value(coded, 1.0, -1.0), value(scaled, (80.0 - 42.0) / 64.0, -1.0));
}

TEST_F(PolynomialUnitsOfTwoInputs, MultipliesOutToTheSamePolynomial)
{
    const std::vector<double> expanded = units.expanded(scaled);

    for (const double v1 : {-3.0, 4.0, 42.0, 90.0}) {
        for (const double v2 : {-10.0, 0.0, 7.0}) {
            EXPECT_DOUBLE_EQ(value(expanded, v1, v2),
                             value(scaled, (v1 - 42.0) / 64.0, (v2 + 6.0) / 4.0));
        }
    }
}

TEST_F(PolynomialUnitsOfTwoInputs, KeepsALinearPolynomialLinear)
{
    EXPECT_EQ(PolynomialUnits(QuadraticBasis(2, 1), scales).expanded({1.5, -64.0, 4.0}),
              (std::vector<double>{1.5 + 42.0 + 6.0, -1.0, 1.0}));
}

TEST(PolynomialUnits, BoundsTheRoundingErrorOfALargeOrigin)
{
    const QuadraticBasis basis(1, 2);
    const Column near{-1.0, 1.0};
    const Column far{1e6 - 1.0, 1e6 + 1.0};
    const std::vector<ColumnScale> nearScale{{near.data(), 2}};
    const std::vector<ColumnScale> farScale{{far.data(), 2}};

    EXPECT_LT(PolynomialUnits(basis, nearScale).expansionLoss({1, 1, 1}), 1e-15);
    // Squares of 2e6, rounded to 16 digits.
    EXPECT_NEAR(PolynomialUnits(basis, farScale).expansionLoss({1, 1, 1}), 4e12 * 2.2e-16, 1e-5);
}

TEST_F(PolynomialUnitsOfTwoInputs, WritesATermOfTheInputsInScaledOnes)
{
    for (std::size_t term = 0; term < basis.size(); ++term) {
        std::vector<double> single(basis.size(), 0.0);
        single[term] = 1.0;
        EXPECT_EQ(units.expanded(units.term(term)), single) << basis.name(term);
    }
}

TEST_F(PolynomialUnitsOfTwoInputs, SumsMagnitudesOfWhatCancels)
{
    const std::vector<double> magnitudes = units.expandedMagnitudes(scaled);

    // -V1 of its own, 42 V1 twice of V1^2 / 2, 6 V1 / 2 of V1 V2 / 2.
    EXPECT_DOUBLE_EQ(magnitudes[1], 1.0 + 42.0 + 3.0);
    for (std::size_t term = 0; term < basis.size(); ++term) {
        EXPECT_GE(magnitudes[term], std::fabs(units.expanded(scaled)[term])) << basis.name(term);
    }
}
