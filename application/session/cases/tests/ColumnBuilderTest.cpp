#include <session/cases/ColumnBuilder.h>

#include "MessageOf.h"

#include <session/text/SessionErrors.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace {
using Numbers = std::vector<double>;
using Row = std::vector<std::string_view>;
using Texts = std::vector<std::string>;

class ColumnBuilderTest : public ::testing::Test
{
protected:
    /** The columns of these rows, the first of which is the heading. */
    CaseTable built(const std::vector<Row>& rows, std::size_t width = 0) const
    {
        CaseTable table;
        table.path = "cases.csv";
        table.layout.hasHeading = true;
        table.layout.separator = ';';
        table.layout.columns = width == 0 ? rows.front().size() : width;
        ColumnBuilder builder(table, options);
        builder.takeHeading(rows.front(), 1);
        for (std::size_t i = 1; i < rows.size(); ++i) {
            builder.takeCase(rows[i], i + 1);
        }
        builder.endCases();
        for (const std::size_t column : builder.decideKinds()) {
            for (std::size_t i = 1; i <= table.cases; ++i) {
                builder.takeCellAgain(column, rows[i][column]);
            }
        }
        builder.checkNumbers();
        builder.takeDecimalMark();
        return table;
    }

    CaseColumn column(const Row& cells) const
    {
        std::vector<Row> rows = {{"y"}};
        for (const std::string_view cell : cells) {
            rows.push_back({cell});
        }
        return built(rows).columns[0];
    }

    std::string refusalOf(const std::vector<Row>& rows) const
    {
        return messageOf<CaseDataError>([&] { built(rows); });
    }

    ReadingOptions options;
};
} // namespace

TEST_F(ColumnBuilderTest, NamesStandOnOneLineAndDiffer)
{
    const struct
    {
        Row heading;
        Texts names;
        std::size_t width = 0;
    } cases[] = {{{"Stress\n(MPa)", " b\t"}, {"Stress (MPa)", "b"}},
                 {{"a", "", "c"}, {"a", "C2", "c"}},
                 {{"", "x", "y"}, {"C1", "x", "y"}},
                 {{"a", "b", "", ""}, {"a", "b"}, 2},
                 {{"a", "b", "c", "b", "b", "b.1"}, {"a", "b", "c", "b.2", "b.3", "b.1"}}};
    for (const auto& one : cases) {
        EXPECT_EQ(built({one.heading}, one.width).names(), one.names) << one.heading[0];
    }
    EXPECT_EQ(built({cases[4].heading}).layout.numberedNames, (Texts{"b.2", "b.3"}));
    EXPECT_EQ(
        refusalOf({{"a", "7", "c", "7"}}),
        "cases.csv, line 1: columns 2 and 4 are both named \"7\"; rename one of them, or read "
        "the table without a heading if the row holds a case.");
}

TEST_F(ColumnBuilderTest, AColumnWhoseCellsAreNumbersByHalfIsNumeric)
{
    for (const Row& cells : {Row{"1", "2", "3", "failed", "failed", "n.d."},
                             Row{"failed", "failed", "1", "2", "n.d.", "3"}}) {
        for (const bool keepsCells : {false, true}) {
            options.keepCells = keepsCells;
            const CaseColumn y = column(cells);

            ASSERT_TRUE(y.isNumeric) << cells[0];
            ASSERT_EQ(y.numbers.size(), 6u);
            EXPECT_EQ(std::count_if(y.numbers.begin(), y.numbers.end(),
                                    [](double value) { return std::isnan(value); }),
                      3);
            EXPECT_TRUE(y.texts.empty());
            EXPECT_EQ(y.cells.size(), keepsCells ? 6u : 0u);
            EXPECT_EQ(y.withoutNumber.spellings, (Texts{"failed", "n.d."}));
        }
    }
    options.keepCells = false;
    EXPECT_EQ(column({"007", "1e2", "A-4", "NA", "B-4", "C-4"}).texts,
              (Texts{"007", "1e2", "A-4", "", "B-4", "C-4"}));
}

TEST_F(ColumnBuilderTest, TruthValuesAndNumbersWithAUnitAreNumbers)
{
    EXPECT_EQ(column({"yes", "No", "ja"}).numbers, (Numbers{1.0, 0.0, 1.0}));
    EXPECT_EQ(column({"5 mm", "6 mm", "7 mm"}).numbers, (Numbers{5.0, 6.0, 7.0}));
    EXPECT_EQ(column({"($5.00)", "-$6", "$7"}).numbers, (Numbers{-5.0, -6.0, 7.0}));
    const CaseTable withErrors = built({{"a"}, {u8"5 \u00B1 0.1"}, {"6 +/- 0.2"}});
    EXPECT_EQ(withErrors.columns[0].numbers, (Numbers{5.0, 6.0}));
    EXPECT_EQ(withErrors.columns[0].unit, "");
    EXPECT_EQ(withErrors.layout.unitsInCells, Texts());
    EXPECT_EQ(withErrors.layout.errorsInCells, Texts{"a"});
    EXPECT_EQ(built({{"a"}, {"9%"}, {"0.07"}, {"5%"}, {"8%"}}).layout.unitsInCells,
              Texts{"a (%, also taken for 1 cell without a unit, in line 3)"});
}

TEST_F(ColumnBuilderTest, CellsThatAreNoNumbersAreReportedWithTheirSpellingsAndFirstLine)
{
    EXPECT_EQ(column({"1", "2", "failed"}).withoutNumber.text(),
              "1 cell is no number (\"failed\", in line 4)");
    EXPECT_EQ(column({"1", "failed", "2", "3", "failed"}).withoutNumber.text(),
              "2 cells are no numbers (\"failed\", first in line 3)");
    EXPECT_EQ(column({"1", "2", "3", "4", "a", "b", "c", "d"}).withoutNumber.text(),
              "4 cells are no numbers (\"a\", \"b\", \"c\" and others, first in line 6)");
    options.missing = MissingWords("failed, 999");
    EXPECT_EQ(column({"1", "failed", "Failed", "999.0"}).withoutNumber.text(),
              "1 cell is no number (\"Failed\", in line 4)");
    options.isStrict = true;
    EXPECT_EQ(refusalOf({{"x", "y"}, {"1", "2"}, {"2", "NA"}, {"3", "late"}, {"4", "5"}}),
              "cases.csv, line 4: column \"y\" holds \"late\", which is no number; correct it, "
              "or have such cells count as missing.");
    EXPECT_EQ(built({{"x", "site"}, {"1", "north"}, {"2", "south"}}).cases, 2u);
}

TEST_F(ColumnBuilderTest, ALabelledRowAtTheEndIsACase)
{
    const struct
    {
        Row last;
        std::size_t cases;
    } rows[] = {{{"s4", "", "failed"}, 4},       {{"s4", "", ""}, 4},
                {{"s4", "failed", "failed"}, 4}, {{"total:", "", ""}, 3},
                {{"", "", "checked"}, 3},        {{"measured twice"}, 3}};
    for (const auto& row : rows) {
        const CaseTable table = built(
            {{"id", "x", "y"}, {"s1", "1", "2"}, {"s2", "2", "3"}, {"s3", "3", "4"}, row.last});

        EXPECT_EQ(table.cases, row.cases) << row.last.back();
        EXPECT_EQ(table.layout.linesBelow, 4 - row.cases) << row.last.back();
    }
}

TEST_F(ColumnBuilderTest, FiguresOfTheOthersAmongTheCasesAreKnown)
{
    EXPECT_EQ(built({{"run", "x"}, {"Mean", "2"}, {"SD", "1"}, {"1", "1"}, {"2", "2"}, {"3", "3"}})
                  .layout.casesOfFigures,
              (std::vector<std::size_t>{1, 2}));
    EXPECT_EQ(built({{"id", "x"}, {"s1", "1"}, {"s2", "2"}, {"s3", "3"}, {"Mean", "2"}})
                  .layout.casesOfFigures,
              std::vector<std::size_t>{4});
    const CaseTable table =
        built({{"run", "x"}, {"1", "1"}, {"2", "2"}, {"3", "3"}, {"4", "4"}, {"Mean", "2.5"}});
    EXPECT_EQ(table.layout.casesOfFigures, std::vector<std::size_t>());
    EXPECT_EQ(table.cases, 4u);
}

TEST_F(ColumnBuilderTest, ARowWithoutALabelAtTheEndIsNoCaseWhereAllOthersHaveOne)
{
    std::vector<Row> rows = {{"id", "x"}};
    for (const std::string_view number : {"1", "2", "3", "4", "5"}) {
        rows.push_back({number, number});
    }
    rows.push_back({"", "3"});
    EXPECT_EQ(built(rows).cases, 5u);
    EXPECT_EQ(built(rows).layout.linesBelow, 1u);
    rows.push_back({"7", "7"});
    EXPECT_EQ(built(rows).cases, 7u);
    rows[2][0] = "";
    rows.pop_back();
    EXPECT_EQ(built(rows).cases, 6u);
    rows[2][0] = "2";
    rows.push_back({"", "4"});
    EXPECT_EQ(built(rows).cases, 5u);
    rows.push_back({"", "5"});
    EXPECT_EQ(built(rows).cases, 8u) << "too many to be figures of the others";
}

TEST_F(ColumnBuilderTest, NamesBelowTheCasesBeginAnotherTableIfNumbersFollow)
{
    std::vector<Row> rows = {{"x", "y"}, {"1", "2"}, {"2", "3"},
                             {"3", "4"}, {"4", "5"}, {"spool", "off"}};
    EXPECT_EQ(built(rows).cases, 4u);
    EXPECT_EQ(built(rows).layout.linesBelow, 1u);
    rows.push_back({"5", "6"});
    EXPECT_EQ(refusalOf(rows).rfind("cases.csv, line 6: the row holds names (\"spool\", ...)", 0),
              0u);
}

TEST_F(ColumnBuilderTest, NumbersHaveOneDecimalMark)
{
    EXPECT_TRUE(built({{"a", "b"}, {"1,5", "2"}}).layout.hasDecimalComma);
    EXPECT_EQ(refusalOf({{"a", "b"}, {"1", "0.5"}, {"1,23", "1"}}),
              "cases.csv, line 3: column \"a\" has a number with a decimal comma, but column \"b\" "
              "has one with a decimal point in line 2; write all numbers in one way.");
    EXPECT_EQ(built({{"a", "s"}, {"1,5", "0.5"}, {"2", "x"}, {"2", "x"}}).cases, 3u)
        << "a text column has no decimal marks";
    options.decimalMark = CellValue::Comma;
    EXPECT_EQ(refusalOf({{"a", "b"}, {"1", "2"}, {"2", "2.5"}}),
              "cases.csv, line 3: column \"b\" has a number with a decimal point, where decimal "
              "commas were asked for.");
}
