#include <session/cases/CaseFileLayout.h>

#include <gtest/gtest.h>

TEST(CaseFileLayout, IsDescribedAsFarAsItIsNotPlain)
{
    CaseFileLayout layout;
    EXPECT_EQ(layout.text(), "");

    layout.separator = ';';
    layout.hasDecimalComma = true;
    layout.commentLines = 2;
    layout.hasUnitsRow = true;
    EXPECT_EQ(layout.text(),
              "semicolons, decimal commas; 2 comment lines and a second heading skipped");
    layout.units = {"mm"};
    EXPECT_EQ(layout.text(), "semicolons, decimal commas; 2 comment lines and a units row skipped");
}

TEST(CaseFileLayout, DescribesEveryPart)
{
    CaseFileLayout layout;
    layout.separator = CaseFileLayout::blanks;
    layout.thousandsSeparator = ',';
    layout.encoding = TextEncoding::Utf16Little;
    layout.hasHeading = false;
    layout.titleLines = 1;
    EXPECT_EQ(layout.text(), "columns separated by blanks, thousands separated by \",\", UTF-16 "
                             "text, no heading (the columns are called C1, C2, ...); 1 title line "
                             "skipped");

    layout = CaseFileLayout();
    layout.separator = '|';
    layout.isHeadingComment = true;
    layout.hasRowNames = true;
    layout.units = {"mm"};
    EXPECT_EQ(layout.text(),
              "vertical bars, the heading from a comment line, a first column of row "
              "names without a heading, the units from a comment line");
}

TEST(CaseFileLayout, NamesWhatIsSkippedAndWhatIsOddInTheTable)
{
    CaseFileLayout layout;
    layout.numericNames = {"150", "4"};
    layout.unitsInCells = {"a (mm)", "b (%)", "c (s)", "d (s)", "e (s)", "f (s)", "g (s)"};
    layout.repeatedHeadings = 1;
    layout.linesBelow = 2;
    EXPECT_EQ(layout.text(), "names that are numbers (150 and 4), units in the cells of a (mm), b "
                             "(%), c (s), d (s), e (s) and 2 more; 1 repeated heading and 2 lines "
                             "below the table skipped");

    layout = CaseFileLayout();
    layout.errorsInCells = {"a", "b"};
    EXPECT_EQ(layout.text(), u8"errors after \u00B1 left out in a and b");

    layout = CaseFileLayout();
    layout.doubtfulNumber = "1.234";
    EXPECT_EQ(layout.text(), "\"1.234\" taken for 1.234, not for 1234");
    layout.doubtfulNumber = "1,234";
    EXPECT_EQ(layout.text(), "\"1,234\" taken for 1.234, not for 1234");
}

TEST(CaseFileLayout, HasWordsForItsParts)
{
    EXPECT_EQ(wordFor('\t', separatorWords), "tab");
    EXPECT_EQ(wordFor('|', separatorWords), "bar");
    EXPECT_EQ(wordFor(CaseFileLayout::blanks, separatorWords), "blanks");
    EXPECT_EQ(encodingWord(TextEncoding::Windows1252), "windows-1252");
    EXPECT_EQ(encodingWord(TextEncoding::Utf16Big), "utf-16");
}
