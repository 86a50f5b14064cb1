#include <mirel_fitting/kriging/search/LengthPrior.h>

#include <gtest/gtest.h>

#include <cmath>

TEST(LengthPrior, IsGreatestAtTwiceTheRangeAndPenalisesShortLengthsMore)
{
    const LengthPrior prior(1.0);

    EXPECT_EQ(prior.value(std::log(2.0)), 0.0);
    EXPECT_EQ(prior.slope(std::log(2.0)), 0.0);

    // One deviation below and above.
    EXPECT_NEAR(prior.value(std::log(2.0) - 0.7), -0.5, 1e-12);
    EXPECT_NEAR(prior.value(std::log(2.0) + 2.5), -0.5, 1e-12);
}

TEST(LengthPrior, IsGreatestAtSixteenSpacingsOfManyCases)
{
    const LengthPrior prior(0.01);

    EXPECT_EQ(prior.value(std::log(0.16)), 0.0);
    EXPECT_NEAR(prior.value(std::log(0.16) - 0.7), -0.5, 1e-12);
    EXPECT_GT(prior.value(std::log(2.0)), -1.0);
}

TEST(LengthPrior, KnowsItsDerivatives)
{
    const LengthPrior prior(1.0);
    const double step = 1e-3;
    for (const double at : {-3.0, 0.0, 2.0, 5.0}) {
        EXPECT_NEAR(prior.slope(at), (prior.value(at + step) - prior.value(at - step)) / (2 * step),
                    1e-9)
            << at;
        EXPECT_NEAR(prior.curvature(at),
                    (prior.slope(at - step) - prior.slope(at + step)) / (2 * step), 1e-9)
            << at;
    }
}
