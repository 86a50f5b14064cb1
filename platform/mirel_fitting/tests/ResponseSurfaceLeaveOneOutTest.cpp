#include "ResponseSurfaceTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace fittingtest;

TEST(ResponseSurfaceLeaveOneOut, EqualsRefitsWithoutEachCase)
{
    const Cases cases = twoInputs(14, 1.0);

    const std::vector<LeaveOneOutPrediction> left = fit(cases).leaveOneOutPredictions(0);

    ASSERT_EQ(left.size(), cases.count());
    for (std::size_t row = 0; row < left.size(); ++row) {
        const Model refit = fit(withoutCase(cases, row));
        EXPECT_EQ(left[row].row, row);
        EXPECT_EQ(left[row].output, cases.outputs[0][row]);
        EXPECT_NEAR(left[row].predicted, predict(refit, caseAt(cases, row))[0], 1e-10);
        EXPECT_NEAR(left[row].standardError,
                    standardError(refit, caseAt(cases, row), FittedModel::ErrorKind::Observation),
                    1e-10);
    }
}

TEST(ResponseSurfaceLeaveOneOut, HasNoFigureForACaseThatAloneDeterminesATerm)
{
    // Without the last case the second input is constant.
    Cases cases{{{0, 1, 2, 3, 4, 5}, {0, 0, 0, 0, 0, 1}}, {{1, 2, 2, 4, 5, 9}}};

    const std::vector<LeaveOneOutPrediction> left = fit(cases, 1).leaveOneOutPredictions(0);

    EXPECT_TRUE(std::isnan(left[5].predicted));
    EXPECT_TRUE(std::isnan(left[5].standardError));
    EXPECT_TRUE(std::isfinite(left[0].predicted));
    EXPECT_GT(left[0].standardError, 0.0);
}

TEST(ResponseSurfaceLeaveOneOut, SpreadsASampleOverManyCases)
{
    const Cases cases = twoInputs(250000, 1.0);
    const Model model = fit(cases);

    const std::vector<LeaveOneOutPrediction> left = model.leaveOneOutPredictions(0);

    ASSERT_EQ(left.size(), 100000u);
    std::set<std::size_t> rows;
    for (std::size_t k = 0; k < left.size(); ++k) {
        EXPECT_NEAR(static_cast<double>(left[k].row), 2.5 * static_cast<double>(k), 3.0);
        EXPECT_EQ(left[k].output, cases.outputs[0][left[k].row]);
        rows.insert(left[k].row);
    }
    EXPECT_EQ(rows.size(), left.size());

    // The largest leverages are those of the same cases.
    const ResponseSurfaceStatistics statistics = model.responseSurfaceStatistics(0);
    EXPECT_TRUE(statistics.leverages.empty());
    ASSERT_EQ(statistics.largestLeverages.size(), 5u);
    for (const CaseLeverage& one : statistics.largestLeverages) {
        EXPECT_EQ(rows.count(one.row), 1u);
        EXPECT_GT(one.leverage, statistics.meanLeverage);
    }
}
