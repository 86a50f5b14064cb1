#include <mirel_fitting/cases/ColumnScale.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace fittingtest;

namespace {

ColumnScale scaleOf(const Column& values)
{
    return {values.data(), values.size()};
}

} // namespace

TEST(ColumnScale, KnowsItsCentreUnitAndRounding)
{
    const ColumnScale scale = scaleOf({4, 80, 42, 5});

    EXPECT_EQ(scale.centre(), 42.0);
    EXPECT_EQ(scale.spread(), 76.0);
    EXPECT_EQ(scale.largest(), 80.0);

    EXPECT_EQ(scaleOf({4, 80}).unit(), 64.0);
    EXPECT_EQ(scaleOf({-1, 1}).unit(), 1.0);
    EXPECT_EQ(scaleOf({0, 4.1}).unit(), 4.0);
    EXPECT_EQ(scaleOf({-1e-12, 1e-12}).unit(), 0x1p-39);

    // Doubles between 2^30 and 2^31 are 2^-22 apart: half of that is the rounding.
    EXPECT_EQ(scaleOf({0x1p31 - 2.0, 0x1p31}).rounding(), 0x1p-22);
}

TEST(ColumnScale, MapsTheRangeIntoMinusOneToOne)
{
    Random random(3);
    for (const double unit : {1e-12, 1.0, 1e12}) {
        Column values = random.column(100, -3.0 * unit, 11.0 * unit);
        const ColumnScale scale = scaleOf(values);

        scale.apply(values.data(), values.size(), values.data());

        for (const double value : values) {
            EXPECT_LE(std::fabs(value), 1.0);
        }
        EXPECT_GT(scaleOf(values).spread(), 1.0);
    }
}

TEST(ColumnScale, MapsAConstantColumnToZero)
{
    Column values(3, 1.0 / 3.0);
    const ColumnScale scale = scaleOf(values);

    scale.apply(values.data(), values.size(), values.data());

    EXPECT_EQ(values, Column(3, 0.0));
    EXPECT_EQ(scale.unit(), 1.0);
    EXPECT_EQ(scale.spread(), 0.0);
}

TEST(ColumnScale, TakesAFewUnitsInTheLastPlaceForRounding)
{
    const auto isConstant = [](std::vector<double> values) {
        return ColumnScale(values.data(), values.size()).isConstantUpToRounding();
    };

    EXPECT_TRUE(isConstant({0.3, 0.1 + 0.2, 0.3}));
    EXPECT_TRUE(isConstant({-7.0, -7.0}));
    EXPECT_TRUE(isConstant({0.0, 0.0}));
    EXPECT_FALSE(isConstant({1e9, 1e9 + 1e-5}));
    EXPECT_FALSE(isConstant({-1e-300, 1e-300}));
    EXPECT_FALSE(isConstant({-1.5e308, 1.5e308}));
}

TEST(ColumnScale, ManagesRangesThatOverflowOrUnderflow)
{
    for (const double end : {1.7e308, 5e-324}) {
        Column values{-end, end, 0.0};
        const ColumnScale scale = scaleOf(values);

        scale.apply(values.data(), values.size(), values.data());

        EXPECT_EQ(scale.centre(), 0.0);
        for (const double value : values) {
            EXPECT_TRUE(std::isfinite(value));
        }
    }
}
