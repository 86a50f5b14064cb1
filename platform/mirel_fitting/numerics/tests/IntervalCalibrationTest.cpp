#include <mirel_fitting/numerics/IntervalCalibration.h>

#include <mirel_fitting/numerics/Distributions.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using Basis = CalibrationReport::Basis;

constexpr double degrees = 30.0;

/** `count` residuals at the middle quantiles of Student's t, of alternating sign. */
std::vector<double> studentResiduals(std::size_t count, double degreesOfFreedom)
{
    std::vector<double> residuals;
    for (std::size_t i = 0; i < count; ++i) {
        const double level = (static_cast<double>(i) + 0.5) / static_cast<double>(count);
        const double sign = i % 2 == 0 ? 1.0 : -1.0;
        residuals.push_back(sign * Distributions::studentQuantile(level, degreesOfFreedom));
    }
    return residuals;
}

double student(double level)
{
    return Distributions::studentQuantile(level, degrees);
}

} // namespace

TEST(IntervalCalibration, IsStudentsTWithFewerThanFortyLeftOutCases)
{
    const IntervalCalibration calibration(degrees, std::vector<double>(39, 7.0));

    EXPECT_EQ(calibration.quantile(0.8), student(0.8));
    EXPECT_EQ(calibration.quantile(0.99), student(0.99));
    EXPECT_EQ(calibration.report().basis, Basis::Distribution);
    EXPECT_EQ(calibration.report().factor, 1.0);
}

TEST(IntervalCalibration, WidensIntervalsOfFewCasesWhereRefitsMissMoreThanByChance)
{
    // Of twelve, two outside have a probability of 12 % by chance, three one of 2 %.
    std::vector<double> residuals(9, 0.5);
    residuals.insert(residuals.end(), {-4.0, 5.0, -6.0});
    const IntervalCalibration calibration(degrees, residuals, Basis::Refits);

    EXPECT_NEAR(calibration.quantile(0.95), 4.0, 1e-12);
    EXPECT_NEAR(calibration.quantile(0.5), 4.0 * student(0.5) / student(0.95), 1e-12);
    EXPECT_EQ(calibration.report().basis, Basis::Refits);
    EXPECT_NEAR(calibration.report().factor, 4.0 / student(0.95), 1e-12);
    EXPECT_EQ(calibration.report().coverage[2].share, 0.75);

    residuals[9] = 0.5;
    const IntervalCalibration byChance(degrees, residuals, Basis::Refits);
    EXPECT_EQ(byChance.quantile(0.95), student(0.95));
    EXPECT_EQ(byChance.report().basis, Basis::Distribution);
}

TEST(IntervalCalibration, DoesNotWidenByRefitsOfFewerThanTenCases)
{
    const IntervalCalibration calibration(degrees, std::vector<double>(9, 9.0), Basis::Refits);

    EXPECT_EQ(calibration.quantile(0.95), student(0.95));
}

TEST(IntervalCalibration, DoesNotCountResidualsThatAreNoNumbers)
{
    std::vector<double> residuals(40, 7.0);
    residuals[3] = std::nan("");

    EXPECT_EQ(IntervalCalibration(degrees, residuals).quantile(0.8), student(0.8));
}

TEST(IntervalCalibration, CountsResidualsOverVanishedDeviationsAsNotHeld)
{
    std::vector<double> residuals;
    for (int i = 1; i <= 99; ++i) {
        residuals.push_back(i <= 89 ? i : std::numeric_limits<double>::infinity());
    }
    const IntervalCalibration calibration(degrees, residuals);

    EXPECT_NEAR(calibration.quantile(0.8), 80.0, 1e-12);
    // The tenth from above is the largest finite one.
    EXPECT_NEAR(calibration.quantile(0.95), 89.0 * student(0.95) / student(0.89), 1e-10);
    EXPECT_NEAR(calibration.report().coverage[3].share, 2.0 / 99.0, 1e-12); // by Student's t, 2.75
}

TEST(IntervalCalibration, TakesTheShareOfMagnitudesThatTheLevelNames)
{
    std::vector<double> residuals; // magnitudes 1 to 99, in no order
    for (int i = 0; i < 99; ++i) {
        residuals.push_back((i % 2 == 0 ? 1.0 : -1.0) * (1.0 + (i * 37) % 99));
    }
    const IntervalCalibration calibration(degrees, residuals);

    EXPECT_NEAR(calibration.quantile(0.5), 50.0, 1e-12);
    EXPECT_NEAR(calibration.quantile(0.805), 80.5, 1e-12);
    EXPECT_NEAR(calibration.quantile(0.95), 95.0, 1e-12);
    EXPECT_NEAR(calibration.quantile(0.005), 0.5, 1e-12);
}

TEST(IntervalCalibration, FollowsStudentsTWhereFewerThanThreeLieBeyond)
{
    std::vector<double> residuals;
    for (int i = 1; i <= 99; ++i) {
        residuals.push_back(i);
    }

    EXPECT_NEAR(IntervalCalibration(degrees, residuals).quantile(0.99),
                97.0 * student(0.99) / student(0.97), 1e-10);
}

TEST(IntervalCalibration, ComesCloseToTheDistributionOfTheResiduals)
{
    const IntervalCalibration calibration(degrees, studentResiduals(2000, degrees));

    for (const double level : {0.5, 0.8, 0.95, 0.99}) {
        EXPECT_NEAR(calibration.quantile(level) / student(level), 1.0, 0.01) << level;
    }
    EXPECT_NEAR(calibration.report().factor, 1.0, 0.01);
}

TEST(IntervalCalibration, WidensIntervalsOfHeavyTails)
{
    const IntervalCalibration calibration(degrees, studentResiduals(400, 2.0));

    EXPECT_GT(calibration.quantile(0.95), 1.9 * student(0.95));
    EXPECT_GT(calibration.quantile(0.99), 2.5 * student(0.99));
    EXPECT_GT(calibration.report().factor, 1.9);
}

TEST(IntervalCalibration, NarrowsIntervalsThatAreTooWide)
{
    std::vector<double> residuals = studentResiduals(100, degrees);
    for (double& residual : residuals) {
        residual *= 0.5;
    }

    EXPECT_NEAR(IntervalCalibration(degrees, residuals).report().factor, 0.5, 0.05);
}

TEST(IntervalCalibration, GrowsWithTheLevel)
{
    const IntervalCalibration calibration(degrees, studentResiduals(41, 1.0));
    double smaller = 0.0;
    for (int i = 1; i < 1000; ++i) {
        const double quantile = calibration.quantile(i / 1000.0);
        EXPECT_GT(quantile, smaller) << i;
        smaller = quantile;
    }
}

TEST(IntervalCalibration, ReportsTheSharesOfLeftOutCasesInsideStudentsIntervals)
{
    const CalibrationReport report =
        IntervalCalibration(degrees, std::vector<double>{0.1, 0.1, 1.0, 30.0}).report();

    EXPECT_EQ(report.cases, 4u);
    ASSERT_EQ(report.coverage.size(), 4u);
    EXPECT_EQ(report.coverage[0].level, 0.5);
    EXPECT_EQ(report.coverage[0].share, 0.5);
    EXPECT_EQ(report.coverage[1].share, 0.75);
    EXPECT_EQ(report.coverage[3].level, 0.99);
    EXPECT_EQ(report.coverage[3].share, 0.75);
}

TEST(IntervalCalibration, ReportsNoSharesWithoutLeftOutCases)
{
    const CalibrationReport report = IntervalCalibration(degrees, {}).report();

    EXPECT_EQ(report.cases, 0u);
    EXPECT_TRUE(report.coverage.empty());
}
