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
    const FitProblem problem(std::move(inputs), output, options);
    return calibrateIntervals(problem.input, fitKriging(problem.cases, output, options));
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

TEST(KrigingIntervals, OfFewNoisyCasesAreWiderWhereRefitsMissMoreThanByChance)
{
    constexpr int tables = 8;
    double held = 0.0;
    int wider = 0;
    for (int table = 1; table <= tables; ++table) {
        const Columns inputs = latinHypercube(12, 3, table);
        const IntervalCalibration found =
            calibrated(inputs, noisy(valuesOf(wave, inputs), 0.3, table));

        const CalibrationReport report = found.report();
        const bool isWider = found.quantile(0.95) > found.studentQuantile(0.95);
        EXPECT_EQ(report.basis, isWider ? Basis::Refits : Basis::Distribution) << table;
        EXPECT_EQ(isWider, report.coverage[2].share < 10.0 / 12.0) << table;
        held += report.coverage[2].share / tables;
        wider += isWider ? 1 : 0;
    }
    // With the parameters of all cases all but a few would be held.
    EXPECT_LT(held, 0.92);
    EXPECT_GT(wider, 0);
}

TEST(KrigingIntervals, OfFewRepeatedPointsAreThoseOfStudentsT)
{
    // Six centre runs that are left out together would all be missed together.
    Columns inputs = latinHypercube(14, 2, 7);
    for (std::vector<double>& column : inputs) {
        column.insert(column.end(), 6, 0.5);
    }
    std::vector<double> output = valuesOf(wave, inputs);
    for (std::size_t i = 14; i < output.size(); ++i) {
        output[i] += 5.0;
    }

    EXPECT_EQ(calibrated(inputs, output).report().basis, Basis::Distribution);
}

TEST(KrigingIntervals, RestOnRefitsOrOnLeaveOneOutWhereParametersAreGivenOrOneMatrixIsTooSmall)
{
    const CalibrationReport report = ofWave(60).report();

    EXPECT_EQ(report.basis, Basis::Refits);
    EXPECT_EQ(report.cases, 60u);
    ASSERT_EQ(report.coverage.size(), 4u);
    EXPECT_EQ(ofWave(60, withFixedNugget(1e-4, withTrend(0, {0.5, 1.0}))).report().basis,
              Basis::LeaveOneOut);
    KrigingFitOptions tooMany = withTrend(0);
    tooMany.sizes.maxExact = 100;
    tooMany.sizes.subset = 60;
    tooMany.sizes.maxSearched = 60;
    tooMany.sizes.searched = 60;
    EXPECT_EQ(ofWave(200, tooMany).report().basis, Basis::LeaveOneOut);
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
