#include <session/report/FindingsReport.h>

#include "CaseTables.h"
#include "CvdCases.h"

#include <session/model/CaseSession.h>
#include <session/report/FitReport.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace {
const double missing = std::nan("");

CaseTable tableWithMissingCells()
{
    CaseTable table = tableOf({{"a", {1, 2, 4, 3, 6, 5, 7, 9, 8}},
                               {"b", {2, missing, 1, 4, 3, 6, 5, 9, 7}},
                               {"y", {1, 4, 2, missing, missing, 3, 7, 5, 6}}});
    table.columns[2].withoutNumber.count = 1;
    table.columns[2].withoutNumber.spellings = {"failed"};
    table.columns[2].withoutNumber.firstLine = 5;
    return table;
}

std::vector<std::string> kindsOf(const SessionFindings& findings)
{
    std::vector<std::string> kinds;
    for (const Finding& finding : findings.findings) {
        kinds.push_back(finding.kind);
    }
    return kinds;
}
} // namespace

TEST(FindingsReport, AGoodTableHasNoFindings)
{
    const CaseSession session(cvdCases(), {{0, 1}, {2, 3}}, {}, Workspace::Kriging);

    EXPECT_EQ(FindingsReport::text(SessionFindings::ofCases(session)), "Findings: none\n");
}

TEST(FindingsReport, MissingCellsAreNamedByColumnAndCause)
{
    CaseSession session(tableWithMissingCells(), {{0, 1}, {2}}, {}, Workspace::ResponseSurface);
    ResponseSurfaceOptions linear;
    linear.terms = PolynomialTerms::Linear;
    session.chooseResponseSurface(linear);

    EXPECT_EQ(
        FindingsReport::text(SessionFindings::ofCases(session)),
        "Findings\n"
        "  Warning: y lacks a number in 2 of 9 cases, 1 cell is no number (\"failed\", in line "
        "5), others are empty: these cases are left out; complete them.\n"
        "  Warning: b lacks a number in 1 of 9 cases (empty, marked as missing or infinite): this "
        "case "
        "is left out; complete it or leave b out of -x.\n");
}

TEST(FindingsReport, TheFitLeavesOutWhatItsWarningsSay)
{
    std::vector<double> a;
    std::vector<double> y;
    for (int row = 0; row < 12; ++row) {
        a.push_back(row * row % 13);
        y.push_back(std::sin(row));
    }
    CaseSession session(tableOf({{"a", a}, {"b", std::vector<double>(12, 3.0)}, {"y", y}}),
                        {{0, 1}, {2}}, {}, Workspace::ResponseSurface);

    EXPECT_EQ(kindsOf(SessionFindings::ofCases(session)).front(), "constantInput");
    const auto kinds = kindsOf(SessionFindings::ofFit(session));
    EXPECT_EQ(std::count(kinds.begin(), kinds.end(), "constantInput"), 0);
}

TEST(FindingsReport, TheFitNamesSuspectedOutliers)
{
    std::vector<double> a;
    std::vector<double> y;
    for (int row = 0; row < 30; ++row) {
        a.push_back(row * 7 % 31);
        y.push_back(a.back() + 0.1 * (row % 3));
    }
    y[11] += 6.0;
    CaseSession session(tableOf({{"a", a}, {"y", y}}), {{0}, {1}}, {}, Workspace::ResponseSurface);

    const SessionFindings findings = SessionFindings::ofFit(session);

    ASSERT_EQ(kindsOf(findings), std::vector<std::string>{"suspectedOutliers"});
    EXPECT_EQ(FindingsReport::sentences(findings).front(),
              "Warning: Case 12 lies far from the fit of y to the others: it bends the fit and "
              "widens the intervals; check it, and fit once more with --exclude.");
    EXPECT_NE(FitReport::text(session).find("\nFindings\n  Warning: Case 12 lies far"),
              std::string::npos);
}

TEST(FindingsReport, AsJsonHasKindSeverityColumnsAndText)
{
    SessionFindings findings;
    findings.findings = {{"gap", Finding::Note, {"a", "b"}, "There is a gap."}};

    EXPECT_EQ(FindingsReport::json(findings).dump(),
              R"([{"kind":"gap","severity":"note","columns":["a","b"],"text":"There is a gap."}])");
}

TEST(FindingsReport, OfManyCasesTheHeadingSaysHowManyAreCompared)
{
    SessionFindings findings;
    findings.validCases = 1000000;
    findings.comparedCases = 2000;

    EXPECT_EQ(FindingsReport::text(findings),
              "Findings (2000 of 1000000 valid cases are compared with each other): none\n");
}
