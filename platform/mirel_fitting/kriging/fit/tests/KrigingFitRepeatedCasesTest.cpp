#include <mirel_fitting/kriging/report/KrigingFit.h>

#include "KrigingFitTestSupport.h"

#include <gtest/gtest.h>

#include <limits>

TEST(KrigingFitRepeatedCases, CountsExactCopiesOfACaseOnce)
{
    Columns inputs = latinHypercube(20, 2, 3);
    std::vector<double> output = valuesOf(wave, inputs);
    const KrigingFit once = fitOf(inputs, output);
    for (const std::size_t copied : {4, 4, 11}) {
        inputs[0].push_back(inputs[0][copied]);
        inputs[1].push_back(inputs[1][copied]);
        output.push_back(output[copied]);
    }

    const KrigingFit copies = fitOf(inputs, output);

    EXPECT_TRUE(warns(copies, "3 cases repeat another case exactly and were merged with it."));
    EXPECT_EQ(copies.metrics.cases, 20u);
    // The mean that the outputs are centred by counts every row.
    EXPECT_NEAR(copies.report.logLikelihood, once.report.logLikelihood, 1e-2);
    EXPECT_NEAR(valueAt(copies, {0.3, 0.6}), valueAt(once, {0.3, 0.6}), 1e-4);
}

TEST(KrigingFitRepeatedCases, SmoothsCasesThatContradictEachOther)
{
    Columns inputs = latinHypercube(20, 1, 3);
    std::vector<double> output = valuesOf(wave, inputs);
    for (std::size_t i = 0; i < 20; ++i) {
        inputs[0].push_back(inputs[0][i]);
        output.push_back(output[i] + 0.2);
    }

    const KrigingFit fit = fitOf(inputs, output);

    EXPECT_TRUE(warns(fit, "At 20 points several cases have the same inputs but different outputs: "
                           "the model smooths them."));
    EXPECT_EQ(fit.metrics.cases, 40u);
    // Pairs 0.2 apart scatter by 0.1 about their mean: the estimate without bias is 0.2 / sqrt(2).
    EXPECT_NEAR(std::sqrt(fit.report.nugget * fit.report.processVariance), 0.2 / std::sqrt(2.0),
                0.04);
    EXPECT_NEAR(valueAt(fit, {inputs[0][7]}), output[7] + 0.1, 0.1);
    EXPECT_GT(fit.metrics.rmse, 0.099);
}

TEST(KrigingFitRepeatedCases, PassesThroughTheMeanOfContradictingCasesWhereTheNuggetIsFixed)
{
    Columns inputs = latinHypercube(20, 1, 3);
    std::vector<double> output = valuesOf(wave, inputs);
    inputs[0].push_back(inputs[0][7]);
    output.push_back(output[7] + 0.2);

    const KrigingFit fit = fitOf(inputs, output, withFixedNugget(0.0, withTrend(0)));

    EXPECT_NEAR(valueAt(fit, {inputs[0][7]}), output[7] + 0.1, 1e-6);
    EXPECT_TRUE(warns(fit, "At 1 point several cases have the same inputs but different outputs: "
                           "the model passes through their mean."));
}

TEST(KrigingFitRepeatedCases, SaysThatCasesNextToEachOtherContradict)
{
    Columns inputs = latinHypercube(30, 2, 3);
    std::vector<double> output = valuesOf(wave, inputs);
    inputs[0].push_back(inputs[0][7] + 1e-13);
    inputs[1].push_back(inputs[1][7]);
    output.push_back(output[7] + 0.5);

    const KrigingFit fit = fitOf(inputs, output);

    EXPECT_TRUE(warns(fit, "At 1 place cases lie next to each other (less than 1e-09 of the range "
                           "of every input apart) but have different outputs: the model smooths "
                           "them."));
    EXPECT_NEAR(valueAt(fit, {inputs[0][7], inputs[1][7]}), output[7] + 0.25, 0.2);
}

TEST(KrigingFitRepeatedCases, CountsCopiesAsMeasurementsWhereOthersContradict)
{
    const Columns inputs = {{0.0, 1.0, 1.0, 1.0, 1.0, 2.0, 2.0, 3.0}};
    const std::vector<double> output = {2.0, 5.0, 5.0, 5.0, 6.0, 4.0, 4.0, 3.0};

    const KrigingFit fit = fitOf(inputs, output, withFixedNugget(0.0, withTrend(0)));

    EXPECT_NEAR(valueAt(fit, {1.0}), 5.25, 1e-9);
    EXPECT_EQ(fit.metrics.cases, 8u);
    EXPECT_TRUE(warns(fit, "3 cases repeat another case exactly and were counted as measured "
                           "again, since other cases with the same inputs have different "
                           "outputs."));
}

TEST(KrigingFitRepeatedCases, EstimatesTheNoiseOfReadingsThatOftenAgree)
{
    Columns inputs(1);
    std::vector<double> output;
    UniformNumbers numbers(4);
    for (int point = 0; point < 20; ++point) {
        for (int reading = 0; reading < 4; ++reading) {
            inputs[0].push_back(point);
            output.push_back(std::round(8.0 * std::sin(0.3 * point) + 0.7 * numbers.normal()));
        }
    }

    const KrigingFit fit = fitOf(inputs, output);

    // Rounding to whole numbers adds a twelfth to the variance; 60 degrees of freedom estimate a
    // deviation to about 9 %.
    EXPECT_NEAR(fit.report.noiseDeviation, std::sqrt(0.49 + 1.0 / 12.0), 0.14);
}

TEST(KrigingFitRepeatedCases, IsNotMisledByRepeatedCasesThatDifferByNextToNothing)
{
    const Columns once = latinHypercube(20, 1, 3);
    const std::vector<double> output = valuesOf(wave, once);
    const KrigingFit plain = fitOf(once, output, withTrend(1));
    for (const double difference : {1e-14, 1e-10, 1e-7, 1e-6, 1e-5}) {
        Columns inputs(1);
        std::vector<double> repeated;
        for (std::size_t i = 0; i < 20; ++i) {
            for (const double step : {0.0, -difference, difference}) {
                inputs[0].push_back(once[0][i]);
                repeated.push_back(output[i] + step);
            }
        }

        const KrigingFit fit = fitOf(inputs, repeated, withTrend(1));

        // What is taken for noise shortens them a little.
        EXPECT_NEAR(fit.report.correlationLengths[0], plain.report.correlationLengths[0],
                    0.2 * plain.report.correlationLengths[0])
            << difference;
        EXPECT_NEAR(valueAt(fit, {0.37}), valueAt(plain, {0.37}), 1e-6 + 2.0 * difference)
            << difference;
    }
}

TEST(KrigingFitRepeatedCases, AcceptsCasesThatNearlyCoincide)
{
    Columns inputs = latinHypercube(30, 2, 3);
    for (std::size_t i = 0; i < 30; ++i) {
        inputs[0].push_back(inputs[0][i] * (1.0 + 1e-13));
        inputs[1].push_back(inputs[1][i]);
    }

    const KrigingFit fit = fitOf(inputs, valuesOf(wave, inputs));

    EXPECT_NEAR(valueAt(fit, {0.4, 0.4}), wave({0.4, 0.4}), 1e-2);
}

TEST(KrigingFitRepeatedCases, IsTheTrendWhereRepeatedCasesDifferByRounding)
{
    const Columns once = latinHypercube(20, 1, 3);
    Columns inputs(1);
    std::vector<double> output;
    for (const double x : once[0]) {
        for (const double factor : {1.0, 1.0 + 2.0 * std::numeric_limits<double>::epsilon()}) {
            inputs[0].push_back(x);
            output.push_back((4.0 + 3.0 * x) * factor);
        }
    }

    const KrigingFit fit = fitOf(inputs, output, withTrend(1));

    EXPECT_TRUE(
        warns(fit, "The trend passes through all cases: there is nothing left to correlate."));
}
