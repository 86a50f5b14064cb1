#include <session/report/SummaryReport.h>

#include "SmallTable.h"

#include <session/model/CaseSession.h>

#include <gtest/gtest.h>

#include <string>

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
    const CaseSession session(smallTable(), {{0}, {2}}, {1}, CaseSession::ResponseSurface);

    EXPECT_EQ(SummaryReport::text(session),
              "Variable  Kind     Role    Minimum  Maximum  Missing\n"
              "\xC3\xA4         numeric  input       0.5        3        1\n"
              "site      text     -             -        -        2\n"
              "y         numeric  output        1        5        0\n"
              "empty     numeric  -             -        -        5\n"
              "\n"
              "Cases: 5 read, 2 valid, 1 excluded, 2 invalid (\xC3\xA4 1, y 1)\n"
              "y alone would have 2 valid cases.\n");
}

TEST(SummaryReport, AsJsonHasTheSame)
{
    const CaseSession session(smallTable(), {{0}, {2}}, {1}, CaseSession::ResponseSurface);

    const Json json = printed(SummaryReport::json(session));

    EXPECT_EQ(json["schema"], 1);
    EXPECT_EQ(json["cases"], Json::parse(R"({"read": 5, "valid": 2, "excluded": 1, "invalid": 2,
        "invalidBy": [{"name": "\u00e4", "cases": 1}, {"name": "y", "cases": 1}]})"));
    EXPECT_EQ(json["variables"][0], Json::parse(R"({"name": "\u00e4", "kind": "numeric",
        "role": "input", "minimum": 0.5, "maximum": 3.0, "missing": 1})"));
    EXPECT_EQ(json["variables"][1], Json::parse(R"({"name": "site", "kind": "text",
        "role": "none", "minimum": null, "maximum": null, "missing": 2})"));
    EXPECT_EQ(json["outputs"], Json::parse(R"([{"name": "y", "validAlone": 2}])"));
}
