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

TEST(KrigingReport, WritesThreeDigitsOfTheDifferenceToALeftOutCase)
{
    EXPECT_EQ(digits(2.0, 1.0), 5); // as many as there are anyway
    EXPECT_EQ(digits(1234.5, 1234.6), 8);
    EXPECT_EQ(digits(1e6, 1e6 + 1e-8), 17);
    EXPECT_EQ(digits(2.0, 2.0), 5);
    EXPECT_EQ(digits(2.0, std::numeric_limits<double>::quiet_NaN()), 5);
}
