#include <mirel_fitting/responsesurface/ResponseSurfaceTexts.h>

#include "EquationEvaluator.h"
#include "FittingTestSupport.h"

#include <mirel_property/tests/TextParts.h>

#include <gtest/gtest.h>

#include <string>

using namespace fittingtest;

namespace {

using Texts = std::vector<std::string>;

PolynomialFit fit(Cases cases, int order = 2)
{
    return {QuadraticBasis(cases.inputs.size(), order), cases.inputPointers(),
            cases.outputPointers(), cases.count()};
}

/** Made-up figures. */
FitMetrics metrics()
{
    FitMetrics result;
    result.cases = 30;
    result.terms = 6;
    result.r2 = 0.987654321987;
    result.adjustedR2 = 0.98;
    result.rmse = 1234.5;
    result.press = 2e-7;
    result.predictedR2 = 0.97;
    return result;
}

ResponseSurfaceStatistics statistics()
{
    ResponseSurfaceStatistics result;
    CoefficientStatistics constant;
    constant.term = "1";
    constant.estimate = 2.0;
    constant.standardError = 0.5;
    constant.t = 4.0;
    constant.p = 0.00321;
    constant.lower = 1.0;
    constant.upper = 3.0;
    CoefficientStatistics linear = constant;
    linear.term = "V1";
    linear.p = 0.00001;
    linear.varianceInflation = 1.25;
    CoefficientStatistics dropped;
    dropped.term = "V1^2";
    dropped.isKept = false;
    result.coefficients = {constant, linear, dropped};
    result.codedCoefficients = {constant, linear, dropped};
    AnovaRow model;
    model.source = "Model";
    model.degreesOfFreedom = 1;
    model.sumOfSquares = 50.0;
    model.f = 12.3456;
    model.p = 0.0123;
    AnovaRow residual;
    residual.source = "Residual";
    residual.degreesOfFreedom = 28;
    residual.sumOfSquares = 3.5;
    AnovaRow lackOfFit;
    lackOfFit.source = "Lack of fit"; // no degree of freedom: not written
    result.anova = {model, residual, lackOfFit};
    result.meanLeverage = 0.2;
    result.largestLeverages = {{4, 0.75}, {0, 0.5}};
    return result;
}

std::string quality(const ResponseSurfaceStatistics& statistics)
{
    return ResponseSurfaceTexts::quality(fit(twoInputs(30, 1.0)), "full quadratic", metrics(),
                                         statistics);
}

} // namespace

TEST(ResponseSurfaceTexts, NamesTheTermsThatTheCasesDoNotSeparate)
{
    Cases cases = twoInputs(30, 1.0);
    EXPECT_EQ(ResponseSurfaceTexts::dependences(fit(cases)), Texts());

    Cases twoLevels = cases; // the square is 1 everywhere
    for (double& value : twoLevels.inputs[0]) {
        value = value > 2.0 ? 1.0 : -1.0;
    }
    EXPECT_EQ(ResponseSurfaceTexts::dependences(fit(twoLevels)),
              Texts{"V1^2 cannot be separated from the constant by these cases and was left out."});

    cases.inputs[1].assign(30, 7.0);
    EXPECT_EQ(ResponseSurfaceTexts::dependences(fit(cases)),
              Texts{"V2 is the same in every case and was left out, and with it V1 V2 and V2^2."});
    EXPECT_EQ(ResponseSurfaceTexts::dependences(fit(cases, 1)),
              Texts{"V2 is the same in every case and was left out."});
    for (int i = 0; i < 5; ++i) {
        cases.inputs.emplace_back(30, 7.0);
    }
    EXPECT_EQ(ResponseSurfaceTexts::dependences(fit(cases, 1)),
              Texts{"V2, V3, V4 and 3 more are the same in every case and were left out, with all "
                    "terms of them."});
}

TEST(ResponseSurfaceTexts, WritesTheEquationInTheUnitsOfInputsAndOutput)
{
    const PolynomialFit line = fit({{{0.0, 1.0, 4.0}}, {{1.0, 3.0, 9.0}}}, 1);
    const std::string text = ResponseSurfaceTexts::equation(line, line.outputs()[0]);

    for (const double value : {0.0, 1.0, -7.0}) {
        EXPECT_NEAR(EquationEvaluator(text, {value}).value(), 1.0 + 2.0 * value, 1e-13) << text;
    }
}

TEST(ResponseSurfaceTexts, WritesTheEquationInCentredInputsWhereExpandingLosesDigits)
{
    const PolynomialFit parabola =
        fit({{{1e8, 1e8 + 1, 1e8 + 2, 1e8 + 3, 1e8 + 4}}, {{4.0, 1.0, 0.0, 1.0, 4.0}}}, 2);
    const std::string text = ResponseSurfaceTexts::equation(parabola, parabola.outputs()[0]);

    EXPECT_TRUE(contains(text, "(V1 - 100000002)^2"));
}

TEST(ResponseSurfaceTexts, WritesFiguresOfEightDigitsOfWhatThereIs)
{
    const std::string text = quality(statistics());

    for (const char* part :
         {"Cases: 30\nTerms: 6\nOrder: full quadratic\nR2: 0.98765432\n",
          "RMSE: 1234.5\nPRESS: 2e-07\nPredicted R2: 0.97\n",
          "Intercept: 2, standard error 0.5, t 4, p 0.00321, 95 % limits 1 and 3\nCoefficient of "
          "V1: 2, standard error 0.5, t 4, p < 0.0001, 95 % limits 1 and 3\nIntercept, inputs "
          "coded: 2",
          "Coefficient of V1, inputs coded: 2, standard error 0.5, t 4, p < 0.0001, 95 % limits 1 "
          "and 3, variance inflation 1.25\n",
          "Model: sum of squares 50 on 1 degree of freedom, F 12.35, p 0.0123\n"
          "Residual: sum of squares 3.5 on 28 degrees of freedom\n"}) {
        EXPECT_TRUE(contains(text, part));
    }
    for (const char* part : {"AICc", "V1^2", "Lack of fit"}) {
        EXPECT_FALSE(contains(text, part));
    }
}

TEST(ResponseSurfaceTexts, DescribesTheStationaryPoint)
{
    ResponseSurfaceStatistics curved = statistics();
    EXPECT_TRUE(
        contains(quality(curved), "Stationary point: none, the polynomial is not curved\n"));

    curved.isCurved = true;
    curved.canonicalDirections = {{1.0, {1.0, 0.0, 0.0}}};
    EXPECT_TRUE(contains(quality(curved), "Stationary point: none, the polynomial rises along a "
                                          "direction in which it is not curved\n"));

    StationaryPoint point;
    point.nature = StationaryPoint::Nature::Maximum;
    point.value = 8.0;
    point.coordinates = {1.5, notANumber, -2.0};
    curved.stationaryPoint = point;
    EXPECT_TRUE(contains(quality(curved), "Stationary point: maximum of 8 at V1 = 1.5, V3 = -2, "
                                          "any V2, outside the ranges of the cases\n"));
}
