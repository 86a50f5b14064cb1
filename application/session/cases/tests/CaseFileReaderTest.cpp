#include <session/cases/CaseFileReader.h>

#include "MessageOf.h"
#include "TemporaryFolder.h"

#include <session/text/SessionErrors.h>

#include <mirel_datamanagement/tests/MemoryGrowth.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include <sys/stat.h>

namespace {
class CaseFileReaderTest : public ::testing::Test
{
protected:
    CaseTable read(const std::string& content) { return readWith(content, {}); }

    CaseTable readWith(const std::string& content, const CaseFileReader::Options& options)
    {
        return CaseFileReader::read(folder.write("cases.csv", content), options);
    }

    /** The message without the folder's name. */
    std::string refusalOf(const std::string& content, const CaseFileReader::Options& options = {})
    {
        const std::string message = messageOf<CaseDataError>([&] { readWith(content, options); });
        const std::string prefix = folder.path("");
        EXPECT_EQ(message.rfind(prefix, 0), 0u) << message;
        return message.substr(prefix.size());
    }

    TemporaryFolder folder;
};

using Names = std::vector<std::string>;
using Numbers = std::vector<double>;
using Texts = std::vector<std::string>;
} // namespace

TEST_F(CaseFileReaderTest, ReadsColumnsOfNumbersAndOfTexts)
{
    const CaseTable table = read("x,site,y\n1,north,2.5\n-3,south,4e2\n");

    EXPECT_EQ(table.cases, 2u);
    EXPECT_EQ(table.names(), (Names{"x", "site", "y"}));
    EXPECT_TRUE(table.columns[0].isNumeric);
    EXPECT_EQ(table.columns[0].numbers, (Numbers{1.0, -3.0}));
    EXPECT_FALSE(table.columns[1].isNumeric);
    EXPECT_EQ(table.columns[1].texts, (Texts{"north", "south"}));
    EXPECT_EQ(table.columns[2].numbers, (Numbers{2.5, 400.0}));
}

TEST_F(CaseFileReaderTest, ReadsNumbersAsTheFileWritesThem)
{
    struct Row
    {
        std::string content;
        Numbers last; ///< column
        bool hasDecimalComma = false;
    };
    for (const Row& row :
         {Row{"x;y\n1,5;2,5\n3,5;4\n", {2.5, 4.0}, true}, Row{"x\ty\n2\t1,5\n", {1.5}, true},
          Row{"a;b\n1.5;2\n", {2.0}}, Row{"a,b\n1,5\n", {5.0}},
          Row{"x;y\n1;1.234,5\n2;2.000\n", {1234.5, 2000.0}, true},
          Row{"x,y\n1,\"1,234.5\"\n2,\"2,000\"\n", {1234.5, 2000.0}},
          Row{"x;y\n1;1,234\n2;2,5\n", {1.234, 2.5}, true}, Row{"x\n1e999\n2\n", {HUGE_VAL, 2.0}},
          Row{"a,b", {}}}) {
        const CaseTable table = read(row.content);

        EXPECT_TRUE(table.columns.back().isNumeric) << row.content;
        EXPECT_EQ(table.columns.back().numbers, row.last) << row.content;
        EXPECT_EQ(table.layout.hasDecimalComma, row.hasDecimalComma) << row.content;
    }
    CaseFileReader::Options options;
    options.separator = ';';
    EXPECT_EQ(readWith("x\n1,5\n", options).columns[0].numbers, (Numbers{1.5}));
}

TEST_F(CaseFileReaderTest, ReadsUtf16InBothOrdersOfBytes)
{
    const std::string big("\0x\0\n\0"
                          "1\0\n",
                          8);
    const std::string little("x\0\n\0"
                             "1\0\n\0",
                             8);
    CaseFileReader::Options options;
    for (const std::string& bytes : {"\xFF\xFE" + little, "\xFE\xFF" + big}) {
        EXPECT_EQ(read(bytes).columns[0].numbers, Numbers{1.0});
    }
    options.encoding = TextEncoding::Utf16Little; // who says UTF-16 does not know the order
    for (const std::string& bytes : {big, "\xFE\xFF" + big}) {
        EXPECT_EQ(readWith(bytes, options).columns[0].numbers, Numbers{1.0});
    }
}

TEST_F(CaseFileReaderTest, ReadsFilesOfOneColumn)
{
    const CaseTable table = read("x\n1\n2.5\n");

    EXPECT_EQ(table.columns[0].numbers, (Numbers{1.0, 2.5}));
    EXPECT_EQ(refusalOf("x\n1,5\n"),
              "cases.csv, line 2: the row has 2 cells, the heading has 1; if the table begins "
              "further down, skip the lines above it.");
    EXPECT_EQ(refusalOf("x,y\n1,5\n2\n"),
              "cases.csv, line 3: the row has 1 cell, the heading has 2; correct it, or begin it "
              "with # to leave it out.");
}

TEST_F(CaseFileReaderTest, MissingCellsAreNaNInNumericAndEmptyInTextColumns)
{
    const CaseTable table = read("x,s\n1,a\nNA,?\n,-\n2,null\n");

    ASSERT_EQ(table.columns[0].numbers.size(), 4u);
    EXPECT_TRUE(std::isnan(table.columns[0].numbers[1]));
    EXPECT_TRUE(std::isnan(table.columns[0].numbers[2]));
    EXPECT_EQ(table.columns[1].texts, (Texts{"a", "", "", ""}));

    const CaseTable late = read("x,empty,note\n1,,\n2,NA,\n3,,broken\n");

    EXPECT_TRUE(late.columns[1].isNumeric) << "without a filled cell";
    EXPECT_TRUE(std::isnan(late.columns[1].numbers[0]));
    EXPECT_EQ(late.columns[2].texts, (Texts{"", "", "broken"}));
}

TEST_F(CaseFileReaderTest, KindsThatAreKnownLateAreReadAgainInLargeFilesToo)
{
    std::string content = "id,y,x\n";
    for (int i = 0; i < 100000; ++i) {
        content += (i < 40000 ? "0" + std::to_string(i) + ",not yet"
                              : "k" + std::to_string(i) + ',' + std::to_string(i)) +
                   ",1.25\n";
    }

    const CaseTable table = read(content);

    ASSERT_EQ(table.cases, 100000u);
    ASSERT_EQ(table.columns[0].texts.size(), 100000u);
    EXPECT_EQ(table.columns[0].texts[0], "00");
    EXPECT_EQ(table.columns[0].texts[39999], "039999");
    EXPECT_EQ(table.columns[0].texts[99999], "k99999");
    ASSERT_EQ(table.columns[1].numbers.size(), 100000u);
    EXPECT_TRUE(std::isnan(table.columns[1].numbers[39999]));
    EXPECT_EQ(table.columns[1].numbers[40000], 40000.0);
    EXPECT_EQ(table.columns[1].withoutNumber.count, 40000u);
}

TEST_F(CaseFileReaderTest, ColumnsThatAreReadAgainKeepTheirRowsBesideRepeatedHeadings)
{
    for (const std::string between : {"n,y\n,\nmm,s\n", "n,y\n\nmm,s\n", "n,y\nmm,s\n,\n",
                                      ",\nn,y\nmm,s\n", "pause,\nn,y\nmm,s\n"}) {
        const CaseTable table =
            read("n,y\nmm,s\n1,late\n2,2\n3,3\n6,6\n7,7\n" + between + "4,4\n5,5\nend,\nn,y\n,\n");
        const Numbers& n = table.columns[0].numbers;
        const Numbers& y = table.columns[1].numbers;

        ASSERT_EQ(n.size(), y.size()) << between;
        for (std::size_t row = 0; row < table.cases; ++row) {
            EXPECT_TRUE(std::isnan(y[row]) || n[row] == y[row]) << between << row;
        }
        EXPECT_EQ(y.back(), 5.0) << between;
    }
}

TEST_F(CaseFileReaderTest, NamesAndTextsAreUtf8)
{
    const CaseTable table = read("T \xC2\xB0"
                                 "C,Ort\n1,K\xC3\xB6ln\n");

    EXPECT_EQ(table.columns[0].name, "T \xC2\xB0"
                                     "C");
    EXPECT_EQ(table.columns[1].texts, (Texts{"K\xC3\xB6ln"}));
}

TEST_F(CaseFileReaderTest, TextThatIsNotUtf8IsWindows1252)
{
    const CaseTable table = read("x,Ort\n1,K\xF6ln \x96 S\xFC"
                                 "d\n");

    EXPECT_EQ(table.layout.encoding, TextEncoding::Windows1252);
    EXPECT_EQ(table.columns[1].texts, Texts{u8"Köln – Süd"});
    EXPECT_EQ(table.guess, "Windows-1252 text");
}

TEST_F(CaseFileReaderTest, AByteFarDownCanShowTheEncoding)
{
    std::string content = "x,Ort\n";
    for (int i = 0; i < 60000; ++i) {
        content += "1,Ulm\n";
    }

    const CaseTable table = read(content + "2,K\xF6ln\n");

    ASSERT_EQ(table.cases, 60001u);
    EXPECT_EQ(table.columns[1].texts.back(), u8"Köln");
}

TEST_F(CaseFileReaderTest, LongNamesAreCutInMessages)
{
    const std::string name(10000, 'x');

    EXPECT_LT(refusalOf("7,7," + name + "\n1,2,3\n").size(), 400u);
    EXPECT_LT(refusalOf("a,b\n1,2\n2,1\n3,5\n4,3\n" + name + ",c\n5,6\n").size(), 400u);
    EXPECT_LT(refusalOf(name + ";y\n1,5;2.5\n").size(), 400u);
}

TEST_F(CaseFileReaderTest, RefusesBytesThatAreNoText)
{
    EXPECT_EQ(refusalOf(std::string("x,y\n1,2\n3,\0\n", 12)),
              "cases.csv, line 3: a cell holds a NUL byte, so that the file is damaged or no text; "
              "save it as UTF-8.");
    CaseFileReader::Options utf8;
    utf8.encoding = TextEncoding::Utf8;
    EXPECT_EQ(refusalOf("x,y\n1,\xED\xA0\x80\n", utf8),
              "cases.csv, line 2: the file is not UTF-8 text; save it as UTF-8.");
}

TEST_F(CaseFileReaderTest, RefusesFilesThatAreNoTablesOfText)
{
    for (const char* beginning :
         {"PK\x03\x04", "PAR1", "\x1F\x8B", "\x89HDF", "BZh91AY", "\x93NUMPY", "<div>\n <table>",
          "\\begin{table}\n\\begin{tabular}{rr}"}) {
        const std::string message =
            messageOf<CaseDataError>([&] { read(std::string(beginning) + "..."); });
        EXPECT_EQ(message.rfind('"' + folder.path("cases.csv") + "\" is ", 0), 0u) << message;
    }
}

TEST_F(CaseFileReaderTest, RefusesAnEmptyFile)
{
    const std::string sentence =
        "cases.csv, line 1: the file is empty; its first line must name the variables.";

    EXPECT_EQ(refusalOf(""), sentence);
    EXPECT_EQ(refusalOf("\n  \n"), sentence);
    EXPECT_EQ(refusalOf("\xEF\xBB\xBF"), sentence);
}

TEST_F(CaseFileReaderTest, MarksThatGroupThreeDigitsBesideOtherDecimalMarksSeparateThousands)
{
    EXPECT_EQ(read("a;b\n2,5;12.345\n0,125;999\n").columns[1].numbers, (Numbers{12345, 999}));
    EXPECT_EQ(read("a;b\n2.5;12,345\n0.125;999\n").columns[1].numbers, (Numbers{12345, 999}));
    CaseFileReader::Options point;
    point.decimalMark = CellValue::Point;
    EXPECT_EQ(readWith("a\tb\n1,234\t2\n987\t3\n", point).columns[0].numbers, (Numbers{1234, 987}));
    for (const char* content : {"a;b\n2,5;1.234\n3,5;0.234\n", "a;b\n2,5;1.234\n3,5;1.23\n",
                                "a;b\n2,5;1.234\n3;2,25\n", "a;b\n2,5;1.234e3\n3;2\n"}) {
        EXPECT_NE(refusalOf(content).find("write all numbers in one way"), std::string::npos)
            << content;
    }
}

TEST_F(CaseFileReaderTest, IgnoresEmptyColumnsAndRowsAtTheEnd)
{
    const CaseTable table = read("a,b,,\n1,2,,\n,,\n3,4,,\n,,,\n,,,\n");

    EXPECT_EQ(table.names(), (Names{"a", "b"}));
    EXPECT_EQ(table.cases, 3u);
    EXPECT_TRUE(std::isnan(table.columns[1].numbers[1]));
    EXPECT_EQ(table.columns[1].numbers[2], 4.0);
    EXPECT_EQ(read("a,b\n1,2,\n3,4,\n").columns[1].numbers, (Numbers{2.0, 4.0}));
}

TEST_F(CaseFileReaderTest, NamesKeepTheTabsBeforeFormulas)
{
    EXPECT_EQ(read("\tb, \t=1+1,\"\t-a\"\n1,2,3\n").names(), (Names{"b", "\t=1+1", "\t-a"}))
        << "tabs that keep spreadsheets from calculating";
}

TEST_F(CaseFileReaderTest, KeepsTheUnitsBelowTheHeading)
{
    const CaseTable table = read("site;p;y\n;[MPa];mm\nnorth;1,5;2\nsouth;2,5;3\n");

    EXPECT_EQ(table.cases, 2u);
    EXPECT_EQ(table.columns[0].unit, "");
    EXPECT_EQ(table.columns[1].unit, "MPa");
    EXPECT_EQ(table.columns[2].unit, "mm");
    EXPECT_EQ(table.guess, "semicolons, decimal commas; a units row skipped");
}

TEST_F(CaseFileReaderTest, SkipsCommentLinesAndTitles)
{
    const CaseTable table = read("Rig 7\n# warm\nx,y\n1,2\n# pause\n3,4\n");

    EXPECT_EQ(table.columns[0].numbers, (Numbers{1.0, 3.0}));
    EXPECT_EQ(table.guess, "1 title line and 2 comment lines skipped");
}

TEST_F(CaseFileReaderTest, RowNamesAreText)
{
    const CaseTable table = read("\"x\" \"y\"\n\"1\" 2 3\n\"2\" 4 5\n");

    EXPECT_EQ(table.names(), (Names{"Row name", "x", "y"}));
    EXPECT_EQ(table.columns[0].texts, (Texts{"1", "2"}));
    EXPECT_EQ(table.columns[2].numbers, (Numbers{3.0, 5.0}));
}

TEST_F(CaseFileReaderTest, SaysNothingOfAPlainTableAndOfWhatTheUserSaid)
{
    CaseFileReader::Options options;
    options.separator = ';';
    options.decimalMark = CellValue::Comma;
    options.skippedLines = 1;

    EXPECT_EQ(read("x,y\n1,2\n").guess, "");
    EXPECT_EQ(readWith("Rig 7\nx;y\n1,5;2\n", options).guess, "");
}

TEST_F(CaseFileReaderTest, RefusesAQuoteThatIsNeverClosed)
{
    EXPECT_EQ(refusalOf("x,y\n1,2\n3,\"four\n5,6\n"),
              "cases.csv, line 3: a quoted cell that begins in this row is never closed.");
    EXPECT_EQ(refusalOf("x;y\n1;2,5\n3;\"4,5\n5;6,5\n"),
              "cases.csv, line 3: a quoted cell that begins in this row is never closed.");
}

TEST_F(CaseFileReaderTest, AGivenDecimalMarkIsTheOnlyOne)
{
    CaseFileReader::Options options;
    options.separator = ';';
    options.decimalMark = CellValue::Point;
    EXPECT_FALSE(readWith("a;b\n1,5;2.5\n", options).columns[0].isNumeric);

    options.decimalMark = CellValue::Comma;
    EXPECT_EQ(readWith("a;b\n1,5;2\n", options).columns[0].numbers, Numbers{1.5});

    options.separator = ',';
    EXPECT_EQ(refusalOf("a,b\n1,2\n", options),
              "cases.csv, line 1: commas separate the cells, so that numbers cannot have decimal "
              "commas.");
}

TEST_F(CaseFileReaderTest, KeepsTheTextsOfAllCellsWhenAsked)
{
    CaseFileReader::Options options;
    options.keepCells = true;

    const CaseTable table = readWith("x,s\n1.50,a\nNA,\"b,c\"\n", options);

    EXPECT_TRUE(table.columns[0].isNumeric);
    EXPECT_EQ(table.columns[0].cells[0], "1.50");
    EXPECT_EQ(table.columns[0].cells[1], "NA");
    EXPECT_EQ(table.columns[1].cells[1], "b,c");
    EXPECT_EQ(table.columns[1].cells.size(), 2u);
}

TEST_F(CaseFileReaderTest, ReadsAPipeLikeAFile)
{
    const std::string pipe = folder.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::thread writer([&] { folder.write("pipe", "id,x\n007,1\nb,2\nc,3\n"); });

    const CaseTable table = CaseFileReader::read(pipe, {});

    writer.join();
    EXPECT_EQ(table.columns[0].texts, (Texts{"007", "b", "c"}));
}

TEST_F(CaseFileReaderTest, ReadingTakesLittleMoreMemoryThanTheNumbers)
{
    if (!memoryCanBeMeasured) {
        GTEST_SKIP();
    }
    const std::size_t cases = 400000;
    std::string content = "a,b,c,d,e,f,g,h,i,j\n";
    for (std::size_t i = 0; i < cases; ++i) {
        content += "0.1234567,0.2345678,0.3456789,0.4567891,0.5678912,"
                   "0.6789123,0.7891234,0.8912345,0.9123456,0.1234567\n";
    }
    const std::string file = folder.write("cases.csv", content);
    const std::string pipe = folder.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);

    const auto readIt = [&](const std::string& path) {
        if (CaseFileReader::read(path, {}).cases != cases) {
            std::abort();
        }
    };
    const int growthFromFile = megabytesGrownBy([&] { readIt(file); });
    std::thread writer([&] { folder.write("pipe", content); });
    const int growthFromPipe = megabytesGrownBy([&] { readIt(pipe); });
    writer.join();

    const int numbers = 32; // megabytes, as is the file
    EXPECT_GT(growthFromFile, numbers / 2);
    EXPECT_LT(growthFromFile, 2.2 * numbers);
    EXPECT_GT(growthFromPipe, numbers / 2);
    EXPECT_LT(growthFromPipe, 2.2 * numbers);
}
