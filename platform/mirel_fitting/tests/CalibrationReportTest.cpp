#include <mirel_fitting/CalibrationReport.h>

#include <gtest/gtest.h>

TEST(CalibrationReport, CountsTheCasesInsideOfEachInterval)
{
    CalibrationReport report;
    report.addShares({0.5, 0.9, 0.95, 3.0}, [](double level) { return level; });

    EXPECT_EQ(report.cases, 4u);
    ASSERT_EQ(report.shares.size(), 4u);
    const double expected[][2] = {{0.5, 0.25}, {0.8, 0.25}, {0.95, 0.75}, {0.99, 0.75}};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(report.shares[i].level, expected[i][0]);
        EXPECT_EQ(report.shares[i].held, expected[i][1]) << "limits belong to the interval";
    }
}

TEST(CalibrationReport, HasNoSharesWithoutCases)
{
    CalibrationReport report;
    report.addShares({}, [](double level) { return level; });

    EXPECT_EQ(report.cases, 0u);
    EXPECT_TRUE(report.shares.empty());
}
