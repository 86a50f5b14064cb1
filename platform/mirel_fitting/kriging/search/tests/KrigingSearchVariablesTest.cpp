#include <mirel_fitting/kriging/search/KrigingSearchVariables.h>

#include <mirel_fitting/kriging/search/SearchPolicy.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

KrigingSearchVariables variables(std::size_t cases, std::size_t inputs)
{
    KrigingData data;
    data.cases = cases;
    data.inputs = inputs;
    KrigingSearchSettings settings;
    settings.requestedNugget = 1e-12;
    return {data, settings};
}

} // namespace

TEST(KrigingSearchVariables, AreLogarithmsAndTakeTheNuggetsBoundExactly)
{
    const std::vector<double> point = variables(50, 2).at({{0.5, 4.0}, 1e-6});

    EXPECT_DOUBLE_EQ(point[0], std::log(0.5));
    EXPECT_DOUBLE_EQ(point[1], std::log(4.0));
    EXPECT_DOUBLE_EQ(point[2], std::log(1e-6) / 3.0); // in units of a factor of e^3
    EXPECT_EQ(point.size(), 3u);

    const KrigingSearchVariables all = variables(50, 2);

    EXPECT_EQ(all.parameters(all.at({{0.3, 2.0}, 1e-12})).nugget, 1e-12);
    EXPECT_EQ(all.parameters(all.at({{0.3, 2.0}, 1e-14})).nugget, 1e-12);
    EXPECT_NEAR(all.parameters(all.at({{0.3, 2.0}, 1e-3})).nugget, 1e-3, 1e-15);
}

TEST(KrigingSearchVariables, LeaveOutWhatIsFixed)
{
    KrigingData data;
    data.cases = 50;
    data.inputs = 2;
    KrigingSearchSettings settings;
    settings.requestedNugget = 1e-12;
    settings.fixedLengths = {0.5, 4.0};
    EXPECT_EQ(KrigingSearchVariables(data, settings).size(), 1u);

    settings.isNuggetFixed = true;
    EXPECT_EQ(KrigingSearchVariables(data, settings).size(), 0u);
}

TEST(KrigingSearchVariables, StartInsideTheBoundsOfHalfTheSpacingAtLeast)
{
    EXPECT_DOUBLE_EQ(variables(1000, 1).lower()[0], std::log(0.5 / 1000.0));
    EXPECT_DOUBLE_EQ(variables(1000, 8).lower()[0], std::log(SearchPolicy::shortestLength));

    const KrigingSearchVariables all = variables(50, 2);

    EXPECT_EQ(all.starts().size(), 6u);
    for (const std::vector<double>& start : all.starts()) {
        for (std::size_t k = 0; k < all.size(); ++k) {
            EXPECT_GT(start[k], all.lower()[k]);
            EXPECT_LT(start[k], all.upper()[k]);
        }
    }
}

TEST(KrigingSearchVariables, AreCloseWithinAFactorUnlessTheyHardlyMatter)
{
    const KrigingSearchVariables all = variables(50, 2);
    const std::vector<double> point = all.at({{0.5, 30.0}, 1e-12});

    EXPECT_TRUE(all.areClose(point, all.at({{0.6, 200.0}, 1e-9})));
    EXPECT_FALSE(all.areClose(point, all.at({{0.9, 30.0}, 1e-12})));
    EXPECT_FALSE(all.areClose(point, all.at({{0.5, 5.0}, 1e-12})));
    EXPECT_FALSE(all.areClose(point, all.at({{0.5, 30.0}, 1e-3})));

    std::vector<double> farOut = all.at({{0.5, 200.0}, 1e-12});

    all.limitLengths(farOut);

    EXPECT_EQ(farOut, all.at({{0.5, SearchPolicy::recalledLength}, 1e-12}));
}

TEST(KrigingSearchVariables, KnowWhichLengthsAreAtABound)
{
    using Bound = KrigingReport::Bound;
    const KrigingSearchVariables all = variables(50, 3);

    EXPECT_EQ(all.boundsOf(all.at({{0.01, 1.0, 300.0}, 1e-12})),
              (std::vector<Bound>{Bound::Lower, Bound::None, Bound::Upper}));
    EXPECT_TRUE(all.isNuggetLargest(all.at({{1.0, 1.0, 1.0}, 100.0})));
    EXPECT_FALSE(all.isNuggetLargest(all.at({{1.0, 1.0, 1.0}, 50.0})));
}

TEST(KrigingSearchVariables, SpreadStartsEvenlyAboutTheLikeliestLengthHalfOfThemWithoutNoise)
{
    const KrigingSearchVariables all = variables(50, 2);

    const std::vector<std::vector<double>> starts = all.spreadStarts(12);

    ASSERT_EQ(starts.size(), 12u);
    const double middle = std::log(SearchPolicy::priorLength);
    for (std::size_t k = 0; k < 2; ++k) {
        std::size_t below = 0;
        for (const std::vector<double>& start : starts) {
            EXPECT_GT(start[k], std::log(0.3) + middle);
            EXPECT_LT(start[k], std::log(3.0) + middle);
            below += start[k] < 0.5 * (std::log(0.3) + std::log(3.0)) + middle ? 1u : 0u;
        }
        EXPECT_NEAR(static_cast<double>(below), 6.0, 2.0);
    }
    for (std::size_t i = 0; i < starts.size(); i += 2) {
        EXPECT_EQ(all.parameters(starts[i]).nugget, 1e-12);
        EXPECT_GT(all.parameters(starts[i + 1]).nugget, 0.99e-4);
        EXPECT_LT(all.parameters(starts[i + 1]).nugget, 0.101);
    }
}
