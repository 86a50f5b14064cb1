#include "ResponseSurfaceTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>
#include <set>
#include <string>
#include <vector>

using namespace fittingtest;

namespace {

CoefficientStatistics row(const std::string& term, double estimate, double standardError, double t,
                          double p, double lower, double upper, double varianceInflation)
{
    return {term, {}, estimate, standardError, t, p, lower, upper, varianceInflation, true};
}

void expectCoefficients(const std::vector<CoefficientStatistics>& found,
                        const std::vector<CoefficientStatistics>& expected)
{
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t k = 0; k < found.size(); ++k) {
        const CoefficientStatistics& one = found[k];
        EXPECT_EQ(one.term, expected[k].term);
        EXPECT_TRUE(one.isKept);
        expectFigure(one.estimate, expected[k].estimate, one.term);
        expectFigure(one.standardError, expected[k].standardError, one.term);
        expectFigure(one.t, expected[k].t, one.term);
        expectFigure(one.p, expected[k].p, one.term);
        expectFigure(one.lower, expected[k].lower, one.term);
        expectFigure(one.upper, expected[k].upper, one.term);
        if (k > 0) {
            expectFigure(one.varianceInflation, expected[k].varianceInflation, one.term);
        } else {
            EXPECT_TRUE(std::isnan(one.varianceInflation));
        }
    }
}

void expectRow(const AnovaRow& row, const std::string& source, std::size_t degreesOfFreedom,
               double squares, double f, double p)
{
    EXPECT_EQ(row.source, source);
    EXPECT_EQ(row.degreesOfFreedom, degreesOfFreedom);
    expectFigure(row.sumOfSquares, squares, source);
    EXPECT_DOUBLE_EQ(row.meanSquare, row.sumOfSquares / static_cast<double>(degreesOfFreedom));
    EXPECT_EQ(std::isnan(row.f), std::isnan(f));
    EXPECT_EQ(std::isnan(row.p), std::isnan(p));
    if (!std::isnan(f)) {
        // R prints these with five digits.
        EXPECT_NEAR(row.f, f, 1e-4 * std::fabs(f) + 1e-5) << source;
        EXPECT_NEAR(row.p, p, 1e-4 * p) << source;
    }
}

} // namespace

TEST(ResponseSurfaceStatistics, CoefficientsAreThoseOfR)
{
    const ResponseSurfaceStatistics statistics =
        fit(vapourDeposition()).responseSurfaceStatistics(0, 0.9);

    expectCoefficients(
        statistics.coefficients,
        {row("1", 1.13726044685310e+01, 1.976973509597315770, 5.7525325520661372,
             0.00222720585432027, 7.388907213894444048, 15.356301723167542050, 0.0),
         row("V1", -1.25152465599811e-01, 0.046628024502444132, -2.6840610756145229,
             0.04360753575772122, -0.219110190525192955, -0.031194740674428165, 23.8326293922464),
         row("V2", -5.50747652062682e-01, 0.508177857700438107, -1.0837694789672194,
             0.32793823050726428, -1.574750617585810364, 0.473255313460446358, 31.3837354759065),
         row("V1^2", 9.23456016140183e-05, 0.000423049089625874, 0.2182857826161134,
             0.83583597552044997, -0.000760118778276616, 0.000944809981504652, 14.9371301243828),
         row("V1 V2", 1.11780184923878e-02, 0.004772984947193869, 2.3419345788969119,
             0.06622067719264953, 0.001560222938601759, 0.020795814046173779, 14.8737504339075),
         row("V2^2", 2.08767892083585e-03, 0.038172648231325011, 0.0546904398192283,
             0.95850310718903775, -0.074832053803509338, 0.079007411645180992, 26.5945216270744)});
}

TEST(ResponseSurfaceStatistics, CodedCoefficientsAreThoseOfR)
{
    const ResponseSurfaceStatistics statistics =
        fit(vapourDeposition()).responseSurfaceStatistics(0, 0.9);

    expectCoefficients(
        statistics.codedCoefficients,
        {row("1", 5.8666297434418002, 0.419095975640238, 13.9982965345337895, 3.34556953334841e-05,
             5.022131079457522, 6.711128407426077, 0.0),
         row("V1", -1.9124383161764402, 0.362948188244419, -5.2691771942075425,
             3.27399828383311e-03, -2.643796472502525, -1.181080159850356, 1.0),
         row("V2", -0.2248749133294602, 0.362846895889931, -0.6197515146930610,
             5.62568924699704e-01, -0.956028960661403, 0.506279134002482, 1.0),
         row("V1^2", 0.1333470487306428, 0.610882885419762, 0.2182857826161143,
             8.35835975520449e-01, -1.097611515831433, 1.364305613292718, 1.09451865860586),
         row("V1 V2", 1.6990588108429401, 0.725493711973468, 2.3419345788969101,
             6.62206771926497e-02, 0.237153886667466, 3.160963735018413, 1.0),
         row("V2^2", 0.0334028627333744, 0.610762371701201, 0.0546904398192296,
             9.58503107189037e-01, -1.197312860856149, 1.264118586322897, 1.09451865860586)});
}

TEST(ResponseSurfaceStatistics, CoefficientsOfFactorialCodingAreThoseOfR)
{
    const auto model = fit(vapourDeposition());
    const ResponseSurfaceStatistics axial = model.responseSurfaceStatistics(0);
    const ResponseSurfaceStatistics factorial =
        model.responseSurfaceStatistics(0, 0.95, InputCoding::Factorial);

    // lm() of (Pressure - 42) / 26.87 and (ratio - 6) / 2.83
    const std::vector<double> estimates = {
        5.86662974344180,  -1.35229519883318, -0.159099001180593, 0.0666732380939562, 0.85,
        0.0167200117090827};
    EXPECT_EQ(factorial.factorialInputs, (std::vector<std::size_t>{0, 1}));
    ASSERT_EQ(factorial.codedCoefficients.size(), estimates.size());
    for (std::size_t k = 0; k < estimates.size(); ++k) {
        const CoefficientStatistics& one = factorial.codedCoefficients[k];
        const CoefficientStatistics& coded = axial.codedCoefficients[k];
        expectFigure(one.estimate, estimates[k], one.term);
        expectFigure(one.estimate / one.standardError, one.t, one.term);
        expectFigure((one.upper - one.lower) / one.standardError,
                     (coded.upper - coded.lower) / coded.standardError, one.term);
        EXPECT_EQ(one.t, coded.t) << one.term;
    }
}

TEST(ResponseSurfaceStatistics, FactorialPointsAreFoundAmongFiveSymmetricLevels)
{
    const double alpha = std::sqrt(2.0);
    struct Example
    {
        Column levels;
        double share; // of the range
    };
    const std::vector<Example> examples = {
        {{-alpha, -1, 0, 1, alpha}, 1.0 / alpha},
        {{-2, -1, 0, 1, 2}, 0.5},
        {{-2, -1, 0, 1, 2 - 1e-9}, 0.5},
        {{-2, -1, 0, 1e-9, 1, 2}, 0.5},
        {{-1e308, -5e307, 0, 5e307, 1e308}, 0.5},
        {{-2, -1, 0, 1.1, 2}, 1.0},
        {{-2, -1, 0.1, 1, 2}, 1.0},
        {{-2, -1, 0, 1, 2, 1.5}, 1.0},
        {{-1, 0, 1}, 1.0},
        {{3, 3, 3}, 1.0},
    };
    for (const Example& example : examples) {
        Column outputs = example.levels;
        std::iota(outputs.begin(), outputs.end(), 0.0);
        const auto model = fit({{example.levels}, {outputs}}, 1);
        const CoefficientStatistics axial =
            model.responseSurfaceStatistics(0).codedCoefficients.at(1);
        const ResponseSurfaceStatistics factorial =
            model.responseSurfaceStatistics(0, 0.95, InputCoding::Factorial);
        const std::string levels = ::testing::PrintToString(example.levels);
        EXPECT_NEAR(factorial.codedCoefficients.at(1).estimate, axial.estimate * example.share,
                    1e-8 * std::fabs(axial.estimate))
            << levels;
        EXPECT_EQ(factorial.factorialInputs.size(), example.share < 1.0 ? 1u : 0u) << levels;
    }
}

TEST(ResponseSurfaceStatistics, AnalysisOfVarianceIsThatOfR)
{
    const std::vector<AnovaRow> table = statisticsOf(vapourDeposition()).anova;

    ASSERT_EQ(table.size(), 8u);
    expectRow(table[0], "Model", 5, 17.74719609088, 6.73614, 0.028231);
    expectRow(table[1], "Linear", 2, 14.832037267505, 14.07416, 0.00883631513781971);
    expectRow(table[2], "Interaction", 1, 2.89, 5.48466, 0.06622067719264968);
    expectRow(table[3], "Square", 2, 0.025158823372, 0.02387, 0.97652003753405348);
    expectRow(table[4], "Residual", 5, 2.634622090941, notANumber, notANumber);
    expectRow(table[5], "Lack of fit", 3, 1.487955424275, 0.86509, 0.57557);
    expectRow(table[6], "Pure error", 2, 1.146666666667, notANumber, notANumber);
    expectRow(table[7], "Total", 10, 20.3818181818182, notANumber, notANumber);
}

TEST(ResponseSurfaceStatistics, MeasuresOfTheFitAreThoseOfR)
{
    const ResponseSurfaceStatistics statistics = statisticsOf(vapourDeposition());

    expectFigure(statistics.r2, 0.870736650310639, "R2");
    expectFigure(statistics.adjustedR2, 0.741473300621279, "adjusted R2");
    expectFigure(statistics.predictedR2, 0.354069410799127, "predicted R2");
    expectFigure(statistics.press, 13.165239827166886, "PRESS");
    expectFigure(statistics.rmse, 0.725895597306022, "RMSE");
    expectFigure(statistics.aicc, 66.8292703428667, "AICc");
    EXPECT_EQ(statistics.residualDegreesOfFreedom, 5u);
    const Column leverages = {0.625070898247318, 0.333333265142189, 0.625138512975033,
                              0.625138512975033, 0.625070898247318, 0.333333265142189,
                              0.625138512975033, 0.624652178089332, 0.625138512975033,
                              0.624652178089332, 0.333333265142189};
    EXPECT_LT(largestDifference(statistics.leverages, leverages), 1e-13);
}

TEST(ResponseSurfaceStatistics, StationaryPointIsThatOfR)
{
    const std::optional<StationaryPoint> point = statisticsOf(vapourDeposition()).stationaryPoint;

    ASSERT_TRUE(point.has_value());
    expectFigure(point->coordinates[0], 45.3684142872421, "V1");
    expectFigure(point->coordinates[1], 10.4466921982706, "V2");
    expectFigure(point->value, 5.65687441432045, "value");
    expectFigure(point->curvatures[0], -0.767622941300892, "first curvature");
    expectFigure(point->curvatures[1], 0.934372852764910, "second curvature");
    EXPECT_EQ(point->nature, StationaryPoint::Nature::Saddle);
    EXPECT_FALSE(point->isInsideData);
}

TEST(ResponseSurfaceStatistics, HasTheRowsOfTheTermsThatThereAreWhoseSumsOfSquaresAddUp)
{
    const std::vector<AnovaRow> table = statisticsOf(twoInputs(40, 2.0)).anova;

    ASSERT_EQ(table.size(), 6u);
    const double kinds = table[1].sumOfSquares + table[2].sumOfSquares + table[3].sumOfSquares;
    EXPECT_NEAR(kinds, table[0].sumOfSquares, 1e-11 * table[0].sumOfSquares);
    EXPECT_NEAR(table[0].sumOfSquares + table[4].sumOfSquares, table[5].sumOfSquares,
                1e-11 * table[5].sumOfSquares);

    EXPECT_EQ(sourcesOf(statisticsOf(twoInputs(40, 2.0), 1)),
              (std::vector<std::string>{"Model", "Linear", "Residual", "Total"}));
    EXPECT_EQ(sourcesOf(statisticsOf(twoInputs(40, 2.0), 0)),
              (std::vector<std::string>{"Model", "Residual", "Total"}));
}

TEST(ResponseSurfaceStatistics, DoNotDependOnUnitsAndOriginsOfTheInputs)
{
    // Values that stay exact when they are shifted, so that only the computation can lose digits.
    Cases cases = vapourDeposition();
    for (double& value : cases.inputs[0]) {
        value = std::round(value * 16.0) / 16.0;
    }
    for (double& value : cases.inputs[1]) {
        value = std::round(value * 16.0) / 16.0;
    }
    const ResponseSurfaceStatistics reference = statisticsOf(cases);
    for (const double factor : {0x1p-40, 1.0, 0x1p40}) {
        for (const double spans : {0.0, 0x1p20}) {
            Cases other = cases;
            for (double& value : other.inputs[0]) {
                value = (value + 76.0 * spans) * factor;
            }
            for (double& value : other.inputs[1]) {
                value = (value - 8.0 * spans) / factor;
            }

            const ResponseSurfaceStatistics found = statisticsOf(other);

            EXPECT_TRUE(found.droppedTerms.empty());
            expectFigure(found.press, reference.press, "PRESS");
            expectFigure(found.aicc, reference.aicc, "AICc");
            for (std::size_t k = 0; k < found.anova.size(); ++k) {
                expectFigure(found.anova[k].sumOfSquares, reference.anova[k].sumOfSquares,
                             reference.anova[k].source);
            }
            for (std::size_t k = 0; k < found.codedCoefficients.size(); ++k) {
                const CoefficientStatistics& one = reference.codedCoefficients[k];
                expectFigure(found.codedCoefficients[k].estimate, one.estimate, one.term);
                expectFigure(found.codedCoefficients[k].p, one.p, one.term);
            }
            ASSERT_TRUE(found.stationaryPoint.has_value());
            EXPECT_EQ(found.stationaryPoint->nature, reference.stationaryPoint->nature);
        }
    }
}

TEST(ResponseSurfaceStatistics, TakesMinusZeroForZeroAmongReplicates)
{
    const ResponseSurfaceStatistics statistics =
        statisticsOf({{{0.0, -0.0, 1, 2, 3, 4}}, {{1, 3, 5, 5, 9, 7}}});

    ASSERT_EQ(statistics.anova[5].source, "Pure error");
    EXPECT_EQ(statistics.anova[5].degreesOfFreedom, 1u);
    EXPECT_NEAR(statistics.anova[5].sumOfSquares, 2.0, 1e-14);
}

TEST(ResponseSurfaceStatistics, HasNoNegativeZerosForAConstantOutput)
{
    Cases cases = vapourDeposition();
    cases.outputs[0].assign(cases.count(), 5.0);
    const ResponseSurfaceStatistics found = fit(cases).responseSurfaceStatistics(0);

    for (const auto* coefficients : {&found.coefficients, &found.codedCoefficients}) {
        for (const CoefficientStatistics& one : *coefficients) {
            EXPECT_FALSE(std::signbit(one.estimate)) << one.term;
        }
    }
}

TEST(ResponseSurfaceStatistics, LeavesOutWhatNeedsMoreCasesThanTerms)
{
    const ResponseSurfaceStatistics statistics = statisticsOf(twoInputs(6, 1.0));

    for (const CoefficientStatistics& one : statistics.coefficients) {
        EXPECT_TRUE(std::isfinite(one.estimate));
        EXPECT_TRUE(std::isnan(one.standardError));
        EXPECT_TRUE(std::isnan(one.p));
        EXPECT_TRUE(std::isnan(one.upper));
    }
    EXPECT_TRUE(std::isfinite(statistics.coefficients[1].varianceInflation));
    EXPECT_TRUE(std::isnan(statistics.anova[0].f));
    EXPECT_TRUE(std::isnan(statistics.aicc));
    EXPECT_EQ(statistics.residualDegreesOfFreedom, 0u);
    ASSERT_EQ(statistics.anova[4].source, "Residual");
    EXPECT_EQ(statistics.anova[4].degreesOfFreedom, 0u);
    EXPECT_TRUE(std::isnan(statistics.anova[4].sumOfSquares));
    EXPECT_TRUE(std::isnan(statistics.anova[4].meanSquare));

    const Model model = fit(twoInputs(6, 1.0));
    double value = 0.0;
    EXPECT_EQ(errorOf([&] {
                  model.predictionIntervals({&value, &value}, 0, 0.95, 1);
              }),
              "There are no prediction intervals: the polynomial has as many terms as there are "
              "cases, and none is left to estimate the error from.");
}

TEST(ResponseSurfaceStatistics, ListsTheCasesOfTheLargestLeverages)
{
    // About their mean of 2 the cases are -2, -2, -1, -1, 6 apart, squares 46: 1 / 5 + square / 46.
    const ResponseSurfaceStatistics statistics =
        statisticsOf({{{0, 0, 1, 1, 8}}, {{3, 1, 2, 5, 4}}}, 1);

    EXPECT_DOUBLE_EQ(statistics.meanLeverage, 0.4);
    ASSERT_EQ(statistics.largestLeverages.size(), 5u);
    const std::size_t rows[] = {4, 0, 1, 2, 3};
    const double leverages[] = {0.2 + 36.0 / 46.0, 0.2 + 4.0 / 46.0, 0.2 + 4.0 / 46.0,
                                0.2 + 1.0 / 46.0, 0.2 + 1.0 / 46.0};
    for (std::size_t k = 0; k < 5; ++k) {
        EXPECT_EQ(statistics.largestLeverages[k].row, rows[k]);
        EXPECT_NEAR(statistics.largestLeverages[k].leverage, leverages[k], 1e-14);
    }
    EXPECT_EQ(statisticsOf(twoInputs(40, 1.0)).largestLeverages.size(), 5u);
    EXPECT_EQ(statisticsOf(twoInputs(3, 1.0)).largestLeverages.size(), 3u);
}

TEST(ResponseSurfaceStatistics, ListsTermsThatAreNotKeptWithoutFigures)
{
    Cases cases = twoInputs(40, 1.0);
    std::fill(cases.inputs[0].begin(), cases.inputs[0].end(), 5.0);

    const ResponseSurfaceStatistics statistics = statisticsOf(cases);

    EXPECT_EQ(statistics.droppedTerms, (std::vector<std::string>{"V1", "V1^2", "V1 V2"}));
    EXPECT_FALSE(statistics.coefficients[1].isKept);
    EXPECT_EQ(statistics.coefficients[1].estimate, 0.0);
    EXPECT_TRUE(std::isnan(statistics.coefficients[1].standardError));
}
