#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>
#include <string>
#include <vector>

using namespace fittingtest;

namespace {

using Model = SurrogateResponseSurfaceModel;

Model fit(Cases cases, int highestOrder = 2)
{
    return {cases.inputPointers(), cases.outputPointers(), cases.count(), highestOrder};
}

/** Columns of one point: what models are evaluated at and what they write to. */
std::vector<Column> caseAt(const Cases& cases, std::size_t row)
{
    std::vector<Column> point;
    for (const Column& column : cases.inputs) {
        point.push_back({column[row]});
    }
    return point;
}

Cases withoutCase(Cases cases, std::size_t row)
{
    for (std::vector<Column>* columns : {&cases.inputs, &cases.outputs}) {
        for (Column& column : *columns) {
            column.erase(column.begin() + static_cast<long>(row));
        }
    }
    return cases;
}

double standardError(const Model& model, std::vector<Column> points, FittedModel::ErrorKind kind)
{
    return model.standardErrors(Cases::pointers(points), 0, kind, 1)[0];
}

/**
 * Eleven runs of a chemical vapour deposition process: pressure and gas ratio; uniformity. The case
 * in the middle is there three times. NIST/SEMATECH e-Handbook of Statistical Methods, 5.4.7.3.
 * The figures about it below are what response_surface_statistics.R prints.
 */
Cases vapourDeposition()
{
    return {{{80, 42, 68.87, 15.13, 4, 42, 15.13, 42, 68.87, 42, 42},
             {6, 6, 3.17, 8.83, 6, 6, 3.17, 2, 8.83, 10, 6}},
            {{4.6, 6.2, 3.4, 6.9, 7.3, 6.4, 8.6, 6.3, 5.1, 5.4, 5.0}}};
}

/** Relative to its size, or to 1e-3 for less. R prints 15 digits. */
void expectFigure(double value, double expected, const std::string& what)
{
    EXPECT_NEAR(value, expected, 1e-10 * std::max(std::fabs(expected), 1e-3)) << what;
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

ResponseSurfaceStatistics statisticsOf(const Cases& cases, int highestOrder = 2)
{
    return fit(cases, highestOrder).responseSurfaceStatistics(0);
}

std::vector<std::string> sourcesOf(const ResponseSurfaceStatistics& statistics)
{
    std::vector<std::string> sources;
    for (const AnovaRow& row : statistics.anova) {
        sources.push_back(row.source);
    }
    return sources;
}

Model select(Cases cases, PolynomialTerms terms = PolynomialTerms::Quadratic)
{
    return {cases.inputPointers(), cases.outputPointers(), cases.count(),
            ResponseSurfaceOptions{terms, Model::Selection::BackwardAicc}};
}

using Nature = StationaryPoint::Nature;

/** The stationary point of a quadratic function of two inputs at a grid over [0, 10] x [0, 10]. */
std::optional<StationaryPoint> stationaryPointOf(double (*function)(double, double))
{
    Cases cases{{{}, {}}, {{}}};
    for (int i = 0; i < 25; ++i) {
        cases.inputs[0].push_back(2.5 * (i % 5));
        cases.inputs[1].push_back(2.5 * static_cast<double>(i / 5));
        cases.outputs[0].push_back(function(cases.inputs[0].back(), cases.inputs[1].back()));
    }
    return statisticsOf(cases).stationaryPoint;
}

} // namespace

// Compared with R

TEST(ResponseSurfaceStatistics, CoefficientsAreThoseOfR)
{
    const ResponseSurfaceStatistics statistics =
        fit(vapourDeposition()).responseSurfaceStatistics(0, 0.9);

    expectCoefficients(statistics.coefficients, {{"1",
                                                  {},
                                                  1.13726044685310e+01,
                                                  1.976973509597315770,
                                                  5.7525325520661372,
                                                  0.00222720585432027,
                                                  7.388907213894444048,
                                                  15.356301723167542050,
                                                  0.0,
                                                  true},
                                                 {"V1",
                                                  {},
                                                  -1.25152465599811e-01,
                                                  0.046628024502444132,
                                                  -2.6840610756145229,
                                                  0.04360753575772122,
                                                  -0.219110190525192955,
                                                  -0.031194740674428165,
                                                  23.8326293922464,
                                                  true},
                                                 {"V2",
                                                  {},
                                                  -5.50747652062682e-01,
                                                  0.508177857700438107,
                                                  -1.0837694789672194,
                                                  0.32793823050726428,
                                                  -1.574750617585810364,
                                                  0.473255313460446358,
                                                  31.3837354759065,
                                                  true},
                                                 {"V1^2",
                                                  {},
                                                  9.23456016140183e-05,
                                                  0.000423049089625874,
                                                  0.2182857826161134,
                                                  0.83583597552044997,
                                                  -0.000760118778276616,
                                                  0.000944809981504652,
                                                  14.9371301243828,
                                                  true},
                                                 {"V1 V2",
                                                  {},
                                                  1.11780184923878e-02,
                                                  0.004772984947193869,
                                                  2.3419345788969119,
                                                  0.06622067719264953,
                                                  0.001560222938601759,
                                                  0.020795814046173779,
                                                  14.8737504339075,
                                                  true},
                                                 {"V2^2",
                                                  {},
                                                  2.08767892083585e-03,
                                                  0.038172648231325011,
                                                  0.0546904398192283,
                                                  0.95850310718903775,
                                                  -0.074832053803509338,
                                                  0.079007411645180992,
                                                  26.5945216270744,
                                                  true}});
}

TEST(ResponseSurfaceStatistics, CodedCoefficientsAreThoseOfR)
{
    const ResponseSurfaceStatistics statistics =
        fit(vapourDeposition()).responseSurfaceStatistics(0, 0.9);

    expectCoefficients(statistics.codedCoefficients, {{"1",
                                                       {},
                                                       5.8666297434418002,
                                                       0.419095975640238,
                                                       13.9982965345337895,
                                                       3.34556953334841e-05,
                                                       5.022131079457522,
                                                       6.711128407426077,
                                                       0.0,
                                                       true},
                                                      {"V1",
                                                       {},
                                                       -1.9124383161764402,
                                                       0.362948188244419,
                                                       -5.2691771942075425,
                                                       3.27399828383311e-03,
                                                       -2.643796472502525,
                                                       -1.181080159850356,
                                                       1.0,
                                                       true},
                                                      {"V2",
                                                       {},
                                                       -0.2248749133294602,
                                                       0.362846895889931,
                                                       -0.6197515146930610,
                                                       5.62568924699704e-01,
                                                       -0.956028960661403,
                                                       0.506279134002482,
                                                       1.0,
                                                       true},
                                                      {"V1^2",
                                                       {},
                                                       0.1333470487306428,
                                                       0.610882885419762,
                                                       0.2182857826161143,
                                                       8.35835975520449e-01,
                                                       -1.097611515831433,
                                                       1.364305613292718,
                                                       1.09451865860586,
                                                       true},
                                                      {"V1 V2",
                                                       {},
                                                       1.6990588108429401,
                                                       0.725493711973468,
                                                       2.3419345788969101,
                                                       6.62206771926497e-02,
                                                       0.237153886667466,
                                                       3.160963735018413,
                                                       1.0,
                                                       true},
                                                      {"V2^2",
                                                       {},
                                                       0.0334028627333744,
                                                       0.610762371701201,
                                                       0.0546904398192296,
                                                       9.58503107189037e-01,
                                                       -1.197312860856149,
                                                       1.264118586322897,
                                                       1.09451865860586,
                                                       true}});
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
    EXPECT_EQ(point->nature, Nature::Saddle);
    EXPECT_FALSE(point->isInsideData);
}

TEST(ResponseSurfaceIntervals, AreThoseOfR)
{
    const Model model = fit(vapourDeposition());
    std::vector<Column> points = {{30, 100}, {5, 1}};

    const PredictionIntervals found =
        model.predictionIntervals(Cases::pointers(points), 0, 0.95, 2);

    expectFigure(found.lower[0], 4.56157254346861, "lower inside");
    expectFigure(found.upper[0], 8.79102351364129, "upper inside");
    expectFigure(found.lower[1], -5.67775230381846, "lower outside");
    expectFigure(found.upper[1], 6.37766390539257, "upper outside");
    // qt(0.975, 5)
    EXPECT_NEAR(model.intervalQuantile(0, 0.95), 2.570581835636314, 1e-13);
    expectFigure(standardError(model, {{30}, {5}}, FittedModel::ErrorKind::Mean), 0.387107042865106,
                 "standard error inside");
    expectFigure(standardError(model, {{100}, {1}}, FittedModel::ErrorKind::Mean),
                 2.229695439941187, "standard error outside");
}

// What follows from the figures

TEST(ResponseSurfaceStatistics, SumsOfSquaresAddUp)
{
    const std::vector<AnovaRow> table = statisticsOf(twoInputs(40, 2.0)).anova;

    ASSERT_EQ(table.size(), 6u);
    const double kinds = table[1].sumOfSquares + table[2].sumOfSquares + table[3].sumOfSquares;
    EXPECT_NEAR(kinds, table[0].sumOfSquares, 1e-11 * table[0].sumOfSquares);
    EXPECT_NEAR(table[0].sumOfSquares + table[4].sumOfSquares, table[5].sumOfSquares,
                1e-11 * table[5].sumOfSquares);
}

TEST(ResponseSurfaceStatistics, HasTheRowsOfTheTermsThatThereAre)
{
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

    const Model model = fit(twoInputs(6, 1.0));
    double value = 0.0;
    EXPECT_EQ(errorOf([&] {
                  model.predictionIntervals({&value, &value}, 0, 0.95, 1);
              }),
              "There are no prediction intervals: the polynomial has as many terms as there are "
              "cases, and none is left to tell the error by.");
}

TEST(ResponseSurfaceStatistics, HasNoSumOfSquaresWithoutDegreesOfFreedom)
{
    const ResponseSurfaceStatistics statistics = statisticsOf(twoInputs(6, 1.0));

    const AnovaRow& residual = statistics.anova[4];
    ASSERT_EQ(residual.source, "Residual");
    EXPECT_EQ(residual.degreesOfFreedom, 0u);
    EXPECT_TRUE(std::isnan(residual.sumOfSquares));
    EXPECT_TRUE(std::isnan(residual.meanSquare));
}

TEST(ResponseSurfaceStatistics, TellsWhichCasesHaveTheLargestLeverages)
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

TEST(ResponseSurfaceStationaryPoint, IsAMinimumInsideTheData)
{
    const auto point = stationaryPointOf([](double x, double y) {
        return 7.0 + (x - 4.0) * (x - 4.0) + 2.0 * (y - 5.0) * (y - 5.0);
    });

    ASSERT_TRUE(point.has_value());
    EXPECT_EQ(point->nature, Nature::Minimum);
    EXPECT_TRUE(point->isInsideData);
    EXPECT_NEAR(point->coordinates[0], 4.0, 1e-12);
    EXPECT_NEAR(point->coordinates[1], 5.0, 1e-12);
    EXPECT_NEAR(point->value, 7.0, 1e-11);
    // In coded inputs half the range, 5, is 1.
    EXPECT_NEAR(point->curvatures[0], 25.0, 1e-11);
    EXPECT_NEAR(point->curvatures[1], 50.0, 1e-11);
}

TEST(ResponseSurfaceStationaryPoint, IsAMaximumOutsideTheData)
{
    const auto point = stationaryPointOf(
        [](double x, double y) { return -(x - 4.0) * (x - 4.0) - (y - 11.0) * (y - 11.0); });

    ASSERT_TRUE(point.has_value());
    EXPECT_EQ(point->nature, Nature::Maximum);
    EXPECT_FALSE(point->isInsideData);
}

TEST(ResponseSurfaceStationaryPoint, IsASaddleOfAProduct)
{
    const auto point = stationaryPointOf([](double x, double y) { return (x - 3.0) * (y - 6.0); });

    ASSERT_TRUE(point.has_value());
    EXPECT_EQ(point->nature, Nature::Saddle);
    EXPECT_NEAR(point->coordinates[0], 3.0, 1e-11);
    EXPECT_NEAR(point->coordinates[1], 6.0, 1e-11);
}

TEST(ResponseSurfaceStationaryPoint, IsARidgeWhereADirectionHasNoCurvature)
{
    const auto point =
        stationaryPointOf([](double x, double y) { return (x + y - 8.0) * (x + y - 8.0); });

    ASSERT_TRUE(point.has_value());
    EXPECT_EQ(point->nature, Nature::Ridge);
    EXPECT_EQ(point->curvatures[0], 0.0);
    // The point of the ridge that is nearest to the middle.
    EXPECT_NEAR(point->coordinates[0], 4.0, 1e-11);
    EXPECT_NEAR(point->coordinates[1], 4.0, 1e-11);
}

TEST(ResponseSurfaceStationaryPoint, LeavesOutAnInputThatThePolynomialDoesNotHave)
{
    Cases cases = twoInputs(40, 1.0);
    std::fill(cases.inputs[0].begin(), cases.inputs[0].end(), 5.0);
    const ResponseSurfaceStatistics statistics = statisticsOf(cases);

    ASSERT_TRUE(statistics.stationaryPoint.has_value());
    EXPECT_TRUE(std::isnan(statistics.stationaryPoint->coordinates[0]));
    EXPECT_TRUE(std::isfinite(statistics.stationaryPoint->coordinates[1]));
    EXPECT_TRUE(std::isfinite(statistics.stationaryPoint->value));
}

TEST(ResponseSurfaceStationaryPoint, IsNoneWhereTheFunctionRisesWithoutCurvature)
{
    EXPECT_FALSE(stationaryPointOf([](double x, double y) {
                     return (x - 4.0) * (x - 4.0) + y;
                 }).has_value());
}

TEST(ResponseSurfaceStationaryPoint, IsNoneOfALinearFunction)
{
    EXPECT_FALSE(stationaryPointOf([](double x, double y) { return x - 2.0 * y; }).has_value());
    EXPECT_FALSE(statisticsOf(twoInputs(40, 1.0), 1).stationaryPoint.has_value());
}

// Selection of terms

TEST(ResponseSurfaceSelection, DropsTheTermsThatRDrops)
{
    const Model model = select(vapourDeposition());

    const ResponseSurfaceStatistics statistics = model.responseSurfaceStatistics(0);

    EXPECT_EQ(statistics.droppedTerms, (std::vector<std::string>{"V1^2", "V2^2"}));
    expectFigure(statistics.aicc, 37.6004810496957, "AICc");
    EXPECT_EQ(
        model.fitWarnings(0),
        (std::vector<std::string>{"AICc is lower without V1^2 and V2^2: they were left out."}));
    EXPECT_EQ(model.fitMetrics(0).terms, 4u);
    EXPECT_EQ(sourcesOf(statistics),
              (std::vector<std::string>{"Model", "Linear", "Interaction", "Residual", "Lack of fit",
                                        "Pure error", "Total"}));
}

TEST(ResponseSurfaceSelection, KeepsEverythingUnlessAsked)
{
    EXPECT_TRUE(fit(vapourDeposition()).responseSurfaceStatistics(0).droppedTerms.empty());
}

TEST(ResponseSurfaceSelection, KeepsLinearTermsOfTheProductsThatStay)
{
    // Neither input has an influence of its own about the middle.
    Cases cases = twoInputs(60, 0.1);
    for (std::size_t k = 0; k < 60; ++k) {
        cases.outputs[0][k] += (cases.inputs[0][k] - 2.0) * (cases.inputs[1][k] - 0.5) -
                               surface(cases.inputs[0][k], cases.inputs[1][k]);
    }

    EXPECT_EQ(select(cases).responseSurfaceStatistics(0).droppedTerms,
              (std::vector<std::string>{"V1^2", "V2^2"}));
}

TEST(ResponseSurfaceSelection, FindsTheFunctionBehindExactData)
{
    Cases cases = twoInputs(30, 0.0);
    for (std::size_t k = 0; k < 30; ++k) {
        cases.outputs[0][k] = 3.0 + 2.0 * cases.inputs[1][k];
    }
    const Model model = select(cases);

    EXPECT_EQ(model.surfaceCoefficientInformation(0).find("V1"), std::string::npos);
    EXPECT_LT(largestDifference(predict(model, cases.inputs), cases.outputs[0]), 1e-13);
}

TEST(ResponseSurfaceSelection, StartsFromMoreTermsThanTheCriterionAllows)
{
    // Six terms: of up to eight cases the criterion is infinite.
    for (const std::size_t count : {6u, 7u, 8u}) {
        Cases cases = twoInputs(count, 0.0);
        for (std::size_t k = 0; k < count; ++k) {
            cases.outputs[0][k] = 3.0 + 2.0 * cases.inputs[1][k] + (k % 2 == 0 ? 1e-3 : -1e-3);
        }

        const ResponseSurfaceStatistics statistics = select(cases).responseSurfaceStatistics(0);

        EXPECT_TRUE(std::isfinite(statistics.aicc)) << count;
        EXPECT_TRUE(statistics.coefficients[2].isKept) << count;
        EXPECT_GT(statistics.residualDegreesOfFreedom, 0u) << count;
    }
}

TEST(ResponseSurfaceSelection, KeepsEverythingOfThreeCases)
{
    // The criterion does not even judge a constant.
    const Cases cases{{{0.0, 1.0, 2.0}}, {{1.0, 5.0, 2.0}}};

    EXPECT_TRUE(select(cases).responseSurfaceStatistics(0).droppedTerms.empty());
}

TEST(ResponseSurfaceSelection, IsThatOfEachOutputByItself)
{
    Cases cases = vapourDeposition();
    cases.outputs.push_back(cases.outputs[0]);
    for (std::size_t k = 0; k < cases.count(); ++k) {
        cases.outputs[1][k] = 0.01 * cases.inputs[0][k] * cases.inputs[0][k] + 1e-3 * (k % 3);
    }
    const Model both = select(cases);
    const Column reference = predict(select(vapourDeposition()), cases.inputs);

    EXPECT_EQ(both.responseSurfaceStatistics(0).droppedTerms,
              (std::vector<std::string>{"V1^2", "V2^2"}));
    EXPECT_TRUE(both.responseSurfaceStatistics(1).coefficients[3].isKept);
    EXPECT_LT(largestDifference(predict(both, cases.inputs, 0), reference), 1e-12);
}

TEST(ResponseSurfaceSelection, DoesNotDependOnUnitsAndOrigins)
{
    Cases cases = vapourDeposition();
    for (std::size_t k = 0; k < cases.count(); ++k) {
        cases.inputs[0][k] = 1e9 * cases.inputs[0][k] - 7e11;
        cases.inputs[1][k] = 1e-9 * (cases.inputs[1][k] + 500.0);
        cases.outputs[0][k] = 1e5 - 1e-3 * cases.outputs[0][k];
    }

    EXPECT_EQ(select(cases).responseSurfaceStatistics(0).droppedTerms,
              (std::vector<std::string>{"V1^2", "V2^2"}));
}

// Leaving out one case

TEST(ResponseSurfaceLeaveOneOut, EqualsRefitsWithoutEachCase)
{
    const Cases cases = twoInputs(14, 1.0);

    const std::vector<LeaveOneOutPrediction> left = fit(cases).leaveOneOutPredictions(0);

    ASSERT_EQ(left.size(), cases.count());
    for (std::size_t row = 0; row < left.size(); ++row) {
        const Model refit = fit(withoutCase(cases, row));
        EXPECT_EQ(left[row].row, row);
        EXPECT_EQ(left[row].output, cases.outputs[0][row]);
        EXPECT_NEAR(left[row].predicted, predict(refit, caseAt(cases, row))[0], 1e-10);
        EXPECT_NEAR(left[row].standardError,
                    standardError(refit, caseAt(cases, row), FittedModel::ErrorKind::Observation),
                    1e-10);
    }
}

TEST(ResponseSurfaceLeaveOneOut, HasNoFigureForACaseThatAloneDeterminesATerm)
{
    // Without the last case the second input is constant.
    Cases cases{{{0, 1, 2, 3, 4, 5}, {0, 0, 0, 0, 0, 1}}, {{1, 2, 2, 4, 5, 9}}};

    const std::vector<LeaveOneOutPrediction> left = fit(cases, 1).leaveOneOutPredictions(0);

    EXPECT_TRUE(std::isnan(left[5].predicted));
    EXPECT_TRUE(std::isnan(left[5].standardError));
    EXPECT_TRUE(std::isfinite(left[0].predicted));
    EXPECT_GT(left[0].standardError, 0.0);
}

TEST(ResponseSurfaceLeaveOneOut, SpreadsASampleOverManyCases)
{
    const Cases cases = twoInputs(250000, 1.0);
    const Model model = fit(cases);

    const std::vector<LeaveOneOutPrediction> left = model.leaveOneOutPredictions(0);

    ASSERT_EQ(left.size(), 100000u);
    std::set<std::size_t> rows;
    for (std::size_t k = 0; k < left.size(); ++k) {
        EXPECT_NEAR(static_cast<double>(left[k].row), 2.5 * static_cast<double>(k), 3.0);
        EXPECT_EQ(left[k].output, cases.outputs[0][left[k].row]);
        rows.insert(left[k].row);
    }
    EXPECT_EQ(rows.size(), left.size());

    // The largest leverages are those of the same cases.
    const ResponseSurfaceStatistics statistics = model.responseSurfaceStatistics(0);
    EXPECT_TRUE(statistics.leverages.empty());
    ASSERT_EQ(statistics.largestLeverages.size(), 5u);
    for (const CaseLeverage& one : statistics.largestLeverages) {
        EXPECT_EQ(rows.count(one.row), 1u);
        EXPECT_GT(one.leverage, statistics.meanLeverage);
    }
}

// Standard errors and prediction intervals

TEST(ResponseSurfaceStandardErrors, OfAMeanAreThoseOfTheMean)
{
    // Deviation sqrt(10 / 4), n = 5.
    const Model model = fit(Cases{{}, {{1, 2, 3, 4, 5}}});

    EXPECT_NEAR(standardError(model, {}, FittedModel::ErrorKind::Mean), std::sqrt(0.5), 1e-15);
    EXPECT_NEAR(standardError(model, {}, FittedModel::ErrorKind::Observation), std::sqrt(2.5 + 0.5),
                1e-15);
}

TEST(ResponseSurfaceStandardErrors, AreNanAtPointsThatAreNotFiniteOnly)
{
    const Model model = fit(twoInputs(40, 1.0));
    std::vector<Column> points = {{1.0, notANumber, 1.0}, {0.5, 0.5, infinity}};

    const Column errors =
        model.standardErrors(Cases::pointers(points), 0, FittedModel::ErrorKind::Mean, 3);

    EXPECT_GT(errors[0], 0.0);
    EXPECT_TRUE(std::isnan(errors[1]));
    EXPECT_TRUE(std::isnan(errors[2]));
}

TEST(ResponseSurfaceIntervals, RefuseALevelThatIsNoProbability)
{
    const Model model = fit(twoInputs(40, 1.0));
    for (const double level : {0.0, 1.0, 95.0, -0.5}) {
        EXPECT_NE(errorOf([&] { model.predictionIntervals({}, 0, level, 0); }), "");
    }
    EXPECT_EQ(errorOf([&] { model.predictionIntervals({}, 0, 95.0, 0); }),
              "The level of an interval has to lie between 0 and 1, not at 95.");
    EXPECT_EQ(errorOf([&] { model.responseSurfaceStatistics(0, notANumber); }),
              "The level of an interval has to lie between 0 and 1, not at nan.");
}
