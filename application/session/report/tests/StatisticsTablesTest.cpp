// The statistics of a fit in the reports of a session.

#include "CvdSession.h"
#include "ReportValues.h"

#include <session/report/FitReport.h>

#include <mirel_fitting/ResponseSurfaceStatistics.h>
#include <mirel_property/tests/TextParts.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <utility>
#include <vector>

namespace {
using Json = nlohmann::ordered_json;
} // namespace

TEST(StatisticsTables, AnInputThatIsLeftOutMayBeAnywhereAtTheStationaryPoint)
{
    CaseTable table = cvdCases();
    table.columns[1].numbers.assign(11, 6.0);
    CaseSession session(std::move(table), {{0, 1}, {2}}, {}, CaseSession::ResponseSurface);

    const Json point = outputIn(session)["stationaryPoint"];
    EXPECT_TRUE(point["coordinates"][0].is_number());
    EXPECT_TRUE(point["coordinates"][1].is_null());
    EXPECT_TRUE(contains(FitReport::text(session), ", any H2/WF6, "));
}

TEST(StatisticsTables, HeadingsNameTheTransformThatFiguresBelongTo)
{
    CaseSession session = cvdSession();
    session.choose({{}, {}, TransformSetting::Logarithm});
    const std::string text = FitReport::text(session);

    EXPECT_TRUE(contains(text, "Residual of the logarithm"));
    EXPECT_TRUE(contains(text, "Curvature of the logarithm"));
}

TEST(StatisticsTables, SuspectedOutliersAreNamedOnceByTheCasesOfTheFile)
{
    CaseTable table = cvdCases();
    table.columns[2].numbers[3] += 20.0;
    CaseSession spoiled(table, {{0, 1}, {2}}, {0}, CaseSession::ResponseSurface);
    const std::string text = FitReport::text(spoiled);
    EXPECT_FALSE(contains(text, "suspected"));
    EXPECT_TRUE(contains(text, " Case 4 "));

    CaseSession sound = cvdSession();
    EXPECT_TRUE(
        contains(FitReport::text(sound),
                 "\n    No case is suspected to be an outlier: no externally studentised residual "
                 "exceeds 5.747 (Bonferroni at 5 %).\n"));
}

TEST(StatisticsTables, SayThatCopiesShowNoLackOfFit)
{
    CaseTable table = cvdCases();
    for (const std::size_t row : {5, 10}) {
        table.columns[2].numbers[row] = table.columns[2].numbers[1];
    }
    CaseSession session(std::move(table), {{0, 1}, {2}}, {}, CaseSession::ResponseSurface);
    const std::string note = "Lack of fit: not available, the repeats are exact copies.";

    EXPECT_EQ(outputIn(session)["lackOfFitNote"], note);
    EXPECT_TRUE(contains(FitReport::text(session), "    " + note + '\n'));
    EXPECT_FALSE(outputOf(cvdSession()).contains("lackOfFitNote"));
}

TEST(StatisticsTables, TextAlignsThem)
{
    CaseSession session = cvdSession();
    const std::string text = FitReport::text(session);

    for (const char* part :
         {"\n  Coefficients\n    Term                  Estimate   Std. error ",
          "\n    Pressure * H2/WF6 ", "\n  Coefficients, inputs coded to [-1, 1]\n", "  VIF\n",
          "\n  Analysis of variance\n    Source       DF  Sum of squares  Mean square        F ",
          "\n    Lack of fit   3 ",
          "\n  Each term given all others (type III), inputs coded to [-1, 1]\n",
          "\n  The stationary point is a ", "\n    0.728 Pressure + 0.686 H2/WF6     0.9344\n",
          "\n    0.728 H2/WF6 - 0.686 Pressure    -0.7676\n",
          "\n  Ridge of steepest ascent: the largest values within the ranges\n"
          "    Distance from the middle        0  "}) {
        EXPECT_TRUE(contains(text, part));
    }
    EXPECT_FALSE(contains(text, " -\n")) << "cells that are empty by definition have no dash";
}

TEST(StatisticsTables, TextSaysThatThereIsNoStationaryPoint)
{
    CaseSession session =
        cvdSession(CaseSession::ResponseSurface, {{0, 1}, {2}}, {3, 4, 5, 8, 9, 10});

    EXPECT_TRUE(contains(FitReport::text(session),
                         "\n  There is no stationary point: the polynomial is not curved.\n"));
}

TEST(StatisticsTables, SaysWhyThereIsNoCanonicalAnalysisOfSquaresThatTheCasesDoNotSeparate)
{
    // Corners and centre points: b^2 equals a^2 in all cases.
    CaseSession session(tableOf({{"a", {-1, 1, -1, 1, 0, 0, 0}},
                                 {"b", {-1, -1, 1, 1, 0, 0, 0}},
                                 {"y", {3, 1, 4, 1, 5, 9, 2}}}),
                        {{0, 1}, {2}}, {}, CaseSession::ResponseSurface);
    const std::string reason =
        "There is no stationary point, canonical analysis or ridge analysis: "
        "the cases cannot separate the second-order terms from each other.";

    const std::string text = FitReport::text(session);
    EXPECT_TRUE(contains(text, "\n  " + reason + "\n"));
    EXPECT_FALSE(contains(text, "Ridge of"));
    const Json output = outputIn(session);
    EXPECT_TRUE(output["stationaryPoint"].is_null());
    EXPECT_EQ(output["stationaryPointNote"], reason);
}
