#include <mirel_fitting/kriging/report/KrigingFitReport.h>

#include "KrigingFitTestSupport.h"

#include <gtest/gtest.h>

#include <numeric>

using Bound = KrigingReport::Bound;

TEST(KrigingFitReport, MeasuresItsErrorsInTheUnitOfTheOutput)
{
    const Columns inputs = latinHypercube(20, 2, 3);
    std::vector<double> output = valuesOf(wave, inputs);
    const KrigingFitOptions options = withFixedNugget(0.1, withTrend(0, {0.5, 0.5}));
    const KrigingFit fit = fitOf(inputs, output, options);
    double errors = 0.0;
    double total = 0.0;
    double press = 0.0;
    const double mean = std::accumulate(output.begin(), output.end(), 0.0) / 20.0;
    for (std::size_t i = 0; i < 20; ++i) {
        const double residual = output[i] - valueAt(fit, {inputs[0][i], inputs[1][i]});
        errors += residual * residual;
        total += (output[i] - mean) * (output[i] - mean);
        Columns others = inputs;
        std::vector<double> otherOutput = output;
        for (std::vector<double>* column : {&others[0], &others[1], &otherOutput}) {
            column->erase(column->begin() + static_cast<std::ptrdiff_t>(i));
        }
        const double left =
            output[i] - valueAt(fitOf(others, otherOutput, options), {inputs[0][i], inputs[1][i]});
        press += left * left;
    }

    EXPECT_EQ(fit.metrics.cases, 20u);
    EXPECT_NEAR(fit.metrics.rmse, std::sqrt(errors / 20.0), 1e-12);
    EXPECT_NEAR(fit.metrics.r2, 1.0 - errors / total, 1e-12);
    EXPECT_NEAR(fit.metrics.press, press, 1e-10);
    EXPECT_NEAR(fit.metrics.looRmse, std::sqrt(press / 20.0), 1e-11);
    EXPECT_NEAR(fit.metrics.q2, 1.0 - press / total, 1e-11);
}

TEST(KrigingFitReport, ReportsInputsWithoutInfluenceAndLengthsAtABound)
{
    const Columns inputs = latinHypercube(40, 2, 3);
    const std::vector<double> output = valuesOf(wave, {inputs[0]});

    const KrigingFit fit = fitOf(inputs, output);

    EXPECT_TRUE(warns(fit, "The cases show no influence of V2."));
    EXPECT_EQ(fit.report.isWithoutInfluence, (std::vector<bool>{false, true}));

    const KrigingFit withConstant =
        fitOf({inputs[0], std::vector<double>(40, 5.0), inputs[1]}, output);

    EXPECT_EQ(withConstant.report.lengthBounds,
              (std::vector<Bound>{Bound::None, Bound::None, Bound::Upper}));
}

TEST(KrigingFitReport, SeesInfluenceInTheTrend)
{
    Columns inputs = latinHypercube(40, 2, 3);
    const std::vector<double> output = valuesOf(wave, {inputs[0]});
    KrigingFit fit = fitOf(inputs, output);
    const KrigingCases cases(pointersTo(inputs), 40);
    const KrigingTrend trend(40, 2, cases.coordinates(), 1, 0);
    const KrigingFitReport report(cases, output, OutputScale::of(output));
    const std::vector<double> errors(3, 0.2);

    // Only the length of the second input is at its upper bound. Its slope is no more than two
    // errors, more than these, and without an error.
    report.addInfluence(fit, trend, {1.0, 0.1, 0.3}, errors);
    EXPECT_EQ(fit.report.isWithoutInfluence, (std::vector<bool>{false, true}));
    report.addInfluence(fit, trend, {1.0, 0.1, -0.5}, errors);
    EXPECT_EQ(fit.report.isWithoutInfluence, (std::vector<bool>{false, false}));
    report.addInfluence(fit, trend, {1.0, 0.1, 0.3});
    EXPECT_EQ(fit.report.isWithoutInfluence, (std::vector<bool>{false, false}));

    // Relative to the deviation of the process that length is short: it changes along it.
    fit.report.correlationLengths[1] /= 100.0;
    report.addInfluence(fit, trend, {1.0, 0.1, 0.3}, errors);
    EXPECT_EQ(fit.report.isWithoutInfluence, (std::vector<bool>{false, false}));
}

TEST(KrigingFitReport, ReportsTheCasesThatTheOthersPredictWorst)
{
    Columns inputs = latinHypercube(30, 1, 3);
    std::vector<double> output = valuesOf(wave, inputs);
    output[17] += 0.5;

    const KrigingFit fit = fitOf(inputs, output);

    ASSERT_EQ(fit.report.worstCases.size(), 5u);
    const KrigingReport::LeftOutCase worst = fit.report.worstCases.front();
    EXPECT_EQ(worst.row, 17u);
    EXPECT_NEAR(worst.output, output[17], 1e-12);
    // The outlier makes the fit noisy: the others say roughly what is true.
    EXPECT_NEAR(worst.predicted, output[17] - 0.5, 0.2);
}

TEST(KrigingFitReport, ReportsNoWorstCasesWhereTheirErrorsAreRounding)
{
    const Columns inputs = latinHypercube(30, 2, 3);
    const std::vector<double> output = valuesOf(
        [](const std::vector<double>& x) { return 1e6 + 3.0 * x[0] - x[1] / 7.0; }, inputs);

    EXPECT_TRUE(fitOf(inputs, output, withTrend(1)).report.worstCases.empty());
}

TEST(KrigingFitReport, ReportsNoiseInTheUnitOfTheOutput)
{
    const Columns inputs = latinHypercube(150, 1, 3);
    const Function kilo = [](const std::vector<double>& x) { return 1000.0 * wave(x); };

    const KrigingFit fit = fitOf(inputs, noisy(valuesOf(kilo, inputs), 300.0, 9));

    // 150 cases estimate a deviation to about 6 %.
    EXPECT_NEAR(fit.report.noiseDeviation, 300.0, 50.0);
    EXPECT_EQ(fitOf(inputs, valuesOf(wave, inputs)).report.noiseDeviation, 0.0);
}

TEST(KrigingFitReport, SaysWhenThereIsNothingButNoise)
{
    const Columns inputs = latinHypercube(200, 1, 3);

    const KrigingFit fit = fitOf(inputs, noisy(std::vector<double>(200), 1.0, 5));

    EXPECT_LT(fit.metrics.r2, 0.1);
    const auto begins = [&](const std::string& start) {
        return std::any_of(fit.warnings.begin(), fit.warnings.end(), [&](const std::string& text) {
            return text.compare(0, start.size(), start) == 0;
        });
    };
    EXPECT_TRUE(begins("The model is flat: "));
    EXPECT_TRUE(begins("Noise dominates: "));
}

TEST(KrigingFitReport, SaysWhyThereAreNoLeaveOneOutFigures)
{
    // Without the last case nothing determines the slope along V2.
    const KrigingFit fit =
        fitOf({{0.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0}, {0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 1.0}},
              {3.0, 1.0, 4.0, 1.0, 5.0, 9.0, 2.0, 6.0}, withTrend(1, {2.0, 2.0}));

    EXPECT_TRUE(std::isnan(fit.metrics.looRmse));
    EXPECT_TRUE(warns(fit, "A case alone determines a term of the trend: there are no "
                           "leave-one-out figures, since leaving it out leaves no such fit."));
}

TEST(KrigingFitReport, SaysWhenItIsWorseThanTheMean)
{
    const Columns inputs = latinHypercube(30, 2, 3);

    const KrigingFit fit = fitOf(inputs, noisy(std::vector<double>(30), 1.0, 77));

    EXPECT_LE(fit.metrics.q2, 0.0);
    EXPECT_TRUE(warns(fit, "Left-out cases are predicted no better than by the mean of the cases: "
                           "do not rely on this model."));
}

TEST(KrigingFitReport, SaysWhenTheModelFollowsSingleCases)
{
    const Columns inputs = latinHypercube(30, 2, 3);
    const std::string warning = "The correlation lengths are below the spacing of the cases: the "
                                "model follows single cases and says little of what lies between "
                                "them.";
    const std::vector<double> output = valuesOf(wave, inputs);

    EXPECT_TRUE(warns(fitOf(inputs, output, withTrend(0, {0.05, 0.05})), warning));
    EXPECT_FALSE(warns(fitOf(inputs, output), warning));
}
