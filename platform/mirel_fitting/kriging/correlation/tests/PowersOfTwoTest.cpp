#include <mirel_fitting/kriging/correlation/PowersOfTwo.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

TEST(PowersOfTwo, AreRoundedToTheNearestDouble)
{
    constexpr long double halfAUnit = 0.5L * std::numeric_limits<double>::epsilon();
    for (std::size_t i = 0; i < PowersOfTwo::count; ++i) {
        const long double exact = std::exp2(static_cast<long double>(i) / PowersOfTwo::count);
        EXPECT_LE(std::fabs(PowersOfTwo::table.values[i] - exact), 1.01L * halfAUnit) << i;
    }
    EXPECT_EQ(PowersOfTwo::table.values[0], 1.0);
    EXPECT_EQ(PowersOfTwo::table.values[PowersOfTwo::count / 2], std::sqrt(2.0));
}
