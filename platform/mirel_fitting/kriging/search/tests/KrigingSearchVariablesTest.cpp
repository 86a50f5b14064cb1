#include <mirel_fitting/kriging/search/KrigingSearchVariables.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

KrigingSearchVariables variables(std::size_t cases, std::size_t inputs)
{
    KrigingData data;
    data.cases = cases;
    data.inputs = inputs;
    KrigingSearch::Settings settings;
    settings.smallestNugget = 1e-12;
    return {data, settings};
}

} // namespace

TEST(KrigingSearchVariables, AreTheLogarithmsOfLengthsAndNugget)
{
    const std::vector<double> point = variables(50, 2).at({{0.5, 4.0}, 1e-6});

    EXPECT_DOUBLE_EQ(point[0], std::log(0.5));
    EXPECT_DOUBLE_EQ(point[1], std::log(4.0));
    EXPECT_DOUBLE_EQ(point[2], std::log(1e-6) / 3.0); // in units of a factor of e^3
    EXPECT_EQ(point.size(), 3u);
}

TEST(KrigingSearchVariables, LeaveOutWhatIsFixed)
{
    KrigingData data;
    data.cases = 50;
    data.inputs = 2;
    KrigingSearch::Settings settings;
    settings.smallestNugget = 1e-12;
    settings.fixedLengths = {0.5, 4.0};
    EXPECT_EQ(KrigingSearchVariables(data, settings).size(), 1u);

    settings.isNuggetFixed = true;
    EXPECT_EQ(KrigingSearchVariables(data, settings).size(), 0u);
}

TEST(KrigingSearchVariables, ReachHalfTheSpacingOfManyCasesOfOneInput)
{
    EXPECT_DOUBLE_EQ(variables(1000, 1).lower[0], std::log(0.5 / 1000.0));
    EXPECT_DOUBLE_EQ(variables(1000, 8).lower[0], std::log(KrigingSearch::smallestLength()));
}

TEST(KrigingSearchVariables, StartInsideTheBounds)
{
    const KrigingSearchVariables all = variables(50, 2);
    std::vector<std::vector<double>> starts = all.commonStarts(0.5);
    EXPECT_EQ(starts.size(), 3u);
    for (const std::vector<double>& start : all.scatteredStarts()) {
        starts.push_back(start);
    }

    for (const std::vector<double>& start : starts) {
        for (std::size_t k = 0; k < all.size(); ++k) {
            EXPECT_GT(start[k], all.lower[k]);
            EXPECT_LT(start[k], all.upper[k]);
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
}

TEST(KrigingSearchVariables, RecallLengthsFromFarOut)
{
    const KrigingSearchVariables all = variables(50, 2);
    std::vector<double> point = all.at({{0.5, 200.0}, 1e-12});

    all.recall(point);

    EXPECT_EQ(point, all.at({{0.5, KrigingSearchVariables::faint}, 1e-12}));
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

TEST(KrigingSearchVariables, RaiseTheNuggetByAFactorOfTwentyAtATime)
{
    struct Slope : BoundedObjective
    {
        double value(const std::vector<double>& point) override { return point[0] + point[1]; }
        bool curvature(std::vector<double>& result) override
        {
            result = {1e-9, 0.0, 0.0, 1e-9};
            return true;
        }
        void gradient(std::vector<double>& result) override { result = {1.0, 1.0}; }
    };
    const KrigingSearchVariables all = variables(50, 1);
    Slope slope;
    BoundedSearch search(slope, all.lower, all.upper, all.at({{0.5}, 1e-12}));
    all.limitRises(search);

    search.advance(2, 0.0);

    EXPECT_NEAR(search.point()[0], std::log(0.5) + 3.0, 1e-12);
    EXPECT_NEAR(search.point()[1], std::log(1e-12) / 3.0 + 2.0, 1e-12);
}
