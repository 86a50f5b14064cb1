#include <session/comparison/PairedErrors.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {
using Case = PairedErrors::Case;

/** Smaller errors make no difference. */
constexpr double negligible = 1e-6;
} // namespace

TEST(PairedErrors, AreTestedByTheRatioOfEachFold)
{
    // Ratios e^1, e^2, e^3 and e^6.
    const std::vector<Case> cases = {{0, std::exp(1.0), 1.0},
                                     {1, std::exp(2.0), 1.0},
                                     {2, 5.0 * std::exp(3.0), 5.0},
                                     {3, std::exp(6.0), 1.0}};

    const PairedErrors errors = PairedErrors::of(cases, 4, negligible);

    // mean 3, variance 14 / 3; 1 / 4 + 1 / 3 for the shared cases; R: 2 * pt(-3 / error, 3).
    EXPECT_EQ(errors.folds, 4u);
    EXPECT_NEAR(errors.logRatio, 3.0, 1e-12);
    EXPECT_NEAR(errors.standardError, std::sqrt(14.0 / 3.0 * 7.0 / 12.0), 1e-12);
    EXPECT_NEAR(errors.p, 0.1666073706326546, 1e-12);
    EXPECT_EQ(errors.krigingNearer, 4u);
    EXPECT_EQ(errors.responseSurfaceNearer, 0u);
}

TEST(PairedErrors, OfTheCasesOfAFoldAreTheirRmseAndEqualWhereBothAreNegligible)
{
    const std::vector<Case> cases = {{0, 3.0, 1.0}, {0, 4.0, 7.0}, {1, 1.0, 1.0}};

    const PairedErrors errors = PairedErrors::of(cases, 2, negligible);

    EXPECT_NEAR(errors.logRatio, 0.5 * std::log(5.0 / std::sqrt(50.0)), 1e-12);
    EXPECT_EQ(errors.responseSurfaceNearer, 1u);
    EXPECT_EQ(errors.krigingNearer, 1u);

    const std::vector<Case> tiny = {{0, 1e-7, 0.0}, {1, 0.0, 1e-9}, {2, 0.0, 0.0}};

    const PairedErrors equal = PairedErrors::of(tiny, 3, negligible);

    EXPECT_EQ(equal.logRatio, 0.0);
    EXPECT_EQ(equal.p, 1.0);
}

TEST(PairedErrors, ThatDifferAlikeInAllFoldsAreClearAndWithoutTwoFoldsUntested)
{
    const PairedErrors errors = PairedErrors::of({{0, 2.0, 1.0}, {1, 2.0, 1.0}}, 2, negligible);

    EXPECT_EQ(errors.standardError, 0.0);
    EXPECT_EQ(errors.p, 0.0);

    const PairedErrors untested = PairedErrors::of({{3, 2.0, 1.0}, {3, 1.0, 4.0}}, 5, negligible);

    EXPECT_EQ(untested.folds, 1u);
    EXPECT_TRUE(std::isnan(untested.p));
    EXPECT_TRUE(std::isnan(untested.logRatio));
}
