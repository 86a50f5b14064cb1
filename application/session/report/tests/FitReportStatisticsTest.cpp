// The statistics of a fit in the reports of a session.

#include "CvdSession.h"
#include "ReportValues.h"

#include <session/report/FitReport.h>

#include <mirel_fitting/ResponseSurfaceStatistics.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <utility>
#include <vector>

namespace {
using Json = nlohmann::ordered_json;
} // namespace

TEST(FitReportStatistics, ListsTheCoefficientsInTheOrderOfTheEquation)
{
    const Json output = outputOf(cvdSession());

    const Json& coefficients = output["coefficients"];
    ASSERT_EQ(coefficients.size(), 6u);
    std::vector<std::string> terms;
    std::vector<std::string> names;
    for (const Json& one : coefficients) {
        EXPECT_EQ(keysOf(one),
                  (std::vector<std::string>{"term", "name", "estimate", "standardError", "t", "p",
                                            "lower", "upper"}));
        EXPECT_LT(one["lower"], one["estimate"]);
        EXPECT_GT(one["upper"], one["estimate"]);
        terms.push_back(one["term"]);
        names.push_back(one["name"]);
    }
    EXPECT_EQ(terms, (std::vector<std::string>{"1", "V1", "V2", "V1^2", "V1 V2", "V2^2"}));
    EXPECT_EQ(names, (std::vector<std::string>{"intercept", "Pressure", "H2/WF6", "Pressure^2",
                                               "Pressure * H2/WF6", "H2/WF6^2"}));
    EXPECT_EQ(output["codedCoefficients"].size(), 6u);
    EXPECT_TRUE(output["codedCoefficients"][1].contains("varianceInflation"));
}

TEST(FitReportStatistics, HasDroppedTermsInAListOfTheirOwn)
{
    CaseTable table = cvdCases();
    table.columns[1].numbers.assign(11, 6.0);
    const Json output =
        outputOf(CaseSession(std::move(table), {{0, 1}, {2}}, {}, CaseSession::ResponseSurface));

    for (const char* list : {"coefficients", "codedCoefficients"}) {
        std::vector<std::string> terms;
        for (const Json& one : output[list]) {
            terms.push_back(one["term"]);
        }
        EXPECT_EQ(terms, (std::vector<std::string>{"1", "V1", "V1^2"})) << list;
    }
    EXPECT_EQ(output["droppedTerms"], Json::parse(R"([
        {"term": "V2", "name": "H2/WF6"},
        {"term": "V1 V2", "name": "Pressure * H2/WF6"},
        {"term": "V2^2", "name": "H2/WF6^2"}])"));
    EXPECT_EQ(output["metrics"]["terms"], 3);
}

TEST(FitReportStatistics, LeveragesAreThoseOfTheCasesOfTheFile)
{
    const Json all = outputOf(cvdSession())["leverage"];
    const Json others =
        outputOf(cvdSession(CaseSession::ResponseSurface, {{0, 1}, {2}}, {0, 1, 2}))["leverage"];

    EXPECT_DOUBLE_EQ(all["mean"].get<double>(), 6.0 / 11.0);
    ASSERT_EQ(all["largest"].size(), 5u);
    EXPECT_EQ(all["largest"][0]["case"], 3);
    for (const Json& one : others["largest"]) {
        EXPECT_GT(one["case"], 3);
    }
}

TEST(FitReportStatistics, HasTheAnalysisOfVariance)
{
    const Json anova = outputOf(cvdSession())["anova"];

    std::vector<std::string> sources;
    for (const Json& row : anova) {
        EXPECT_EQ(keysOf(row), (std::vector<std::string>{"source", "degreesOfFreedom",
                                                         "sumOfSquares", "meanSquare", "f", "p"}));
        sources.push_back(row["source"]);
    }
    EXPECT_EQ(sources,
              (std::vector<std::string>{"Model", "Linear", "Interaction", "Square", "Residual",
                                        "Lack of fit", "Pure error", "Total"}));
    // The three centre runs: 2 degrees of freedom of pure error, their scatter computed by hand:
    // mean 5.8667, sum of squares 1.1467 (6.2, 6.4 and 5.0).
    EXPECT_EQ(anova[6]["degreesOfFreedom"], 2);
    EXPECT_NEAR(anova[6]["sumOfSquares"].get<double>(), 1.146666667, 1e-9);
}

TEST(FitReportStatistics, HasTheStationaryPointOrNull)
{
    const Json point = outputOf(cvdSession())["stationaryPoint"];

    EXPECT_EQ(keysOf(point), (std::vector<std::string>{"nature", "coordinates", "value",
                                                       "isInsideData", "curvatures"}));
    EXPECT_EQ(point["coordinates"].size(), 2u);

    // Five cases are too few for a quadratic polynomial.
    const Json linear =
        outputOf(cvdSession(CaseSession::ResponseSurface, {{0, 1}, {2}}, {3, 4, 5, 8, 9, 10}));
    EXPECT_TRUE(linear.contains("stationaryPoint"));
    EXPECT_TRUE(linear["stationaryPoint"].is_null());
}

TEST(FitReportStatistics, HasTheTestOfEachTerm)
{
    const Json tests = outputOf(cvdSession())["partialTests"];

    ASSERT_EQ(tests.size(), 5u);
    EXPECT_EQ(keysOf(tests[3]), (std::vector<std::string>{"term", "name", "degreesOfFreedom",
                                                          "sumOfSquares", "f", "p"}));
    EXPECT_EQ(tests[3]["name"], "Pressure * H2/WF6");
    EXPECT_NEAR(tests[3]["sumOfSquares"].get<double>(), 2.89, 1e-12);
}

TEST(FitReportStatistics, HasTheCasesThatStandOut)
{
    CaseTable table = cvdCases();
    table.columns[2].numbers[3] += 5.0;
    const Json residuals = outputOf(CaseSession(std::move(table), {{0, 1}, {2}}, {},
                                                CaseSession::ResponseSurface))["residuals"];

    ASSERT_EQ(residuals["largest"].size(), 5u);
    EXPECT_EQ(keysOf(residuals["largest"][0]),
              (std::vector<std::string>{"case", "output", "residual", "internallyStudentised",
                                        "externallyStudentised", "leverage", "cooksDistance"}));
    EXPECT_EQ(residuals["largest"][0]["case"], 4);
    EXPECT_NEAR(residuals["outlierLimit"].get<double>(), 5.7465, 1e-4);
    EXPECT_EQ(residuals["suspectedOutliers"], Json::parse("[4]"));
}

TEST(FitReportStatistics, HasTheCanonicalAnalysisAndTheRidges)
{
    const Json output = outputOf(cvdSession());

    ASSERT_EQ(output["canonicalDirections"].size(), 2u);
    EXPECT_NEAR(output["canonicalDirections"][1]["components"][0].get<double>(), 0.7276, 1e-4);
    ASSERT_EQ(output["ascent"].size(), 11u);
    EXPECT_EQ(keysOf(output["ascent"][10]),
              (std::vector<std::string>{"distance", "coordinates", "value", "standardError"}));
    EXPECT_NEAR(output["ascent"][10]["value"].get<double>(), 8.479, 1e-3);
    EXPECT_NEAR(output["descent"][10]["value"].get<double>(), 3.690, 1e-3);
}

TEST(FitReportStatistics, AreThoseOfAResponseSurfaceOnly)
{
    const Json output = outputOf(cvdSession(CaseSession::Kriging));

    EXPECT_FALSE(output.contains("coefficients"));
    EXPECT_FALSE(output.contains("anova"));
    EXPECT_FALSE(output.contains("stationaryPoint"));
}
