#include <session/diagnosis/FitFindings.h>

#include "SampleCases.h"

#include <mirel_fitting/ResponseSurfaceStatistics.h>

#include <gtest/gtest.h>

namespace {
/** Of twenty cases, all with small residuals. */
ResponseSurfaceStatistics soundStatistics()
{
    ResponseSurfaceStatistics statistics;
    statistics.r2 = 0.95;
    statistics.predictedR2 = 0.9;
    statistics.meanLeverage = 0.3;
    statistics.outlierLimit = 3.5;
    for (std::size_t row = 0; row < 20; ++row) {
        CaseDiagnostics& one = statistics.cases.emplace_back();
        one.row = row;
        one.output = static_cast<double>(row);
        one.residual = 0.01 * static_cast<double>(row + 1);
        one.externallyStudentised = 0.1 * static_cast<double>(row + 1);
        one.leverage = 0.3;
        one.cooksDistance = 0.1;
    }
    return statistics;
}

Texts found(const ResponseSurfaceStatistics& statistics)
{
    return textsOf(FitFindings::find("y", statistics));
}
} // namespace

TEST(FitFindings, AreNoneOfASoundFit)
{
    EXPECT_EQ(found(soundStatistics()), Texts());
}

TEST(FitFindings, TwoOutliersThatAreNotMirroredAreNamedInOneSentence)
{
    ResponseSurfaceStatistics statistics = soundStatistics();
    statistics.cases[4].externallyStudentised = -5.0;
    statistics.cases[9].externallyStudentised = 4.0;

    EXPECT_EQ(found(statistics),
              (Texts{"suspectedOutliers: Cases 5 and 10 lie far from the fit of y to the others "
                     "(their externally studentised residuals exceed 3.5, Bonferroni at 5 %): they "
                     "bend the fit and widen the intervals; check them, and fit once more "
                     "without them."}));
}

TEST(FitFindings, CasesOfLeverageNearOneCountWhereTheyMoveTheFit)
{
    ResponseSurfaceStatistics statistics = soundStatistics();
    statistics.cases[2].leverage = 0.99;
    EXPECT_EQ(found(statistics), Texts());

    statistics.cases[2].cooksDistance = 1.5;
    ASSERT_EQ(found(statistics).size(), 1u);
    EXPECT_EQ(found(statistics)[0].substr(0, 73),
              "influentialCases: The fit of y rests on case 3 (leverage 0.99, Cook's dis");
}

TEST(FitFindings, AQ2FarBelowR2IsAPoorPrediction)
{
    ResponseSurfaceStatistics statistics = soundStatistics();
    statistics.predictedR2 = -0.2;

    ASSERT_EQ(found(statistics).size(), 1u);
    EXPECT_NE(found(statistics)[0].find("no better than their mean (Q2 -0.2)"), std::string::npos);
    statistics.r2 = 0.4;
    EXPECT_EQ(found(statistics), Texts()) << "nobody expects predictions of such a fit";
}
