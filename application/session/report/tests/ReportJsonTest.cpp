#include <session/report/ReportJson.h>

#include "TemporaryFolder.h"

#include <session/files/OutputFile.h>
#include <session/files/OutputTable.h>

#include <gtest/gtest.h>

#include <cmath>

using ReportJson::Json;

TEST(ReportJson, HasNullForNumbersThatAreNotFiniteAndReplacesBytesThatAreNoUtf8)
{
    EXPECT_EQ(ReportJson::text({{"a", std::nan("")}}), "{\n  \"a\": null\n}\n");
    EXPECT_EQ(ReportJson::text("\xFF"), "\"\xEF\xBF\xBD\"\n");
}

TEST(ReportJson, CanHaveATableAsLastMember)
{
    const TemporaryFolder folder;
    const double numbers[] = {0.5, 2.0};
    OutputTable table;
    table.columns = {{"x", numbers, nullptr}};
    table.rows = 2;
    OutputFile out(folder.path("report.json"));

    ReportJson::write({{"a", {1, 2}}}, table, out);
    out.commit();

    const std::string text = folder.read("report.json");
    EXPECT_EQ(text.rfind("{\n  \"a\": [\n    1,\n    2\n  ],\n  \"table\": {\"columns\"", 0), 0u)
        << text;
    EXPECT_EQ(Json::parse(text), Json::parse(R"({"a": [1, 2], "table": {"columns": ["x"],
                                                 "rows": [[0.5], [2]]}})"));
}
