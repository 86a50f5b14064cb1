#include <mirel_fitting/CalibrationReport.h>

#include <gtest/gtest.h>

TEST(CalibrationReport, CountsTheCasesInsideOfEachInterval)
{
    CalibrationReport report;
    report.addCoverage({0.5, 0.9, 0.95, 3.0}, [](double level) { return level; });

    EXPECT_EQ(report.cases, 4u);
    ASSERT_EQ(report.coverage.size(), 4u);
    const double expected[][2] = {{0.5, 0.25}, {0.8, 0.25}, {0.95, 0.75}, {0.99, 0.75}};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(report.coverage[i].level, expected[i][0]);
        EXPECT_EQ(report.coverage[i].share, expected[i][1]) << "limits belong to the interval";
    }
}

TEST(CalibrationReport, HasNoCoverageWithoutCases)
{
    CalibrationReport report;
    report.addCoverage({}, [](double level) { return level; });

    EXPECT_EQ(report.cases, 0u);
    EXPECT_TRUE(report.coverage.empty());
}
