#include <mirel_fitting/kriging/fit/KrigingFitter.h>

#include "KrigingFitTestSupport.h"

#include <mirel_fitting/FitProgress.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <numeric>

namespace {

using Bound = KrigingReport::Bound;

const double infinity = std::numeric_limits<double>::infinity();

} // namespace

TEST(KrigingFitter, IgnoresAConstantInput)
{
    const Columns inputs = latinHypercube(20, 1, 3);
    const std::vector<double> output = valuesOf(wave, inputs);
    const KrigingFit without = fitOf(inputs, output);

    const KrigingFit with = fitOf({std::vector<double>(20, 5.0), inputs[0]}, output);

    EXPECT_TRUE(warns(with, "V1 is constant over the cases and was ignored."));
    EXPECT_EQ(with.report.correlationLengths[0], infinity);
    EXPECT_EQ(with.report.correlationLengths[1], without.report.correlationLengths[0]);
    EXPECT_EQ(valueAt(with, {123.0, 0.4}), valueAt(without, {0.4}));
}

TEST(KrigingFitter, IgnoresAnInputThatVariesByRoundingOnly)
{
    const std::vector<double> output = {1.0, 3.0, 2.0, 5.0, 4.0, 6.0, 3.0};
    Columns inputs = {{0.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0}};
    const double without = valueAt(fitOf(inputs, output, withTrend(1)), {2.5});
    inputs.push_back({0.3, 0.1 + 0.2, 0.3, 0.3, 0.1 + 0.2, 0.3, 0.3});

    const KrigingFit fit = fitOf(inputs, output, withTrend(1));

    EXPECT_EQ(valueAt(fit, {2.5, 0.4}), without);
    EXPECT_TRUE(warns(fit, "V2 is constant over the cases and was ignored."));
}

TEST(KrigingFitter, NumbersInputsAsTheyWereGiven)
{
    const Columns inputs = latinHypercube(20, 2, 3);

    const KrigingFit fit = fitOf({inputs[0], std::vector<double>(20, 5.0), inputs[1]},
                                 valuesOf(wave, inputs), withTrend(1, {0.5, 1.0, 0.5}));

    EXPECT_EQ(fit.report.trendTerms, (std::vector<std::string>{"1", "V1", "V3"}));
}

TEST(KrigingFitter, PredictsAConstantOutputExactly)
{
    const Columns inputs = latinHypercube(20, 2, 3);

    const KrigingFit fit = fitOf(inputs, std::vector<double>(20, 0.1), withTrend(1));

    EXPECT_EQ(valueAt(fit, {0.3, 0.4}), 0.1);
    EXPECT_EQ(valueAt(fit, {99.0, -99.0}), 0.1);
    EXPECT_EQ(fit.metrics.rmse, 0.0);
    EXPECT_EQ(fit.metrics.looRmse, 0.0);
    EXPECT_TRUE(std::isnan(fit.metrics.r2));
    EXPECT_TRUE(std::isnan(fit.metrics.q2));
    EXPECT_EQ(fit.report.trendTerms, std::vector<std::string>{"1"});
    EXPECT_EQ(fit.report.trendCoefficients, std::vector<double>{0.1});
    EXPECT_EQ(fit.report.logLikelihood, infinity);
    EXPECT_TRUE(warns(fit, "The output is the same in all cases: the prediction is constant."));
}

TEST(KrigingFitter, IsConstantForASingleCase)
{
    const KrigingFit fit = fitOf({{2.0}, {3.0}}, {7.5}, withTrend(2));

    EXPECT_EQ(valueAt(fit, {2.0, 3.0}), 7.5);
    EXPECT_EQ(valueAt(fit, {0.0, 0.0}), 7.5);
    EXPECT_EQ(fit.metrics.cases, 1u);
    EXPECT_TRUE(std::isnan(fit.metrics.looRmse));
    EXPECT_TRUE(warns(fit, "There is only one case: the prediction is constant."));
}

TEST(KrigingFitter, InterpolatesWithAFixedLengthNextToNothing)
{
    const KrigingFit fit =
        fitOf({{0.0, 1.0, 2.0, 3.0}}, {1.0, -1.0, 4.0, 2.0}, withTrend(0, {1e-320}));

    EXPECT_NEAR(valueAt(fit, {2.0}), 4.0, 1e-9);
    EXPECT_NEAR(valueAt(fit, {2.5}), 1.5, 1e-9);
}

TEST(KrigingFitter, ManagesWithTwoCases)
{
    const KrigingFit fit = fitOf({{0.0, 1.0}}, {3.0, 5.0}, withTrend(1));

    EXPECT_NEAR(valueAt(fit, {0.0}), 3.0, 1e-9);
    EXPECT_NEAR(valueAt(fit, {1.0}), 5.0, 1e-9);
    EXPECT_NEAR(valueAt(fit, {0.5}), 4.0, 1e-9);
    EXPECT_TRUE(warns(fit, "The order of the trend was lowered from 1 to 0: 2 distinct cases are "
                           "too few for more."));
}

TEST(KrigingFitter, TakesAHandfulOfCasesWithoutOrderForNoise)
{
    // To meet them, lengths would have to be shorter than their spacing.
    const KrigingFit fit = fitOf({{0.0, 1.0, 2.0, 3.0}}, {0.3, 0.5, 0.3, 0.5});

    for (const double x : {0.0, 0.5, 3.0}) {
        EXPECT_NEAR(valueAt(fit, {x}), 0.4, 1e-3);
    }
}

TEST(KrigingFitter, InterpolatesSmoothCasesWhoseLikelihoodHardlyPrefersANugget)
{
    // Some of these designs are most likely with a nugget near 1e-6, by less than 2.
    const auto smooth = [](const std::vector<double>& x) { return 1.0 / (1.0 + x[0] + x[1]); };
    for (std::uint64_t seed = 1; seed <= 20; ++seed) {
        UniformNumbers numbers(seed);
        const Columns inputs = {numbers.next(30), numbers.next(30)};
        const std::vector<double> output = valuesOf(smooth, inputs);

        const KrigingFit fit = fitOf(inputs, output, withTrend(1));

        EXPECT_LT(fit.metrics.rmse, 1e-6) << "seed " << seed;
    }
}

TEST(KrigingFitter, LowersTheTrendToWhatTheCasesSupport)
{
    const auto nearlyPlane = [](const std::vector<double>& x) {
        return 5.0 * x[0] - 3.0 * x[1] + 0.1 * std::sin(7.0 * x[0] + 9.0 * x[1]);
    };
    const Columns six = latinHypercube(6, 2, 3);
    const Columns twenty = latinHypercube(20, 2, 3);
    struct
    {
        Columns inputs;
        std::vector<double> output;
        KrigingFitOptions options;
        int order;
        std::string warning;
    } const rows[] = {
        // Six parameters of a quadratic and a variance: seven cases.
        {six, valuesOf(wave, six), withTrend(2, {0.5, 0.5}), 1,
         "2 to 1: 6 distinct cases are too few for more."},
        {twenty, valuesOf(wave, twenty), withTrend(1), 0,
         "1 to 0: the cases show no noise, and from 20 distinct cases a constant trend predicts a "
         "smooth output better."},
        {latinHypercube(14, 5, 3), UniformNumbers(7).next(14), withTrend(1), 0,
         "1 to 0: 14 distinct cases are too few for more."},
        {twenty, valuesOf(wave, twenty), withFixedNugget(0.1, withTrend(1)), 1, ""},
        {twenty, valuesOf(nearlyPlane, twenty), withTrend(1), 1, ""},
        {twenty, valuesOf(wave, twenty), withTrend(1, {0.5, 0.5}), 1, ""}};
    for (const auto& row : rows) {
        const KrigingFit fit = fitOf(row.inputs, row.output, row.options);

        EXPECT_EQ(fit.report.trendOrder, row.order);
        EXPECT_EQ(fit.report.trendTerms.size(), row.order == 0 ? 1u : 1 + row.inputs.size());
        EXPECT_EQ(fit.metrics.terms, fit.report.trendTerms.size());
        EXPECT_EQ(warns(fit, "The order of the trend was lowered from " + row.warning),
                  !row.warning.empty());
    }
}

TEST(KrigingFitter, SaysWhichTermsOfTheTrendWereDropped)
{
    // V2 is V1 upside down.
    Columns inputs = latinHypercube(20, 1, 3);
    inputs.push_back(inputs[0]);
    for (double& x : inputs[1]) {
        x = 3.0 - x;
    }

    const KrigingFit fit = fitOf(inputs, valuesOf(wave, inputs), withTrend(1, {0.5, 0.5}));

    EXPECT_EQ(fit.report.trendTerms, (std::vector<std::string>{"1", "V1"}));
    EXPECT_TRUE(warns(fit, "Terms of the trend that the cases cannot separate were dropped: V2."));
}

TEST(KrigingFitter, TakesLessThanTheLeastNuggetForNone)
{
    const Columns inputs = latinHypercube(30, 1, 3);
    KrigingFitOptions options = withTrend(0);
    options.nugget = 1e-15;

    const KrigingFit fit = fitOf(inputs, valuesOf(wave, inputs), options);

    EXPECT_EQ(fit.report.noiseDeviation, 0.0);
    EXPECT_LT(fit.metrics.rmse, 1e-9);
}

TEST(KrigingFitter, TakesForNoiseWhatFixedLengthsCannotFollow)
{
    // With infinite lengths all cases are one; only the nugget separates them.
    const Columns inputs = latinHypercube(30, 1, 3);
    const std::vector<double> output = valuesOf(wave, inputs);

    const KrigingFit fit = fitOf(inputs, output, withFixedNugget(0.0, withTrend(0, {infinity})));

    EXPECT_GT(fit.metrics.rmse, 0.1);
    // The variance has 29 degrees of freedom.
    EXPECT_NEAR(fit.report.noiseDeviation, fit.metrics.rmse * std::sqrt(30.0 / 29.0),
                0.01 * fit.metrics.rmse);
}

TEST(KrigingFitter, TakesForNoiseWhatOnlySpikesWouldFollow)
{
    // The likelihood without the prior of the lengths prefers spikes by a little.
    for (const std::uint64_t seed : {9, 15, 32}) {
        const KrigingFit fit =
            fitOf(latinHypercube(60, 2, seed), noisy(std::vector<double>(60), 1.0, seed));

        EXPECT_GT(fit.report.nugget, 0.1) << seed;
        for (const double length : fit.report.correlationLengths) {
            EXPECT_GT(length, 0.2) << seed;
        }
    }
}

TEST(KrigingFitter, ReportsAFractionThatNeverDecreases)
{
    for (std::uint64_t seed = 1; seed <= 10; ++seed) {
        // A plane with noise: of the trends that are tried the linear one is searched to the end.
        const Columns inputs = latinHypercube(30, 2, seed);
        const std::vector<double> output =
            noisy(valuesOf([](const std::vector<double>& x) { return 9.0 * x[0] - x[1]; }, inputs),
                  1.0, seed);
        double last = 0.0;
        bool decreases = false;
        {
            const FitProgress progress([&](double fraction, const std::string&) {
                decreases = decreases || fraction < last;
                last = fraction;
                return true;
            });
            fitOf(inputs, output, withTrend(1));
        }

        EXPECT_FALSE(decreases) << seed;
        EXPECT_EQ(last, 1.0);
    }
}

TEST(KrigingFitter, DoesNotDependOnTheOrderOfTheCases)
{
    Columns inputs = latinHypercube(25, 2, 3);
    std::vector<double> output = valuesOf(wave, inputs);
    const KrigingFit fit = fitOf(inputs, output);
    for (std::vector<double>* column : {&inputs[0], &inputs[1], &output}) {
        std::rotate(column->begin(), column->begin() + 9, column->end());
        std::swap(column->front(), column->back());
    }

    const KrigingFit permuted = fitOf(inputs, output);

    EXPECT_EQ(permuted.report.logLikelihood, fit.report.logLikelihood);
    EXPECT_EQ(permuted.report.correlationLengths, fit.report.correlationLengths);
    EXPECT_EQ(valueAt(permuted, {0.3, 0.6}), valueAt(fit, {0.3, 0.6}));
    EXPECT_EQ(permuted.metrics.q2, fit.metrics.q2);
}

TEST(KrigingFitter, IsTheMeanOfTheCasesInAnyOrderWithoutInputs)
{
    std::vector<double> output = UniformNumbers(3).next(50);
    const KrigingFit fit = fitOf({}, output);
    std::sort(output.begin(), output.end());

    const KrigingFit permuted = fitOf({}, output);

    EXPECT_NEAR(valueAt(permuted, {}), std::accumulate(output.begin(), output.end(), 0.0) / 50.0,
                1e-15);
    EXPECT_EQ(permuted.report.processVariance, fit.report.processVariance);
    EXPECT_EQ(permuted.metrics.looRmse, fit.metrics.looRmse);
}

struct Unit
{
    double inputScale;
    double inputShift;
    double outputScale;
    double outputShift;
};

/** The same cases in other units. */
KrigingFit fitIn(const Unit& unit, const KrigingFitOptions& options)
{
    Columns inputs = latinHypercube(25, 2, 3);
    std::vector<double> output = valuesOf(wave, inputs);
    for (double& x : inputs[0]) {
        x = unit.inputShift + unit.inputScale * x;
    }
    for (double& y : output) {
        y = unit.outputShift + unit.outputScale * y;
    }
    return fitOf(inputs, output, options);
}

/** At one point, in the first units. */
double valueOf(const KrigingFit& fit, const Unit& unit)
{
    const double x = unit.inputShift + unit.inputScale * 0.3;
    return (valueAt(fit, {x, 0.6}) - unit.outputShift) / unit.outputScale;
}

const Unit plainUnit = {1.0, 0.0, 1.0, 0.0};

class KrigingFitterInUnits : public testing::TestWithParam<Unit>
{};

TEST(KrigingFitter, IsTheSameInUnitsOfAPowerOfTwo)
{
    // Nothing is rounded in going from one to the other, so every digit is kept.
    const Unit unit = {std::ldexp(1.0, 40), 0.0, std::ldexp(1.0, -40), 0.0};
    const KrigingFit fit = fitIn(plainUnit, withTrend(1));

    const KrigingFit other = fitIn(unit, withTrend(1));

    EXPECT_EQ(valueOf(other, unit), valueOf(fit, plainUnit));
    EXPECT_EQ(other.report.correlationLengths[0] / unit.inputScale,
              fit.report.correlationLengths[0]);
    EXPECT_EQ(other.metrics.q2, fit.metrics.q2);
}

TEST_P(KrigingFitterInUnits, IsTheSameFit)
{
    const Unit unit = GetParam();
    KrigingFitOptions options = withTrend(1);
    options.nugget = 1e-6; // so that rounding of the shifted numbers counts for little
    const KrigingFit fit = fitIn(plainUnit, options);

    const KrigingFit other = fitIn(unit, options);

    EXPECT_NEAR(valueOf(other, unit), valueOf(fit, plainUnit), 1e-5);
    EXPECT_NEAR(other.report.correlationLengths[0] / unit.inputScale,
                fit.report.correlationLengths[0], 1e-3 * fit.report.correlationLengths[0]);
    EXPECT_NEAR(other.report.logLikelihood +
                    fit.report.degreesOfFreedom * std::log(unit.outputScale),
                fit.report.logLikelihood, 25 * 1e-4);
    EXPECT_NEAR(other.metrics.q2, fit.metrics.q2, 1e-6);
}

// Shifts of at most 1e6 scales: a double has 16 digits, so that ten of the data are left.
INSTANTIATE_TEST_SUITE_P(RawUnits, KrigingFitterInUnits,
                         testing::Values(Unit{1e-12, 0.0, 1.0, 0.0}, Unit{1e12, 0.0, 1.0, 0.0},
                                         Unit{1.0, 0.0, 1e-12, 0.0}, Unit{1.0, 0.0, 1e12, 0.0},
                                         Unit{1e12, 1e15, 1e-12, 1e-9},
                                         Unit{1e-12, -1e-7, 1e12, -1e17},
                                         Unit{1e6, 1e12, 1e6, 1e12}));
