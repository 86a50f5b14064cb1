#include <mirel_fitting/cases/KrigingData.h>

#include <gtest/gtest.h>

namespace {

using Values = std::vector<double>;

/** Three cases of one input; the second one stands for two rows, 4 and 6. */
KrigingData threeCases()
{
    KrigingData data;
    data.cases = 3;
    data.inputs = 1;
    data.terms = 2;
    data.coordinates = {0.0, 0.5, 1.0};
    data.trend = {1, 1, 1, -1, 0, 1};
    data.output = {3.0, 5.0, 8.0};
    data.replicates = {1, 2, 1};
    data.withinSquares = {0, 2, 0};
    return data;
}

} // namespace

TEST(KrigingData, CountsTheRowsOfItsCases)
{
    EXPECT_EQ(threeCases().rowCount(), 4.0);
}

TEST(KrigingData, HasNoPureErrorOnceReplicatesAreAveraged)
{
    KrigingData data = threeCases();
    EXPECT_TRUE(data.hasPureError());

    data.averageReplicates();

    EXPECT_FALSE(data.hasPureError());
    EXPECT_EQ(data.replicates, (Values{1, 1, 1}));
    EXPECT_EQ(data.output, threeCases().output);
}

TEST(KrigingData, DropsTermsThatDependOnEarlierOnes)
{
    KrigingData data = threeCases();
    data.terms = 4;
    data.trend = {1, 1, 1, 2, 2, 2, -1, 0, 1, 0, 1, 2};

    data.dropDependentTerms();

    EXPECT_EQ(data.terms, 2u);
    EXPECT_EQ(data.trend, (Values{1, 1, 1, -1, 0, 1}));
}

TEST(KrigingData, SubsetsKeepTheOrderOfTheIndices)
{
    const KrigingData subset = threeCases().subset({2, 1});

    EXPECT_EQ(subset.cases, 2u);
    EXPECT_EQ(subset.coordinates, (Values{1.0, 0.5}));
    EXPECT_EQ(subset.trend, (Values{1, 1, 1, 0}));
    EXPECT_EQ(subset.output, (Values{8.0, 5.0}));
    EXPECT_EQ(subset.replicates, (Values{1, 2}));
    EXPECT_EQ(subset.withinSquares, (Values{0, 2}));
}
