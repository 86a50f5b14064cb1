#include <session/report/SummaryReport.h>

#include "CaseTables.h"
#include "SmallTable.h"

#include <session/model/CaseSession.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {
using Json = nlohmann::json;

/** As a reader gets it. */
Json printed(const ReportJson::Json& report)
{
    return Json::parse(ReportJson::text(report));
}
} // namespace

TEST(SummaryReport, ListsVariablesAndCases)
{
    CaseTable table = smallTable();
    table.columns[0].unit = "mm";
    const CaseSession session(std::move(table), {{0}, {2}}, {1}, CaseSession::ResponseSurface);

    EXPECT_EQ(SummaryReport::text(session, "Roles: as chosen\n"),
              "Variable  Unit  Role    Count  Missing  Minimum  Median  Maximum  Distinct  Why\n"
              "\xC3\xA4         mm    input       4        1      0.5     1.5        3         4\n"
              "site            none        3        2                                   2  text\n"
              "y               output      4        0        1     2.5        5         4\n"
              "empty           none        0        5                                   0\n"
              "\n"
              "Roles: as chosen\n"
              "Cases: 5 read, 2 valid, 1 excluded, 2 invalid (\xC3\xA4 1, y 1)\n"
              "y alone would have 2 valid cases.\n"
              "\n"
              "Findings\n"
              "  Warning: y lacks a number in 1 of 4 cases (1 infinite): "
              "this case is left out; complete it.\n"
              "  Warning: \xC3\xA4 lacks a number in 1 of 4 cases: "
              "this case is left out; complete it.\n"
              "  Warning: 2 different cases do not determine the 3 terms of a quadratic response "
              "surface of 1 input: terms are left out; 3 cases would do and 5 would leave some for "
              "the error; add them or choose fewer terms.\n");
}

TEST(SummaryReport, AsJsonHasTheSame)
{
    CaseTable table = smallTable();
    table.columns[0].unit = "mm";
    const CaseSession session(std::move(table), {{0}, {2}}, {1}, CaseSession::ResponseSurface);

    Json json = printed(SummaryReport::json(session));

    EXPECT_EQ(json["schema"], 1);
    EXPECT_EQ(json["cases"].erase("layout"), 1u);
    EXPECT_EQ(json["cases"], Json::parse(R"({"read": 5, "valid": 2, "excluded": 1, "invalid": 2,
        "invalidBy": [{"name": "\u00e4", "cases": 1}, {"name": "y", "cases": 1}]})"));
    EXPECT_EQ(json["variables"][0], Json::parse(R"({"name": "\u00e4", "kind": "numeric",
        "role": "input", "reason": "", "unit": "mm", "count": 4, "missing": 1, "minimum": 0.5, "median": 1.5,
        "maximum": 3.0, "distinct": 4, "hasMoreDistinct": false})"));
    EXPECT_EQ(json["variables"][1], Json::parse(R"({"name": "site", "kind": "text",
        "role": "none", "reason": "", "unit": "", "count": 3, "missing": 2, "minimum": null, "median": null,
        "maximum": null, "distinct": 2, "hasMoreDistinct": false})"));
    EXPECT_EQ(json["suggested"], Json::parse(R"({"inputs": ["\u00e4"], "outputs": ["y"]})"));
    EXPECT_EQ(json["findings"].size(), 3u);
    EXPECT_EQ(json["findings"][0]["kind"], "missingCells");
    EXPECT_EQ(json["findings"][0]["columns"], Json::parse(R"(["y"])"));
    EXPECT_EQ(json["outputs"], Json::parse(R"([{"name": "y", "validAlone": 2}])"));
}

TEST(SummaryReport, ColumnsWithoutARoleHaveTheReason)
{
    CaseTable table =
        tableOf({{"Run", {1, 2, 3, 4, 5}}, {"a", {2, 1, 4, 7, 5}}, {"y", {1, 3, 2, 6, 4}}});
    const CaseRoles roles = chooseCaseRoles(table, {}, {"y"});
    const CaseSession session(std::move(table), roles, {}, CaseSession::ResponseSurface);

    const Json json = printed(SummaryReport::json(session));

    EXPECT_EQ(json["variables"][0]["role"], "none");
    EXPECT_EQ(json["variables"][0]["reason"], "counts up by one, from 1 to 5");
    EXPECT_EQ(json["variables"][1]["role"], "input");
}
