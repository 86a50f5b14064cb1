#include <mirel_fitting/kriging/report/OutputScale.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

TEST(OutputScale, GivesMeanZeroAndVarianceOneUnlessConstant)
{
    const std::vector<double> output = {1.0, 3.0, 5.0, 7.0}; // mean 4, variance 5

    const OutputScale scale = OutputScale::of(output);

    EXPECT_DOUBLE_EQ(scale.offset, 4.0);
    EXPECT_DOUBLE_EQ(scale.scale, std::sqrt(5.0));
    EXPECT_DOUBLE_EQ(scale.standardise(output)[3], 3.0 / std::sqrt(5.0));
    EXPECT_DOUBLE_EQ(scale.sumOfSquares(output), 4.0);

    const OutputScale unscaled = OutputScale::of({4.5, 4.5, 4.5});

    EXPECT_EQ(unscaled.offset, 4.5);
    EXPECT_EQ(unscaled.scale, 1.0);
    EXPECT_EQ(unscaled.sumOfSquares({4.5, 4.5, 4.5}), 0.0);

    constexpr double largest = std::numeric_limits<double>::max();

    const OutputScale widest = OutputScale::of({-largest, largest});

    EXPECT_EQ(widest.offset, 0.0);
    EXPECT_EQ(widest.scale, largest);
}

TEST(OutputScale, DoesNotDependOnTheOrderOfTheValues)
{
    const OutputScale ascending = OutputScale::of({0.1, 0.2, 0.7, 1e10});
    const OutputScale other = OutputScale::of({1e10, 0.2, 0.1, 0.7});

    EXPECT_EQ(ascending.offset, other.offset);
    EXPECT_EQ(ascending.scale, other.scale);
}
