#include <mirel_fitting/OutputTransform.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {
constexpr OutputTransform all[] = {OutputTransform::None, OutputTransform::SquareRoot,
                                   OutputTransform::Logarithm};
}

TEST(OutputTransform, InvertsWhatItApplies)
{
    for (const OutputTransform transform : all) {
        for (const double y : {1e-300, 0.25, 7.0, 1e300}) {
            EXPECT_NEAR(OutputTransforms::invert(transform, OutputTransforms::apply(transform, y)) /
                            y,
                        1.0, 1e-12);
        }
    }
    EXPECT_EQ(OutputTransforms::invert(OutputTransform::SquareRoot, -3.0), 0.0);
    for (const OutputTransform transform : all) {
        double value = std::numeric_limits<double>::quiet_NaN();
        OutputTransforms::invert(transform, &value, 1);
        EXPECT_TRUE(std::isnan(value));
    }
}

TEST(OutputTransform, IsFoundByItsWord)
{
    for (const OutputTransform transform : all) {
        EXPECT_EQ(OutputTransforms::ofWord(OutputTransforms::word(transform)), transform);
    }
    EXPECT_EQ(OutputTransforms::ofWord("Log"), std::nullopt);
}
