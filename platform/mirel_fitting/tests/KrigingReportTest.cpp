#include <mirel_fitting/KrigingReport.h>

#include <gtest/gtest.h>

#include <limits>

namespace {

int digits(double output, double predicted)
{
    KrigingReport::LeftOutCase one;
    one.output = output;
    one.predicted = predicted;
    return one.digits(5);
}

} // namespace

TEST(KrigingReport, SaysAtWhichBoundAnEstimateEnded)
{
    using Bound = KrigingReport::Bound;
    KrigingReport report;
    report.lengthBounds = {Bound::None, Bound::Lower, Bound::Upper, Bound::Upper};
    report.isWithoutInfluence = {false, false, false, true};
    const char* const texts[] = {"", " (at its lower bound)", " (no influence beyond the trend)",
                                 " (no influence)", ""};
    for (std::size_t input = 0; input < 5; ++input) {
        EXPECT_EQ(report.lengthBoundText(input), texts[input]);
    }
    EXPECT_EQ(KrigingReport::boundText(Bound::Upper), " (at its upper bound)");
}

TEST(KrigingReport, WritesThreeDigitsOfTheDifferenceToALeftOutCase)
{
    EXPECT_EQ(digits(2.0, 1.0), 5); // as many as there are anyway
    EXPECT_EQ(digits(1234.5, 1234.6), 8);
    EXPECT_EQ(digits(1e6, 1e6 + 1e-8), 17);
    EXPECT_EQ(digits(2.0, 2.0), 5);
    EXPECT_EQ(digits(2.0, std::numeric_limits<double>::quiet_NaN()), 5);
}
