#include <mirel_fitting/kriging/fit/KrigingIntervals.h>

#include "KrigingFitTestSupport.h"

#include <mirel_fitting/numerics/Distributions.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

using Basis = CalibrationReport::Basis;

IntervalCalibration calibrated(Columns inputs, const std::vector<double>& output,
                               const KrigingFitOptions& options = withTrend(0))
{
    const KrigingCases cases(pointersTo(inputs), output.size());
    const KrigingFitInput input{cases, output, options, OutputScale::of(output)};
    return calibrateIntervals(input, fitKriging(cases, output, options));
}

IntervalCalibration ofWave(std::size_t cases, const KrigingFitOptions& options = withTrend(0))
{
    const Columns inputs = latinHypercube(cases, 2, 7);
    return calibrated(inputs, valuesOf(wave, inputs), options);
}

} // namespace

TEST(KrigingIntervals, OfFewCasesAreThoseOfStudentsT)
{
    const IntervalCalibration found = ofWave(20);

    // 20 cases less one term of the trend.
    EXPECT_EQ(found.quantile(0.95), Distributions::studentQuantile(0.95, 19.0));
    EXPECT_EQ(found.report().basis, Basis::Distribution);
    EXPECT_EQ(found.report().cases, 20u);
}

TEST(KrigingIntervals, RestOnRefitsWhereParametersAreEstimated)
{
    const CalibrationReport report = ofWave(60).report();

    EXPECT_EQ(report.basis, Basis::Refits);
    EXPECT_EQ(report.cases, 60u);
    ASSERT_EQ(report.shares.size(), 4u);
}

TEST(KrigingIntervals, RestOnLeaveOneOutWhereParametersAreGiven)
{
    KrigingFitOptions options = withTrend(0);
    options.correlationLengths = {0.5, 1.0};
    options.nugget = 1e-4;
    options.nuggetMode = KrigingOptions::NuggetMode::Fixed;

    EXPECT_EQ(ofWave(60, options).report().basis, Basis::LeaveOneOut);
}

TEST(KrigingIntervals, RestOnLeaveOneOutOfCasesTooManyForOneMatrix)
{
    KrigingFitOptions options = withTrend(0);
    options.sizes.maxExact = 100;
    options.sizes.subset = 60;
    options.sizes.maxSearched = 60;
    options.sizes.searched = 60;

    EXPECT_EQ(ofWave(200, options).report().basis, Basis::LeaveOneOut);
}

TEST(KrigingIntervals, OfFewPointsAreThoseOfStudentsTHoweverManyReplicates)
{
    UniformNumbers numbers(3);
    Columns inputs(1);
    std::vector<double> output;
    for (int i = 0; i < 80; ++i) {
        inputs[0].push_back(std::exp2(i % 8));
        output.push_back(std::sqrt(inputs[0].back()) + 0.1 * numbers.normal());
    }

    const IntervalCalibration found = calibrated(inputs, output);

    EXPECT_EQ(found.report().basis, Basis::Distribution);
    EXPECT_EQ(found.quantile(0.95), Distributions::studentQuantile(0.95, 79.0));
}

TEST(KrigingIntervals, AreWiderWhereTheNoiseIsUneven)
{
    // Noise in a tenth of the range only, where it is far larger than its mean over all cases.
    UniformNumbers numbers(3);
    const Columns inputs = latinHypercube(120, 1, 7);
    std::vector<double> output = valuesOf(wave, inputs);
    for (std::size_t i = 0; i < output.size(); ++i) {
        output[i] += (inputs[0][i] > 0.9 ? 1.0 : 0.01) * numbers.normal();
    }
    const IntervalCalibration found = calibrated(inputs, output);

    EXPECT_GT(found.quantile(0.99), 1.5 * Distributions::studentQuantile(0.99, 119.0));
    EXPECT_LT(found.quantile(0.5), Distributions::studentQuantile(0.5, 119.0));
}
