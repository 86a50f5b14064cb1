#include <session/diagnosis/DiagnosedCases.h>

#include "SampleCases.h"

#include <gtest/gtest.h>

#include <set>

TEST(DiagnosedCases, FewAreNotSampled)
{
    EXPECT_EQ(sampledRows(3, 5), (std::vector<std::size_t>{0, 1, 2}));
    EXPECT_EQ(casesOf({{"a", {1, 2, 3}}}).sample(3).inputs[0].values,
              (std::vector<double>{1, 2, 3}));
}

TEST(DiagnosedCases, ManyAreSampledOncePerStratum)
{
    const std::vector<std::size_t> rows = sampledRows(1000, 100);

    ASSERT_EQ(rows.size(), 100u);
    for (std::size_t k = 0; k < rows.size(); ++k) {
        EXPECT_EQ(rows[k] / 10, k);
    }
    EXPECT_EQ(rows, sampledRows(1000, 100)) << "the same ones each time";
}

TEST(DiagnosedCases, TheSampleOfAGridHasAllItsValues)
{
    DiagnosedCases::Column level = {"level", {}};
    for (int row = 0; row < 1000; ++row) {
        level.values.push_back(row % 10);
    }

    const DiagnosedCases sampled = casesOf({level}).sample(100);

    const std::set<double> values(sampled.inputs[0].values.begin(), sampled.inputs[0].values.end());
    EXPECT_EQ(values.size(), 10u) << "steps of ten would find one";
    EXPECT_EQ(sampled.positions.size(), 100u);
}

TEST(DiagnosedCases, TheirDistinctValuesAndLastDigitAreCounted)
{
    EXPECT_EQ(distinctValues(std::vector<double>{1, 2, 2, 3, 1}, 9), 3u);
    EXPECT_EQ(distinctValues(std::vector<double>{1, 2, 2, 3, 1}, 2), 2u);
    EXPECT_EQ(lastDigit({1, 20, 300}), 1.0);
    EXPECT_DOUBLE_EQ(lastDigit({1, 2.25, 0.5}), 0.01);
    EXPECT_EQ(lastDigit({1.0 / 3.0}), 0.0);
}

TEST(DiagnosedCases, AColumnIsConstantUntilAValueDiffers)
{
    EXPECT_TRUE((DiagnosedCases::Column{"a", {2, 2, 2}}).isConstant());
    EXPECT_TRUE((DiagnosedCases::Column{"a", {2}}).isConstant());
    EXPECT_FALSE((DiagnosedCases::Column{"a", {2, 2, 3}}).isConstant());
}
