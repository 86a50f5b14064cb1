#include "plot/drawing/AxisScale.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {
struct LabelCase
{
    std::string name;
    double value;
    double step;
    double largest;
    std::string text;
};

class AxisScaleLabel : public ::testing::TestWithParam<LabelCase>
{};

std::string nameOf(const testing::TestParamInfo<LabelCase>& info)
{
    return info.param.name;
}
} // namespace

TEST_P(AxisScaleLabel, HasTheDigitsThatDistinguishItFromItsNeighbours)
{
    const LabelCase& label = GetParam();
    EXPECT_EQ(AxisScale::label(label.value, label.step, label.largest).toStdString(), label.text);
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, AxisScaleLabel,
    testing::Values(LabelCase{"Whole", 20, 10, 80, "20"}, LabelCase{"Half", 2.5, 0.5, 3, "2.5"},
                    LabelCase{"WholeAmongHalves", 3, 0.5, 3, "3.0"},
                    LabelCase{"Negative", -0.02, 0.01, 0.03, "-0.02"},
                    LabelCase{"RoundingOfZero", -1e-17, 0.1, 1, "0.0"},
                    LabelCase{"LargeZero", 0, 1e9, 1e10, "0"},
                    LabelCase{"Large", 1.5e12, 5e11, 2e12, "1.5e12"},
                    LabelCase{"LargeWhole", 2e12, 5e11, 2e12, "2e12"},
                    LabelCase{"Small", -4e-12, 2e-12, 8e-12, "-4e-12"},
                    LabelCase{"LargeWithSmallSteps", 1000000000002, 1, 1e12 + 5,
                              "1.000000000002e12"},
                    LabelCase{"Million", 1e6, 2e5, 1e6, "1e6"},
                    LabelCase{"BelowAMillion", 800000, 200000, 900000, "800000"}),
    nameOf);

TEST(AxisScale, LeavesRoomAtBothEnds)
{
    const QwtInterval interval = AxisScale::padded(AxisScale::range({4.0, 2.0, 3.0}), 0.1);

    EXPECT_DOUBLE_EQ(interval.minValue(), 1.8);
    EXPECT_DOUBLE_EQ(interval.maxValue(), 4.2);
}

TEST(AxisScale, PutsTheOnlyValueInTheMiddle)
{
    // Each of them is one value: the last one but for the rounding of sums.
    for (const std::vector<double>& values :
         {std::vector<double>{5.0}, {0.0, 0.0}, {-1e12}, {1e-12}, {0.3, 0.1 + 0.2}}) {
        const QwtInterval interval = AxisScale::padded(AxisScale::range(values), 0.05);

        EXPECT_LT(interval.minValue(), values[0]);
        EXPECT_GT(interval.maxValue(), values[0]);
        EXPECT_NEAR(interval.minValue() + interval.maxValue(), 2.0 * values[0],
                    1e-9 * interval.width());
        EXPECT_GE(AxisScale::ticks(interval, 8).ticks(QwtScaleDiv::MajorTick).size(), 2);
    }
}

TEST(AxisScale, GoesFromZeroToOneWithoutValues)
{
    EXPECT_EQ(AxisScale::padded(AxisScale::range({}), 0.05), QwtInterval(0.0, 1.0));
}

TEST(AxisScale, HasRoundTicksOnALogarithmicAxis)
{
    using Ticks = QList<double>;
    struct Example
    {
        QwtInterval interval;
        int most;
        Ticks ticks;
    };
    const Example examples[] = {{{3.0, 80.0}, 10, {3, 5, 7, 10, 15, 20, 30, 50, 70}},
                                {{3.0, 80.0}, 5, {5, 10, 20, 50}},
                                {{0.003, 2e3}, 7, {0.01, 0.1, 1, 10, 100, 1000}},
                                {{1e-6, 1e6}, 5, {1e-6, 1e-3, 1, 1e3, 1e6}}};
    for (const Example& example : examples) {
        EXPECT_EQ(
            AxisScale::ticks(example.interval, example.most, true).ticks(QwtScaleDiv::MajorTick),
            example.ticks)
            << example.interval.minValue() << ", " << example.most;
    }
}

TEST(AxisScale, IsLogarithmicOverADecadeOfPositiveValuesOnly)
{
    EXPECT_TRUE(AxisScale::spansDecades({0.1, 1.0}));
    EXPECT_FALSE(AxisScale::spansDecades({0.2, 1.0}));
    EXPECT_FALSE(AxisScale::spansDecades({0.0, 1.0}));
    EXPECT_FALSE(AxisScale::spansDecades(QwtInterval()));
    const QwtInterval padded = AxisScale::paddedLogarithmic({1.0, 100.0}, 0.5);
    EXPECT_DOUBLE_EQ(padded.minValue(), 0.1);
    EXPECT_DOUBLE_EQ(padded.maxValue(), 1000.0);
}

TEST(AxisScale, ShowsWhatStaysFiniteWithItsMarginsAndSteps)
{
    const double largest = std::numeric_limits<double>::max() / 16.0;
    const QwtInterval widest(-largest, largest);

    EXPECT_TRUE(AxisScale::isDrawable(widest));
    const QwtScaleDiv ticks = AxisScale::ticks(AxisScale::padded(widest, 0.05), 8);
    EXPECT_GE(ticks.ticks(QwtScaleDiv::MajorTick).size(), 2);
    for (const double tick : ticks.ticks(QwtScaleDiv::MajorTick)) {
        EXPECT_TRUE(std::isfinite(tick));
    }
    EXPECT_TRUE(AxisScale::isDrawable({0.0, 0.0}));
}

TEST(AxisScale, DoesNotShowWhatLeavesTheFiniteNumbers)
{
    const double infinity = std::numeric_limits<double>::infinity();

    EXPECT_FALSE(AxisScale::isDrawable({0.0, 1.5e308}));
    EXPECT_FALSE(AxisScale::isDrawable({-1.5e308, 0.0}));
    EXPECT_FALSE(AxisScale::isDrawable({0.0, infinity}));
    EXPECT_FALSE(AxisScale::isDrawable({std::nan(""), 1.0}));
}
