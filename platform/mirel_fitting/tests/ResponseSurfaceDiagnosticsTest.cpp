// The figures about cases and terms that response_surface_statistics.R prints.

#include "ResponseSurfaceTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace fittingtest;

namespace {

/** The vapour deposition with an output that is off by 5 in the fourth case. */
Cases spoiled()
{
    Cases cases = vapourDeposition();
    cases.outputs[0][3] += 5.0;
    return cases;
}

struct Diagnosed
{
    double residual;
    double internal;
    double external;
    double cook;
};

void expectDiagnostics(const std::vector<CaseDiagnostics>& found,
                       const std::vector<Diagnosed>& expected)
{
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t k = 0; k < found.size(); ++k) {
        const std::string name = "case " + std::to_string(k + 1);
        EXPECT_EQ(found[k].row, k);
        expectFigure(found[k].residual, expected[k].residual, name);
        expectFigure(found[k].internallyStudentised, expected[k].internal, name);
        expectFigure(found[k].externallyStudentised, expected[k].external, name);
        expectFigure(found[k].cooksDistance, expected[k].cook, name);
    }
}

} // namespace

TEST(ResponseSurfaceDiagnostics, StudentisedResidualsAndCooksDistancesAreThoseOfR)
{
    expectDiagnostics(
        statisticsOf(vapourDeposition()).cases,
        {{0.512461524003997, 1.152955447917515, 1.203561941280968, 0.3693634597188917},
         {0.333370256558199, 0.562468614808977, 0.519800920286265, 0.0263642371302920},
         {-0.506826795592250, -1.140381054219456, -1.185786907137935, 0.3614549431263512},
         {0.606780809102570, 1.365281679623775, 1.541927024892796, 0.5180822419941998},
         {-0.612415108348884, -1.377834827561288, -1.564718715164579, 0.5275008871693833},
         {0.533370256558200, 0.899912405155512, 0.879255415642196, 0.0674868407037052},
         {0.288582806741384, 0.649323138088599, 0.606924937346411, 0.1171860563051198},
         {0.175092480495364, 0.393709943068100, 0.357733675706697, 0.0429938041822015},
         {-0.188628793231064, -0.424422512684279, -0.386643707711452, 0.0500669350123263},
         {-0.275157692845715, -0.618714860161595, -0.575879447114008, 0.1061779172409079},
         {-0.866629743441801, -1.462194127270229, -1.728626240724724, 0.1781675841460860}});
    expectDiagnostics(
        statisticsOf(spoiled()).cases,
        {{0.771694126178977, 0.662870778415558, 0.620794366916812, 0.12209183651386780},
         {0.333831753258813, 0.215046067950526, 0.193238755367409, 0.00385373309585783},
         {-1.131827118043742, -0.972305939600805, -0.965734603891840, 0.26276048745381980},
         {2.481088244227402, 2.131400456905119, 6.304841810300805, 1.26265380091781521},
         {-2.120949459136197, -1.821855799161021, -2.810480787095716, 0.92226744043550590},
         {0.533831753258812, 0.343881066929071, 0.311279614542391, 0.00985451265873183},
         {0.913585167813658, 0.784823292210682, 0.749659434803721, 0.17119770904724121},
         {0.433627336969454, 0.372269930981136, 0.337680981674746, 0.03843872959376794},
         {0.435675958370004, 0.374271225093633, 0.339548508665597, 0.03893382377726239},
         {-1.784389516155995, -1.531901947569437, -1.880917360913504, 0.65090115894110845},
         {-0.866168246741188, -0.557963925920747, -0.515360339632275, 0.02594363725800436}});
}

TEST(ResponseSurfaceDiagnostics, SuspectsCasesBeyondTheLimitOfBonferroniInTheOrderOfTheirSize)
{
    const ResponseSurfaceStatistics sound = statisticsOf(vapourDeposition());
    const ResponseSurfaceStatistics other = statisticsOf(spoiled());

    expectFigure(sound.outlierLimit, 5.74650714382263, "limit");
    EXPECT_TRUE(sound.suspectedOutliers().empty());
    EXPECT_EQ(other.suspectedOutliers(), std::vector<std::size_t>{3});

    Cases cases = twoInputs(200, 0.5);
    cases.outputs[0][20] += 5.0;
    cases.outputs[0][7] -= 3.0;

    EXPECT_EQ(statisticsOf(cases).suspectedOutliers(), (std::vector<std::size_t>{20, 7}));
}

TEST(ResponseSurfaceDiagnostics, SuspectNoOutlierAmongRoundingErrors)
{
    Cases cases = twoInputs(40, 0.0);
    for (double& value : cases.outputs[0]) {
        value += 1e6;
    }
    const ResponseSurfaceStatistics statistics = statisticsOf(cases);

    EXPECT_TRUE(std::isnan(statistics.outlierLimit));
    EXPECT_TRUE(statistics.suspectedOutliers().empty());
    EXPECT_TRUE(std::isnan(statistics.cases[0].externallyStudentised));
}

TEST(ResponseSurfaceDiagnostics, HaveNoFiguresThatTheCasesDoNotDetermine)
{
    // The last case alone determines the slope.
    const ResponseSurfaceStatistics alone = statisticsOf({{{0, 0, 0, 0, 8}}, {{3, 1, 2, 5, 4}}}, 1);
    EXPECT_TRUE(std::isnan(alone.cases[4].internallyStudentised));
    EXPECT_TRUE(std::isnan(alone.cases[4].cooksDistance));
    EXPECT_FALSE(std::isnan(alone.cases[3].externallyStudentised));

    const ResponseSurfaceStatistics saturated = statisticsOf(twoInputs(6, 1.0));
    EXPECT_TRUE(std::isnan(saturated.outlierLimit));
    EXPECT_TRUE(std::isnan(saturated.cases[0].externallyStudentised));
    EXPECT_TRUE(std::isnan(saturated.partialTests[0].row.f));
}

TEST(ResponseSurfaceDiagnostics, PartialTestsAreThoseOfR)
{
    const std::vector<PartialTest> tests = statisticsOf(vapourDeposition()).partialTests;

    const char* const terms[] = {"V1", "V2", "V1^2", "V1 V2", "V2^2"};
    const double squares[] = {14.629649845509, 0.202387421997, 0.025107254510, 2.890000000000,
                              0.001576054229};
    const double p[] = {0.00327399828383311, 0.56256892469970388, 0.83583597552044975,
                        0.06622067719264972, 0.95850310718903531};
    ASSERT_EQ(tests.size(), 5u);
    for (std::size_t k = 0; k < 5; ++k) {
        EXPECT_EQ(tests[k].row.source, terms[k]);
        EXPECT_EQ(tests[k].row.degreesOfFreedom, 1u);
        EXPECT_NEAR(tests[k].row.sumOfSquares, squares[k], 1e-11); // R prints 12 decimals
        expectFigure(tests[k].row.p, p[k], terms[k]);
    }
    EXPECT_EQ(tests[3].factors, (std::vector<std::size_t>{0, 1}));
}

TEST(ResponseSurfaceDiagnostics, CanonicalDirectionsAreThoseOfR)
{
    const auto directions = statisticsOf(vapourDeposition()).canonicalDirections;

    ASSERT_EQ(directions.size(), 2u);
    expectFigure(directions[0].curvature, -0.767622941300892, "lower");
    expectFigure(directions[1].curvature, 0.934372852764910, "upper");
    EXPECT_LT(largestDifference(directions[0].components, {-0.686031428395979, 0.727571906585853}),
              1e-12);
    EXPECT_LT(largestDifference(directions[1].components, {0.727571906585853, 0.686031428395979}),
              1e-12);
}

TEST(ResponseSurfaceDiagnostics, RidgesAreThoseOfR)
{
    const ResponseSurfaceStatistics statistics = statisticsOf(vapourDeposition());

    const std::vector<RidgePoint> expected[] = {
        {{0.0, {42.0, 6.0}, 5.86662974344180, 0.419095975640238},
         {0.5, {24.54348846277756, 5.21038453939126}, 6.97307958309750, 0.379595060958487},
         {1.0, {9.09697273003957, 3.99891775410977}, 8.47936264855032, 0.573759941491176}},
        {{0.0, {42.0, 6.0}, 5.86662974344180, 0.419095975640238},
         {0.5, {60.2566448330304, 5.44604249849912}, 4.89733651789528, 0.379600850291745},
         {1.0, {75.8135807538378, 4.17483956883598}, 3.69017575248373, 0.573779608619366}}};
    for (const bool isAscent : {true, false}) {
        const std::vector<RidgePoint>& ridge = isAscent ? statistics.ascent : statistics.descent;
        ASSERT_EQ(ridge.size(), 11u);
        for (std::size_t k = 0; k < 3; ++k) {
            const RidgePoint& one = expected[isAscent ? 0 : 1][k];
            EXPECT_DOUBLE_EQ(ridge[5 * k].distance, one.distance);
            EXPECT_LT(largestDifference(ridge[5 * k].coordinates, one.coordinates), 1e-9);
            EXPECT_NEAR(ridge[5 * k].value, one.value, 1e-10);
            EXPECT_NEAR(ridge[5 * k].standardError, one.standardError, 1e-10);
        }
    }
}

TEST(ResponseSurfaceDiagnostics, RidgeOfALinearPolynomialFollowsItsGradientAndAConstantHasNone)
{
    // Inputs of range 2: the gradient 3, 4 has length 5 in coded inputs.
    const Cases cases{{{-1, 1, -1, 1}, {-1, -1, 1, 1}}, {{-7, -1, 1, 7}}};

    const std::vector<RidgePoint> descent = statisticsOf(cases, 1).descent;

    ASSERT_EQ(descent.size(), 11u);
    EXPECT_NEAR(descent[10].coordinates[0], -0.6, 1e-14);
    EXPECT_NEAR(descent[10].coordinates[1], -0.8, 1e-14);
    EXPECT_NEAR(descent[10].value, -5.0, 1e-13);
    EXPECT_TRUE(statisticsOf(cases, 1).canonicalDirections.empty());

    Cases constant = vapourDeposition();
    constant.outputs[0].assign(constant.count(), 5.0);

    EXPECT_TRUE(statisticsOf(constant).ascent.empty());
    EXPECT_TRUE(statisticsOf(vapourDeposition(), 0).descent.empty());
}

TEST(ResponseSurfaceDiagnostics, CopiesOfCasesMeasureNoNoise)
{
    Cases cases = twoInputs(12, 1.0);
    for (std::vector<Column>* const columns : {&cases.inputs, &cases.outputs}) {
        for (Column& column : *columns) {
            column.push_back(column[0]);
            column.push_back(column[5]);
        }
    }
    EXPECT_TRUE(statisticsOf(cases).repeatsAreCopies);
    EXPECT_EQ(sourcesOf(statisticsOf(cases)),
              (std::vector<std::string>{"Model", "Linear", "Interaction", "Square", "Residual",
                                        "Total"}));
    EXPECT_NE(fit(cases).qualityMetricInformation(0).find(
                  "\nLack of fit: not available (the repeats are exact copies)\n"),
              std::string::npos);

    // One repeat that differs shows the noise of all.
    cases.outputs[0].back() += 0.5;
    EXPECT_FALSE(statisticsOf(cases).repeatsAreCopies);
    EXPECT_EQ(sourcesOf(statisticsOf(cases))[6], "Pure error");
}
