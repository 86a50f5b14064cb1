#include <mirel_fitting/numerics/NumberText.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>

TEST(NumberText, ShortestReadsBackAsTheSameDouble)
{
    for (const double value : {0.1, 1.0 / 3.0, 1e22, 6.02214076e23, 5e-324, 123456789.123456789,
                               -std::numeric_limits<double>::max()}) {
        EXPECT_EQ(std::strtod(NumberText::shortest(value).c_str(), nullptr), value);
    }
    EXPECT_EQ(NumberText::shortest(0.1), "0.1");
    EXPECT_EQ(NumberText::shortest(-5.0), "-5");
}

TEST(NumberText, RoundsToSignificantDigits)
{
    EXPECT_EQ(NumberText::rounded(1.0 / 3.0, 2), "0.33");
    EXPECT_EQ(NumberText::rounded(1234567.0, 3), "1.23e+06");
    EXPECT_EQ(NumberText::rounded(2.5, 8), "2.5");
    EXPECT_EQ(NumberText::rounded(-1e-9, 3), "-1e-09");
    EXPECT_EQ(NumberText::rounded(1.0 / 3.0), "0.33333333");
    EXPECT_EQ(NumberText::rounded(std::numeric_limits<double>::infinity()), "inf");
    EXPECT_EQ(NumberText::percent(0.126), "13 %");
}
