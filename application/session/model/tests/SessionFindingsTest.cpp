#include <session/model/SessionFindings.h>

#include "CaseTables.h"

#include <session/model/CaseSession.h>
#include <session/report/FindingsReport.h>
#include <session/report/FitReport.h>
#include <session/report/ReportHeading.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <string>
#include <vector>

namespace {
using Numbers = std::vector<double>;

CaseTable tableWithMissingCells()
{
    CaseTable table = tableOf({{"a", {1, 2, 4, 3, 6, 5, 7, 9, 8}},
                               {"b", {2, missing, 1, 4, 3, 6, 5, 9, 7}},
                               {"y", {1, 4, 2, missing, missing, 3, 7, 5, 6}}});
    table.columns[2].withoutNumber.count = 1;
    table.columns[2].withoutNumber.spellings = {"failed"};
    table.columns[2].withoutNumber.firstLine = 5;
    table.columns[1].missing = table.columns[2].missing = {{"", 1}};
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

TEST(SessionFindings, LongNamesAreWholeInColumnsAndShortenedInSentences)
{
    CaseTable table = tableOf({{std::string(250, 'a'), {1, 1, 1, 1, 1, 1, 1, 1, 1}},
                               {"b", {2, 9, 1, 4, 3, 6, 5, 9, 7}},
                               {"y", {1, 4, 2, 6, 9, 3, 7, 5, 6}}});
    const CaseSession session(table, {{0, 1}, {2}}, {}, Workspace::ResponseSurface);

    const SessionFindings findings = SessionFindings::ofCases(session);
    ASSERT_FALSE(findings.findings.empty());
    const Finding& first = findings.findings.front();
    EXPECT_EQ(first.columns, std::vector<std::string>{table.columns[0].name});
    EXPECT_EQ(first.text.find(table.columns[0].name), std::string::npos);
}

TEST(SessionFindings, MissingCellsAreNamedByColumnAndCause)
{
    CaseSession session(tableWithMissingCells(), {{0, 1}, {2}}, {}, Workspace::ResponseSurface);
    ResponseSurfaceOptions linear;
    linear.terms = PolynomialTerms::Linear;
    session.choose({linear});

    EXPECT_EQ(
        FindingsReport::text(SessionFindings::ofCases(session)),
        "Findings\n"
        "  Warning: y lacks a number in 2 of 9 cases, 1 cell is no number (\"failed\", in line "
        "5), others: empty: these cases are left out; complete them.\n"
        "  Warning: b lacks a number in 1 of 9 cases (empty): this case "
        "is left out; complete it or leave b out of the inputs.\n");
}

TEST(SessionFindings, CellsThatNameALimitBiasTheModel)
{
    CaseTable table = tableWithMissingCells();
    table.columns[2].withoutNumber.spellings = {"<0.5"};
    CaseSession session(table, {{0}, {2}}, {}, Workspace::ResponseSurface);

    EXPECT_EQ(SessionFindings::ofCases(session).findings.front().text,
              "y lacks a number in 2 of 9 cases, 1 cell is no number (\"<0.5\", in line 5), "
              "others: empty: these cases are left out; a cell such as \"<0.01\" gives a limit of "
              "the value, and without its case the model is biased: write a number for it, such "
              "as the limit.");
}

TEST(SessionFindings, CasesThatMayBeFiguresOfTheOthersAreNamed)
{
    CaseTable table =
        tableOf({{"a", {1, 2, 4, 3, 6, 5, 7, 9, 8}}, {"y", {1, 4, 2, 6, 9, 3, 7, 5, 6}}});
    table.layout.casesOfFigures = {1, 2, 9};
    const auto said = [&](const std::set<std::size_t>& excluded) {
        const CaseSession session(table, {{0}, {1}}, {excluded.begin(), excluded.end()},
                                  Workspace::ResponseSurface);
        const std::vector<Finding> findings = SessionFindings::ofCases(session).findings;
        const auto found = std::find_if(findings.begin(), findings.end(), [](const Finding& one) {
            return one.kind == "casesOfFigures";
        });
        return found == findings.end() ? "" : found->text;
    };

    EXPECT_EQ(said({0}), "Cases 2 and 9 begin with a word such as Total, Mean or Max: they are "
                         "taken for measurements; if they sum up the other cases, exclude them.");
    EXPECT_EQ(said({0, 1, 8}), "");
}

TEST(SessionFindings, EachSpellingOfMissingCellsIsCounted)
{
    CaseTable table = tableOf({{"a", {1, 2, 4, 3, 6, 5, 7, 9, 8}},
                               {"y", {1, HUGE_VAL, 2, missing, missing, missing, 7, 5, 6}}});
    table.columns[1].missing = {{"", 2}, {"#DIV/0!", 1}};
    const auto said = [&](const std::set<std::size_t>& excluded) {
        const CaseSession session(table, {{0}, {1}}, {excluded.begin(), excluded.end()},
                                  Workspace::ResponseSurface);
        return SessionFindings::ofCases(session).findings.front().text;
    };

    EXPECT_EQ(said({}), "y lacks a number in 4 of 9 cases (2 empty, 1 \"#DIV/0!\", 1 infinite): "
                        "these cases are left out; complete them.");
    EXPECT_EQ(said({3}), "y lacks a number in 3 of 8 cases (empty, \"#DIV/0!\", 1 infinite): "
                         "these cases are left out; complete them.");
}

TEST(SessionFindings, CellsThatAreMissingInTheSameCasesAreNamedTogether)
{
    CaseTable table = tableOf({{"a", {1, missing, 4, 3, 6, 5, 7, 9, 8}},
                               {"b", {2, missing, 1, 4, 3, 6, 5, 9, 7}},
                               {"y", {1, missing, 2, 7, 4, 3, 7, 5, 6}}});
    for (CaseColumn& column : table.columns) {
        column.withoutNumber = {1, {column.name}, false, 3};
    }
    CaseSession session(table, {{0, 1}, {2}}, {}, Workspace::Kriging);

    const std::string text =
        "y, a and b lack numbers in the same 1 of 9 cases (\"y\", in line 3): "
        "this case is left out; complete it, or delete the line if it is no case.";
    EXPECT_EQ(SessionFindings::ofCases(session).findings.front().text, text);
    EXPECT_EQ(ReportHeading::readingNotes(session), std::vector<std::string>{text});
}

TEST(SessionFindings, ATableWithoutRolesSaysWhy)
{
    struct Example
    {
        CaseTable table;
        CaseRoles roles;
        std::string text;
    };
    const std::vector<ColumnRole> none = {{ColumnRole::None, "counts up by one"}};
    const Example examples[] = {
        {tableOf({{"a", {}}, {"y", {}}}),
         {{0}, {1}},
         "Severe: The file names columns and holds no case: there is nothing to model; add a row "
         "for each case."},
        {tableOf({{"a", {1, 2, 3}}}),
         {{}, {}, none},
         "Severe: No column is left to be an output: \"a\" (counts up by one); if they hold "
         "numbers, check the separator, the decimal mark and where the table begins, or name "
         "inputs and outputs."},
        {tableOf({{"a", {1, 2, 3}}, {"y", {1, 4, 3}}}),
         {{}, {1}, {none[0], {ColumnRole::Output, ""}}},
         "Severe: No column is left to be an input: \"a\" (counts up by one); name inputs, "
         "or code texts as numbers."},
        {tableOf({{"y", {1, 4, 3}}}),
         {{}, {0}},
         "Severe: No column is left to be an input: there is no other column; if the file has "
         "more, name what separates them."},
        {tableOf({{"a", {1}}, {"y", {4}}}),
         {{0}, {1}},
         "Severe: There is only one valid case: the model is its output everywhere; add cases, or "
         "complete those that are left out."}};
    for (const Example& example : examples) {
        const CaseSession session(example.table, example.roles, {}, Workspace::ResponseSurface);

        EXPECT_EQ(FindingsReport::sentences(SessionFindings::ofCases(session)),
                  std::vector<std::string>{example.text});
    }
}

TEST(SessionFindings, TheFitLeavesOutWhatItsWarningsSay)
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
    const auto kinds = kindsOf(session.findings());
    EXPECT_EQ(std::count(kinds.begin(), kinds.end(), "constantInput"), 0);
}

TEST(SessionFindings, TheFitNamesSuspectedOutliers)
{
    std::vector<double> a;
    std::vector<double> y;
    for (int row = 0; row < 30; ++row) {
        a.push_back(row * 7 % 31);
        y.push_back(a.back() + 0.1 * (row % 3));
    }
    y[11] += 6.0;
    CaseSession session(tableOf({{"a", a}, {"y", y}}), {{0}, {1}}, {}, Workspace::ResponseSurface);

    const SessionFindings findings = session.findings();

    ASSERT_EQ(kindsOf(findings), std::vector<std::string>{"suspectedOutliers"});
    EXPECT_EQ(FindingsReport::sentences(findings).front(),
              "Warning: Case 12 lies far from the fit of y to the others (its externally "
              "studentised residual exceeds 3.507, Bonferroni at 5 %): it bends the fit and widens "
              "the intervals; check it, and fit once more without it.");
    EXPECT_NE(FitReport::text(session).find("\nFindings\n  Warning: Case 12 lies far"),
              std::string::npos);
}

TEST(SessionFindings, OutliersThatTheDesignCannotTellApartAreNamedTogether)
{
    // A Box-Behnken design: the residuals of cases 5 and 8 have the same size, whatever the
    // outputs.
    CaseSession session(tableOf({{"A", {-1, 1, -1, 1, -1, 1, -1, 1, 0, 0, 0, 0, 0, 0, 0}},
                                 {"B", {-1, -1, 1, 1, 0, 0, 0, 0, -1, 1, -1, 1, 0, 0, 0}},
                                 {"C", {0, 0, 0, 0, -1, -1, 1, 1, -1, -1, 1, 1, 0, 0, 0}},
                                 {"y",
                                  {46.42, 54.353, 40.653, 47.306, 56.636, 52.092, 44.376, 56.296,
                                   49.508, 43.862, 49.565, 44.359, 50.055, 49.961, 49.79}}}),
                        {{0, 1, 2}, {3}}, {}, Workspace::ResponseSurface);

    const auto sentences = FindingsReport::sentences(session.findings());

    EXPECT_EQ(sentences.at(0),
              "Warning: Either case 5 or case 8 lies far from the fit of y to the others, and the "
              "design cannot tell which: it bends the fit and widens the intervals; check both, "
              "exclude one and look again.");
    EXPECT_EQ(sentences.at(1),
              "Warning: The fit of y explains 95 % of the variance of its own cases, but predicts "
              "left-out ones far worse (Q2 0.1376): it has many terms for so few cases, or single "
              "cases decide it; add cases, or choose fewer terms or have them selected.");
}

TEST(SessionFindings, ACaseThatTheFitRestsOnIsNamed)
{
    std::vector<double> a;
    std::vector<double> y;
    for (int row = 0; row < 20; ++row) {
        a.push_back(0.01 * row);
        y.push_back(a.back() + 0.1 * (row % 3));
    }
    a.push_back(5.0);
    y.push_back(-9.0);
    CaseSession session(tableOf({{"a", a}, {"y", y}}), {{0}, {1}}, {}, Workspace::ResponseSurface);

    const SessionFindings findings = session.findings();

    const auto found =
        std::find_if(findings.findings.begin(), findings.findings.end(),
                     [](const Finding& finding) { return finding.kind == "influentialCases"; });
    ASSERT_NE(found, findings.findings.end());
    EXPECT_EQ(found->text.find("The fit of y rests on case 21 (leverage "), 0u) << found->text;
    EXPECT_NE(found->text.find("): it passes near this case whatever the output there, so that a "
                               "fault would not show; check it, and repeat it or add cases "
                               "nearby."),
              std::string::npos)
        << found->text;
}
