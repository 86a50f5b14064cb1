#include <mirel_fitting/cases/ReplicatedCases.h>

#include "FittingTestSupport.h"
#include "RecordedWork.h"

#include <gtest/gtest.h>

#include <numeric>

using namespace fittingtest;

namespace {

ReplicatedCases replicated(const std::vector<Column>& columns, std::size_t cases)
{
    return {pointersTo(columns), cases};
}

} // namespace

TEST(ReplicatedCases, AreNoneWhereEveryCaseDiffers)
{
    const ReplicatedCases cases = replicated({{1, 1, 2}, {1, 2, 1}}, 3);

    EXPECT_FALSE(cases.any());
    EXPECT_EQ(cases.degreesOfFreedom(), 0u);
    EXPECT_EQ(cases.withinSquares(Column{1, 2, 3}.data()), 0.0);
}

TEST(ReplicatedCases, SumSquaresAboutTheMeanOfEachPoint)
{
    // Points a b a c b a.
    const ReplicatedCases cases = replicated({{0, 1, 0, 2, 1, 0}, {5, 5, 5, 5, 5, 5}}, 6);

    EXPECT_EQ(cases.degreesOfFreedom(), 3u);
    // a: 1, 2, 6 about 3; b: 10, 14 about 12.
    EXPECT_EQ(cases.withinSquares(Column{1, 10, 2, 7, 14, 6}.data()), 14.0 + 8.0);
}

TEST(ReplicatedCases, HaveTheSameNumber)
{
    const ReplicatedCases cases = replicated({{0, 1, 0, 2}}, 4);

    EXPECT_EQ(cases.pointOf(0), cases.pointOf(2));
    EXPECT_NE(cases.pointOf(0), cases.pointOf(1));
    EXPECT_EQ(replicated({{0, 1}}, 2).pointOf(1), 1u);
}

TEST(ReplicatedCases, LoseNoDigitsOfOutputsFarFromZero)
{
    const ReplicatedCases cases = replicated({{0, 0, 0}}, 3);

    EXPECT_EQ(cases.withinSquares(Column{1e15, 1e15 + 1, 1e15 + 2}.data()), 2.0);
}

TEST(ReplicatedCases, RepeatEachOtherWithoutInputs)
{
    EXPECT_EQ(replicated({}, 4).degreesOfFreedom(), 3u);
}

TEST(ReplicatedCases, RepeatEachOtherUpToABillionthOfTheRange)
{
    EXPECT_EQ(replicated({{0.3, 0.1 + 0.2, 1.0}}, 3).degreesOfFreedom(), 1u);
    EXPECT_EQ(replicated({{1e3 + 0.3, 1e3 + 0.1 + 0.2, 1e3}}, 3).degreesOfFreedom(), 1u);
    EXPECT_EQ(replicated({{0.3, 0.3 + 1e-8, 1.0}}, 3).degreesOfFreedom(), 0u);
}

TEST(ReplicatedCases, TakeZeroAndMinusZeroForTheSame)
{
    EXPECT_EQ(replicated({{0.0, -0.0}}, 2).degreesOfFreedom(), 1u);
}

TEST(ReplicatedCases, AreFoundAmongManyRoundNumbers)
{
    // A grid of small whole numbers, twice: only the high bits of the values differ.
    std::vector<Column> columns(3);
    for (int copy = 0; copy < 2; ++copy) {
        for (int k = 0; k < 20 * 20 * 20; ++k) {
            columns[0].push_back(k % 20);
            columns[1].push_back(k / 20 % 20);
            columns[2].push_back(static_cast<double>(k / 400));
        }
    }
    EXPECT_EQ(replicated(columns, 16000).degreesOfFreedom(), 8000u);
}

TEST(ReplicatedCases, ContradictEachOtherWhereValuesDifferByMore)
{
    struct Example
    {
        std::vector<Column> columns;
        Column values;
        std::size_t contradictions;
    };
    const Example examples[] = {
        {{{0.5, 0.5 + 1e-13, 0.0}, {0.25, 0.25 - 1e-13, 1.0}}, {1.0, -1.0, 0.0}, 1},
        {{{0.5, 0.5 + 1e-13, 0.0}, {0.25, 0.25 - 1e-13, 1.0}}, {1.0, 1.0 + 1e-8, 0.0}, 0},
        {{{0.5, 0.5 + 1e-6, 0.0}, {0.25, 0.25 - 1e-6, 1.0}}, {1.0, -1.0, 0.0}, 0},
        // Near each other in one input only.
        {{{0.5, 0.5, 0.5}, {0.0, 0.5, 1.0}}, {1.0, -1.0, 0.0}, 0},
        // Once a point.
        {{{0.0, 1e-12, 2e-12, 1.0 - 1e-13, 1.0}}, {1.0, -1.0, 0.0, 2.0, 1.0}, 2},
        // Of a grid, one case next to another.
        {{{0.0, 0.0, 0.5, 0.5, 1.0, 1.0 - 1e-13}, {0.0, 1.0, 0.0, 1.0, 1.0, 1.0}},
         {0.0, 1.0, 2.0, 3.0, 4.0, 5.0},
         1},
    };
    for (const Example& example : examples) {
        EXPECT_EQ(replicated(example.columns, example.values.size())
                      .contradictions(example.values.data(), 1e-6),
                  example.contradictions);
    }
}

TEST(ReplicatedCases, AreSearchedWithReports)
{
    Column column(200000);
    std::iota(column.begin(), column.end(), 0.0);
    const RecordedWork recorded;

    EXPECT_FALSE(replicated({column}, column.size()).any());

    EXPECT_GE(recorded.reports(), 2);
}
