#include <mirel_fitting/numerics/Distributions.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

using namespace fittingtest;

// The figures are those that R prints for qt(0.975, c(1, 5, 30)), qnorm(0.995), 2 * pt(-2.5, 7),
// pf(3.2, 2, 9, lower.tail = FALSE) and so on.

TEST(Distributions, QuantilesLeaveTwoTailsOfTheSameProbability)
{
    EXPECT_NEAR(Distributions::studentQuantile(0.95, 1.0), 12.7062047361747, 1e-11);
    EXPECT_NEAR(Distributions::studentQuantile(0.95, 5.0), 2.57058183563631, 1e-13);
    EXPECT_NEAR(Distributions::studentQuantile(0.95, 30.0), 2.04227245630124, 1e-13);
}

TEST(Distributions, TailsOfStudentAreOfBothSides)
{
    EXPECT_NEAR(Distributions::studentTails(2.5, 7.0), 0.0409922185857529, 1e-15);
    EXPECT_EQ(Distributions::studentTails(-2.5, 7.0), Distributions::studentTails(2.5, 7.0));
    EXPECT_NEAR(Distributions::studentTails(0.0, 7.0), 1.0, 1e-15);
    EXPECT_EQ(Distributions::studentTails(infinity, 7.0), 0.0);
}

TEST(Distributions, TailOfFisherIsTheUpperOne)
{
    EXPECT_NEAR(Distributions::fisherTail(3.2, 2.0, 9.0), 0.0891760124418075, 1e-15);
    EXPECT_EQ(Distributions::fisherTail(0.0, 2.0, 9.0), 1.0);
    EXPECT_EQ(Distributions::fisherTail(-1e-20, 2.0, 9.0), 1.0);
    EXPECT_EQ(Distributions::fisherTail(infinity, 2.0, 9.0), 0.0);
}

TEST(Distributions, KeepTinyProbabilities)
{
    const double tails = Distributions::studentTails(40.0, 50.0);

    EXPECT_NEAR(tails, 1.24124237843728e-39, 1e-51);
}

TEST(Distributions, AcceptLevelsBetweenZeroAndOneOnly)
{
    EXPECT_EQ(errorOf([] { Distributions::requireLevel(0.5); }), "");
    for (const double level : {0.0, 1.0, -0.1, 1.1, notANumber, infinity}) {
        EXPECT_NE(errorOf([&] { Distributions::requireLevel(level); }), "") << level;
    }
}
