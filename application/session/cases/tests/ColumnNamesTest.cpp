#include <session/cases/ColumnNames.h>

#include <gtest/gtest.h>

using namespace ColumnNames;

TEST(ColumnNames, DoNotDependOnCaseSignsNumbersAndUnits)
{
    EXPECT_TRUE(isNameOf(NameOf::X, " X [mm]"));
    EXPECT_TRUE(isNameOf(NameOf::Time, "Time [s]"));
    EXPECT_TRUE(isNameOf(NameOf::FigureOfFit, "RESI 12"));
    EXPECT_TRUE(isNameOf(NameOf::Blocks, "Block"));
    EXPECT_FALSE(isNameOf(NameOf::Blocks, "Block size"));
}

TEST(ColumnNames, OfNumberingAreWordsOrEndWithOne)
{
    for (const char* name : {"Run", "Run No.", "ID", "#", "Serial Number", "Batch", "StdOrder"}) {
        EXPECT_TRUE(isNameOf(NameOf::Numbering, name)) << name;
    }
    EXPECT_FALSE(isNameOf(NameOf::Numbering, "Reynolds No."));
    EXPECT_FALSE(isNameOf(NameOf::Numbering, ""));
    for (const char* name : {"PartNo", "case_id", "Part Nr. [-]"}) {
        EXPECT_TRUE(endsAsNumbering(name)) << name;
    }
    for (const char* name : {"solid", "Volcano", "no", "x"}) {
        EXPECT_FALSE(endsAsNumbering(name)) << name;
    }
}

TEST(ColumnNames, OfOutputsMayHaveANumber)
{
    EXPECT_TRUE(isNameOf(NameOf::Output, "y2"));
    EXPECT_TRUE(isNameOf(NameOf::Output, "Response 2 Activity"));
    EXPECT_FALSE(isNameOf(NameOf::Output, "response time"));
}

TEST(ColumnNames, OfRepeatsAndFiguresHaveTheNameOfTheOutput)
{
    EXPECT_TRUE(areRepeats("mass 2 [kg]", "Mass"));
    EXPECT_TRUE(areRepeats("OD b", "OD a"));
    EXPECT_FALSE(areRepeats("Masses", "Mass"));
    EXPECT_FALSE(areRepeats("T_h", "T_c")) << "subscripts";
    EXPECT_TRUE(isFigureOf("SD Mass [kg]", "Mass"));
    EXPECT_TRUE(isFigureOf("y upper", "y"));
    EXPECT_FALSE(isFigureOf("Tm_upper", "Tm")) << "a limit has a longer name";
    EXPECT_FALSE(isFigureOf("Mass ratio", "Mass"));
}
