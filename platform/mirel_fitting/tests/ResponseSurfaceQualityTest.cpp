#include "ResponseSurfaceTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace fittingtest;

// Metrics

TEST(ResponseSurfaceQuality, WritesItsQualityLineByLine)
{
    EXPECT_EQ(
        fit(grid()).qualityMetricInformation(0),
        "Cases: 10\n"
        "Terms: 6\n"
        "Order: full quadratic\n"
        "R2: 0.58279122\n"
        "Adjusted R2: 0.06128025\n"
        "RMSE: 2.392946\n"
        "PRESS: 233.92862\n"
        "Predicted R2: -3.2609948\n"
        "AICc: 106.66637\n"
        "Model: sum of squares 31.995238 on 5 degrees of freedom, F 1.118, p 0.47\n"
        "Linear: sum of squares 28.166667 on 2 degrees of freedom, F 2.459, p 0.201\n"
        "Interaction: sum of squares 1 on 1 degree of freedom, F 0.1746, p 0.697\n"
        "Square: sum of squares 2.8285714 on 2 degrees of freedom, F 0.247, p 0.792\n"
        "Residual: sum of squares 22.904762 on 4 degrees of freedom\n"
        "Lack of fit: sum of squares 20.904762 on 3 degrees of freedom, F 3.484, p 0.371\n"
        "Pure error: sum of squares 2 on 1 degree of freedom\n"
        "Total: sum of squares 54.9 on 9 degrees of freedom\n"
        "Intercept: 4.2857143, standard error 1.4300587, t 2.997, p 0.0401, 95 % limits "
        "0.31523467 and 8.2561939\n"
        "Coefficient of V1: 2, standard error 0.97691611, t 2.047, p 0.11, 95 % limits "
        "-0.71235394 and 4.7123539\n"
        "Coefficient of V2: 0.83333333, standard error 0.97691611, t 0.853, p 0.442, 95 % limits "
        "-1.8790206 and 3.5456873\n"
        "Coefficient of V1^2: 0.42857143, standard error 1.5665509, t 0.2736, p 0.798, 95 % limits "
        "-3.9208711 and 4.7780139\n"
        "Coefficient of V1 V2: 0.5, standard error 1.196473, t 0.4179, p 0.697, 95 % limits "
        "-2.8219416 and 3.8219416\n"
        "Coefficient of V2^2: -1.0714286, standard error 1.5665509, t -0.6839, p 0.532, 95 % "
        "limits -5.4208711 and 3.2780139\n"
        "Intercept, inputs coded: 4.2857143, standard error 1.4300587, t 2.997, p 0.0401, 95 % "
        "limits 0.31523467 and 8.2561939\n"
        "Coefficient of V1, inputs coded: 2, standard error 0.97691611, t 2.047, p 0.11, 95 % "
        "limits -0.71235394 and 4.7123539, variance inflation 1\n"
        "Coefficient of V2, inputs coded: 0.83333333, standard error 0.97691611, t 0.853, p 0.442, "
        "95 % limits -1.8790206 and 3.5456873, variance inflation 1\n"
        "Coefficient of V1^2, inputs coded: 0.42857143, standard error 1.5665509, t 0.2736, p "
        "0.798, 95 % limits -3.9208711 and 4.7780139, variance inflation 1.029\n"
        "Coefficient of V1 V2, inputs coded: 0.5, standard error 1.196473, t 0.4179, p 0.697, 95 % "
        "limits -2.8219416 and 3.8219416, variance inflation 1\n"
        "Coefficient of V2^2, inputs coded: -1.0714286, standard error 1.5665509, t -0.6839, p "
        "0.532, 95 % limits -5.4208711 and 3.2780139, variance inflation 1.029\n"
        "Leverage: mean 0.6, largest 0.7976 of case 1, 0.7976 of case 3, 0.7976 of case 7, 0.7976 "
        "of case 9, 0.5238 of case 2\n"
        "Stationary point: saddle of 1.9752008 at V1 = -2.2534637, V2 = -0.13691932, outside the "
        "ranges of the cases\n"
        "Left-out cases are predicted no better than by the mean of the cases: do not rely on this "
        "model.\n");
}

TEST(ResponseSurfaceQuality, FiguresFollowFromResidualsAndSpread)
{
    const Cases cases = twoInputs(25, 1.5);
    const Model model = fit(cases);
    const Column fitted = predict(model, cases.inputs);
    double mean = 0.0;
    for (const double value : cases.outputs[0]) {
        mean += value / 25.0;
    }
    double residual = 0.0;
    double total = 0.0;
    for (std::size_t k = 0; k < 25; ++k) {
        residual += std::pow(cases.outputs[0][k] - fitted[k], 2);
        total += std::pow(cases.outputs[0][k] - mean, 2);
    }
    const FitMetrics metrics = model.fitMetrics(0);

    EXPECT_EQ(metrics.cases, 25u);
    EXPECT_EQ(metrics.terms, 6u);
    EXPECT_NEAR(metrics.r2, 1.0 - residual / total, 1e-13);
    EXPECT_NEAR(metrics.adjustedR2, 1.0 - residual / 19.0 / (total / 24.0), 1e-13);
    EXPECT_NEAR(metrics.rmse, std::sqrt(residual / 19.0), 1e-13);
    double press = 0.0;
    for (const LeaveOneOutPrediction& left : model.leaveOneOutPredictions(0)) {
        press += std::pow(left.output - left.predicted, 2);
    }
    EXPECT_NEAR(metrics.press, press, 1e-10 * press);
    EXPECT_NEAR(metrics.looRmse, std::sqrt(press / 25.0), 1e-10);
    EXPECT_NEAR(metrics.predictedR2, 1.0 - metrics.press / total, 1e-12);
    EXPECT_TRUE(std::isnan(metrics.q2));
}

TEST(ResponseSurfaceQuality, HasNoPressWhenACaseAloneDeterminesATerm)
{
    // Without the last case V2 is constant.
    const Model model = fit({{{1, 2, 3, 4, 5}, {0, 0, 0, 0, 1}}, {{1, 3, 2, 5, 4}}}, 1);
    const FitMetrics metrics = model.fitMetrics(0);

    EXPECT_TRUE(std::isnan(metrics.press));
    EXPECT_TRUE(std::isnan(metrics.predictedR2));
    EXPECT_TRUE(std::isnan(metrics.looRmse));
    EXPECT_GT(metrics.rmse, 0.0);
    EXPECT_NE(model.qualityMetricInformation(0).find(
                  "PRESS: not available (a case alone determines a term, and leaving it out "
                  "leaves no such fit)\n"),
              std::string::npos);
}

TEST(ResponseSurfaceQuality, PredictsAConstantOutputWithoutR2)
{
    Cases cases = twoInputs(30, 0.0);
    std::fill(cases.outputs[0].begin(), cases.outputs[0].end(), 0.1);
    const Model model = fit(cases);
    const FitMetrics metrics = model.fitMetrics(0);

    EXPECT_EQ(predict(model, {{1.0, 9.0}, {-3.0, 4.0}}), (Column{0.1, 0.1}));
    EXPECT_TRUE(std::isnan(metrics.r2));
    EXPECT_TRUE(std::isnan(metrics.adjustedR2));
    EXPECT_TRUE(std::isnan(metrics.predictedR2));
    EXPECT_EQ(metrics.rmse, 0.0);
    EXPECT_EQ(metrics.press, 0.0);
    EXPECT_NE(model.qualityMetricInformation(0).find(
                  "R2: not available (the output is the same in every case)\n"),
              std::string::npos);
}
