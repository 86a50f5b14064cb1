#include <plot/model/MainEffects.h>

#include "../../../session/tests/CvdSession.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

TEST(MainEffects, SweepEveryInputWhereTheOthersAreHeld)
{
    CaseSession session = cvdSession();
    session.holdAtMedians({0, 1});

    const MainEffects sweeps(session);

    for (std::size_t output = 0; output < 2; ++output) {
        const std::vector<const ModelSlice*> slices = sweeps.strongest(output, 6);
        ASSERT_EQ(slices.size(), 2u);
        EXPECT_EQ(slices[0]->swept, std::vector<std::size_t>{0})
            << "pressure has the larger influence";
        EXPECT_EQ(slices[1]->swept, std::vector<std::size_t>{1});
        // The medians are the middle of the ranges, through which both pass.
        EXPECT_NEAR(slices[0]->outputs[output].values[50], slices[1]->outputs[output].values[50],
                    1e-12);
    }
}

TEST(MainEffects, LeaveOutInputsThatDoNotVary)
{
    CaseTable table = cvdCases();
    table.columns[1].numbers.assign(11, 6.0);
    CaseSession session(std::move(table), {{0, 1}, {2}}, {}, CaseSession::ResponseSurface);

    const MainEffects sweeps(session);

    ASSERT_EQ(sweeps.strongest(0, 6).size(), 1u);
    EXPECT_EQ(sweeps.strongest(0, 6)[0]->swept, std::vector<std::size_t>{0});
}

TEST(MainEffects, AreAsManyAsAskedForOfManyInputs)
{
    CaseTable table = cvdCases();
    const auto output = table.columns[3];
    table.columns.resize(1);
    for (int i = 1; i < 8; ++i) {
        table.columns.push_back(table.columns[0]);
        table.columns.back().name = "x" + std::to_string(i);
        table.columns.back().numbers[static_cast<std::size_t>(i)] += i;
    }
    table.columns.push_back(output);
    CaseSession session(std::move(table), {{0, 1, 2, 3, 4, 5, 6, 7}, {8}}, {},
                        CaseSession::ResponseSurface);

    EXPECT_EQ(MainEffects(session).strongest(0, 6).size(), 6u);
}

TEST(MainEffects, RankInputsByTheirShareOfTheLargestChange)
{
    CaseSession session = cvdSession();
    session.holdAtMedians({0, 1});

    const auto ranking = MainEffects(session).ranking(1);

    ASSERT_EQ(ranking.size(), 2u);
    EXPECT_EQ(ranking[0].first, 0u);
    EXPECT_EQ(ranking[0].second, 1.0);
    EXPECT_EQ(ranking[1].first, 1u);
    EXPECT_GT(ranking[1].second, 0.0);
    EXPECT_LT(ranking[1].second, 1.0);
}

TEST(MainEffects, TheStrongestInputsOfAllOutputsAscend)
{
    CaseSession session = cvdSession();

    const MainEffects effects(session);

    EXPECT_EQ(effects.strongestInputs(2), (std::vector<std::size_t>{0, 1}));
    EXPECT_EQ(effects.strongestInputs(1), std::vector<std::size_t>{0});
    EXPECT_EQ(effects.strongestInputs(9).size(), 2u);
    EXPECT_EQ(MainEffects(session, {0}).strongestInputs(9), std::vector<std::size_t>{1});
}
