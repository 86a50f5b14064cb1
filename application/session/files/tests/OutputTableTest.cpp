#include <session/files/OutputTable.h>

#include "TemporaryFolder.h"

#include <session/cases/CaseFileReader.h>
#include <session/files/OutputFile.h>
#include <session/text/CellTexts.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {
class OutputTableTest : public ::testing::Test
{
protected:
    std::string csvOf(const OutputTable& table, const TableDialect& dialect = {})
    {
        OutputFile out(folder.path("table.csv"));
        writeCsv(table, out, dialect);
        out.commit();
        return folder.read("table.csv");
    }

    std::string jsonOf(const OutputTable& table)
    {
        OutputFile out(folder.path("table.json"));
        writeJson(table, out);
        out.commit();
        return folder.read("table.json");
    }

    TemporaryFolder folder;
};

CellTexts textsOf(const std::vector<std::string>& values)
{
    CellTexts texts;
    for (const std::string& value : values) {
        texts.append(value);
    }
    return texts;
}
} // namespace

TEST_F(OutputTableTest, NumbersAreShortestUnlessSomebodyWroteThem)
{
    const std::vector<double> a = {0.1, 1e6};
    const std::vector<double> b = {std::nan(""), 1.0 / 3.0};

    EXPECT_EQ(csvOf({{{"a", a.data()}, {"b", b.data()}}, 2}),
              "a,b\n0.1,\n1000000,0.3333333333333333\n");

    const std::vector<double> numbers = {1.5, std::nan(""), 2.25};
    const CellTexts texts = textsOf({"1.50", "NA", "2,25"});

    EXPECT_EQ(csvOf({{{"x", numbers.data(), &texts}}, 3}), "x\n1.50\nNA\n2.25\n");

    const std::vector<double> single = {1.0, std::nan(""), 3.0};

    EXPECT_EQ(csvOf({{{"x", single.data()}}, 3}), "x\n1\n\"\"\n3\n");
    EXPECT_EQ(CaseFileReader::read(folder.path("table.csv"), {}).cases, 3u);
}

TEST_F(OutputTableTest, TextsThatSpreadsheetsTakeForFormulasGetAnApostropheOnRequest)
{
    const CellTexts texts = textsOf({"=1+1", "+a", "-5", "@SUM(A1)", "\t=2", "\r=2", "a=b", "- a"});
    const std::vector<double> numbers(8, -1.0);
    const OutputTable table = {{{"=cmd|' /C calc'!A0", numbers.data()}, {"b", nullptr, &texts}}, 8};
    TableDialect dialect;

    EXPECT_EQ(csvOf(table, dialect), "=cmd|' /C calc'!A0,b\n-1,=1+1\n-1,+a\n-1,-5\n-1,@SUM(A1)\n"
                                     "-1,\"\t=2\"\n-1,\"\r=2\"\n-1,a=b\n-1,- a\n");
    dialect.isForSpreadsheet = true;
    EXPECT_EQ(csvOf(table, dialect),
              "'=cmd|' /C calc'!A0,b\n-1,'=1+1\n-1,'+a\n-1,-5\n-1,'@SUM(A1)\n"
              "-1,\"'\t=2\"\n-1,\"'\r=2\"\n-1,a=b\n-1,'- a\n");
}

TEST_F(OutputTableTest, TablesAreWrittenInTheDialectWanted)
{
    const std::vector<double> numbers = {1.5, std::nan("")};
    const std::vector<double> given = {1234.5, 2.5};
    const CellTexts cells = textsOf({"1.234,5", "2.50"});
    const CellTexts texts = textsOf({"north east", "a|b"});
    const OutputTable table = {
        {{"x", numbers.data()}, {"z", given.data(), &cells}, {"s", nullptr, &texts}}, 2};

    EXPECT_EQ(csvOf(table, {';', true}), "x;z;s\n1,5;1234,5;north east\n;2,50;a|b\n");
    EXPECT_EQ(csvOf(table, {'|', false}), "x|z|s\n1.5|1234.5|north east\n|2.50|\"a|b\"\n");
    EXPECT_EQ(csvOf(table, {' ', false}), "x z s\n1.5 1234.5 \"north east\"\nNA 2.50 a|b\n");
}

TEST_F(OutputTableTest, AFirstCellThatLooksLikeACommentIsQuoted)
{
    const CellTexts texts = textsOf({"#1", "//a", "a#"});

    EXPECT_EQ(csvOf({{{"%RH", nullptr, &texts}, {"#", nullptr, &texts}}, 3}),
              "\"%RH\",#\n\"#1\",#1\n\"//a\",//a\na#,a#\n");
}

TEST_F(OutputTableTest, NamesAndTextsAreQuotedWhereNeeded)
{
    const CellTexts texts = textsOf({"plain", "a,b", "say \"x\"", "two\nlines", " outer", "a;b"});
    OutputTable table;
    table.columns = {{"x, \"y\"", nullptr, &texts}, {"z", nullptr, &texts}};
    table.rows = 3;

    EXPECT_EQ(csvOf(table), "\"x, \"\"y\"\"\",z\nplain,plain\n\"a,b\",\"a,b\"\n"
                            "\"say \"\"x\"\"\",\"say \"\"x\"\"\"\n");
    table.rows = 6;
    const CaseTable back =
        CaseFileReader::read((csvOf(table), folder.path("table.csv")), CaseFileReader::Options());
    EXPECT_EQ(back.columns[0].name, "x, \"y\"");
    EXPECT_EQ(back.columns[0].texts, (std::vector<std::string>{"plain", "a,b", "say \"x\"",
                                                               "two\nlines", " outer", "a;b"}));
}

TEST_F(OutputTableTest, AsJsonItHasNamesAndRowsAndWithoutRowsStillTheHeading)
{
    const std::vector<double> numbers = {0.1, std::nan(""),
                                         std::numeric_limits<double>::infinity()};
    const CellTexts texts = textsOf({"a\"b", "NA", "\xC3\xA4"});

    EXPECT_EQ(jsonOf({{{"x", numbers.data()}, {"s \"t\"", nullptr, &texts}}, 3}),
              "{\"columns\":[\"x\",\"s \\\"t\\\"\"],\"rows\":[\n[0.1,\"a\\\"b\"],\n[null,null],\n"
              "[null,\"\xC3\xA4\"]]}");

    EXPECT_EQ(csvOf({{{"a"}, {"b"}}, 0}), "a,b\n");
    EXPECT_EQ(jsonOf({{{"a"}}, 0}), "{\"columns\":[\"a\"],\"rows\":[]}");
}
