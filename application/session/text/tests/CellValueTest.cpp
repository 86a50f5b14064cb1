#include <session/text/CellValue.h>

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <string>

namespace {
constexpr double infinity = std::numeric_limits<double>::infinity();

double numberOf(const std::string& text, bool decimalComma = false)
{
    const CellValue value = CellValue::read(text, decimalComma);
    EXPECT_EQ(value.kind, CellValue::Number) << '"' << text << '"';
    return value.number;
}

CellValue::Kind kindOf(const std::string& text, bool decimalComma = false)
{
    return CellValue::read(text, decimalComma).kind;
}
} // namespace

TEST(CellValue, MissingCellsAreTheUsualWordsInAnyCase)
{
    for (const char* text :
         {"",  "  ", "NA",  "na", "N/A", "n/a",  "NaN",  "nan",  "NAN",  "null",     "NULL",
          "?", "-",  " - ", "--", ".",   "n.a.", "N.A.", "none", "-nan", "nan(ind)", u8"\u2013"}) {
        EXPECT_EQ(kindOf(text), CellValue::Missing) << '"' << text << '"';
    }
}

TEST(CellValue, ErrorsOfSpreadsheetsAreMissing)
{
    for (const char* text :
         {"#N/A", "#DIV/0!", "#VALUE!", "#NUM!", "#REF!", "#NAME?", "#NULL!", "#n/a"}) {
        EXPECT_EQ(kindOf(text), CellValue::Missing) << '"' << text << '"';
    }
}

TEST(CellValue, WordsThatOnlyLookLikeMissingOnesAreText)
{
    for (const char* text : {"na.", "nones", "---", "..", "??", "#1", "nana", "N / A", "nil"}) {
        EXPECT_EQ(kindOf(text), CellValue::Text) << '"' << text << '"';
    }
}

TEST(CellValue, NumbersAreReadInFullPrecision)
{
    EXPECT_EQ(numberOf("5"), 5.0);
    EXPECT_EQ(numberOf("-0.1"), -0.1);
    EXPECT_EQ(numberOf("1e3"), 1000.0);
    EXPECT_EQ(numberOf("2.E-3"), 0.002);
    EXPECT_EQ(numberOf(".5"), 0.5);
    EXPECT_EQ(numberOf("5."), 5.0);
    EXPECT_EQ(numberOf("0.1000000000000000055511151231257827"), 0.1);
    EXPECT_EQ(numberOf("007"), 7.0);
    EXPECT_EQ(numberOf("+5"), 5.0);
    EXPECT_EQ(numberOf("+.5"), 0.5);
    EXPECT_EQ(kindOf("+-5"), CellValue::Text);
    EXPECT_EQ(kindOf("++5"), CellValue::Text);
    EXPECT_EQ(kindOf("+"), CellValue::Text);
    EXPECT_EQ(numberOf("  5\t"), 5.0);
}

TEST(CellValue, NumbersOfOtherProgramsAreRead)
{
    EXPECT_EQ(numberOf(u8"\u22125"), -5.0);
    EXPECT_EQ(numberOf(u8"\u22121,5e\u22123", true), -1.5e-3);
    EXPECT_EQ(numberOf("1.5D+02"), 150.0);
    EXPECT_EQ(numberOf("-1.5+102"), -1.5e102);
    EXPECT_EQ(numberOf("1.5-003"), 1.5e-3);
    EXPECT_EQ(numberOf("2d-1"), 0.2);
    EXPECT_EQ(numberOf(u8"\u00A05\u00A0"), 5.0);
    EXPECT_EQ(numberOf(u8"\uFEFF5"), 5.0);
}

TEST(CellValue, ThousandsAreSeparatedWhereThatIsAllowed)
{
    EXPECT_EQ(CellValue::read("1.234,5", true, '.').number, 1234.5);
    EXPECT_EQ(CellValue::read("1.234", true, '.').number, 1234.0);
    EXPECT_EQ(CellValue::read("-1,234,567.5", false, ',').number, -1234567.5);
    EXPECT_EQ(CellValue::read(u8"1\u202F234,5", true, ' ').number, 1234.5);
    EXPECT_EQ(CellValue::read("1'234.5", false, '\'').number, 1234.5);
    EXPECT_EQ(CellValue::read("1,23", false, ',').kind, CellValue::Text);
    EXPECT_EQ(CellValue::read("1.5", true, '.').mark, CellValue::Point);
}

TEST(CellValue, FindsSeparatorsOfThousandsThatCanMeanNothingElse)
{
    const auto found = [](const char* text) {
        CellValue::DecimalMark mark = CellValue::NoMark;
        return CellValue::thousandsSeparator(text, mark);
    };

    EXPECT_EQ(found("1,234.5"), ',');
    EXPECT_EQ(found("1,234,567"), ',');
    EXPECT_EQ(found("1.234,5"), '.');
    EXPECT_EQ(found("1 234"), ' ');
    EXPECT_EQ(found("1'234"), '\'');
    for (const char* text : {"1,234", "1.234", "1,23,456", "1234,567.8", "a 123", "12", ""}) {
        EXPECT_EQ(found(text), '\0') << text;
    }
}

TEST(CellValue, KnowsErrorsOfSpreadsheetsByTheirBeginning)
{
    EXPECT_TRUE(CellValue::beginsWithError("#N/A,1"));
    EXPECT_TRUE(CellValue::beginsWithError("#div/0!"));
    EXPECT_FALSE(CellValue::beginsWithError("# comment"));
}

TEST(CellValue, WhatIsNoNumberAsAWholeIsText)
{
    for (const char* text : {"abc", "5 mm", "5x", "0x10", "1e", "1e1.5", "1,5", "1_000", "1 000",
                             "2026-11-21", "5-", "e5", "5d", "d5", u8"5\u2212"}) {
        EXPECT_EQ(kindOf(text), CellValue::Text) << '"' << text << '"';
    }
    for (const char* text : {u8"12 µm", u8"5\u2212",
                             "\xF6"
                             "1",
                             "1\xFF", u8"1°",
                             "1\x80"
                             "2D3"}) {
        EXPECT_EQ(kindOf(text), CellValue::Text) << text;
    }
}

TEST(CellValue, NumbersTooLargeForADoubleAreInfiniteAndTooSmallOnesZero)
{
    EXPECT_EQ(numberOf("1e999"), infinity);
    EXPECT_EQ(numberOf("-1e999"), -infinity);
    EXPECT_EQ(numberOf("+1e99999999999999999999"), infinity);
    EXPECT_EQ(numberOf("0.001e400"), infinity);
    EXPECT_EQ(numberOf('1' + std::string(400, '0')), infinity);
    EXPECT_EQ(numberOf("1e-999"), 0.0);
    EXPECT_EQ(numberOf("-123e-999"), 0.0);
    EXPECT_EQ(numberOf("1e-99999999999999999999"), 0.0);
    EXPECT_EQ(numberOf("0." + std::string(400, '0') + "1"), 0.0);
    EXPECT_EQ(numberOf("5e-324"), std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(numberOf("inf"), infinity);
    EXPECT_EQ(numberOf("-Infinity"), -infinity);
}

TEST(CellValue, DecimalCommaIsReadOnlyWhereItIsAllowed)
{
    EXPECT_EQ(numberOf("1,5", true), 1.5);
    EXPECT_EQ(numberOf("-0,25e1", true), -2.5);
    EXPECT_EQ(numberOf("+,5", true), 0.5);
    EXPECT_EQ(kindOf("1,5", false), CellValue::Text);
    for (const char* text : {"1.234,5", "1,234.5", "1,234,567", ",", "1,,5", "a,5"}) {
        EXPECT_EQ(kindOf(text, true), CellValue::Text) << '"' << text << '"';
    }
    EXPECT_EQ(CellValue::read("1,5", true).mark, CellValue::Comma);
    EXPECT_EQ(CellValue::read("1.5", true).mark, CellValue::Point);
    EXPECT_EQ(CellValue::read("15", true).mark, CellValue::NoMark);
}

TEST(CellValue, TheLocaleOfTheProcessDoesNotMatter)
{
    const std::string before = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "de_DE.UTF-8");

    EXPECT_EQ(numberOf("1.5"), 1.5);

    std::setlocale(LC_ALL, before.c_str());
}
