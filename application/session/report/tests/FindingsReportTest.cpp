#include <session/report/FindingsReport.h>

#include "CaseTables.h"
#include "CvdCases.h"

#include <session/model/CaseSession.h>

#include <gtest/gtest.h>

#include <vector>

TEST(FindingsReport, AGoodTableHasNoFindings)
{
    const CaseSession session(cvdCases(), {{0, 1}, {2, 3}}, {}, Workspace::Kriging);

    EXPECT_EQ(FindingsReport::text(SessionFindings::ofCases(session)), "Findings: none\n");
}

TEST(FindingsReport, SevereOnesAreNotedOncePerKind)
{
    CaseTable table = tableOf({{"a", {1, 2, 4, 3, 6, 5, 7, 9, 8}},
                               {"b", std::vector<double>(9, 5.0)},
                               {"y", {1, 1, 1, 1, 1, 1, 1, 1, 1}},
                               {"z", {2, 2, 2, 2, 2, 2, 2, 2, 2}}});

    EXPECT_EQ(
        FindingsReport::severeNotes(
            CaseSession(table, {{0, 1}, {2, 3}}, {}, Workspace::ResponseSurface)),
        "Warning: y is the same in every case: there is nothing to model; check the column or "
        "choose another output; so for 1 other column, which summary names.\n");
}

TEST(FindingsReport, NothingIsNotedOfAGoodTable)
{
    EXPECT_EQ(FindingsReport::severeNotes(
                  CaseSession(cvdCases(), {{0, 1}, {2, 3}}, {}, Workspace::Kriging)),
              "");
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
