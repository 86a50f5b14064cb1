#include <session/cases/LayoutRecognition.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace {
CaseFileLayout layoutOf(std::string_view sample, const ReadingChoices& choices = {})
{
    return recogniseLayout(sample, true, choices);
}

char separatorOf(std::string_view sample)
{
    return layoutOf(sample).separator;
}

/** What stands before the table, what its first record is, how many columns there are. */
std::string partsOf(std::string_view sample, const ReadingChoices& choices = {})
{
    const CaseFileLayout layout = layoutOf(sample, choices);
    std::string text = "line " + std::to_string(layout.tableLine) + ", " +
                       std::to_string(layout.columns) + " columns";
    text += layout.hasHeading ? "" : ", no heading";
    text += layout.isHeadingComment ? ", heading in comment" : "";
    text += layout.hasUnitsRow ? ", units row" : "";
    text += layout.hasRowNames ? ", row names" : "";
    text += layout.titleLines > 0 ? ", " + std::to_string(layout.titleLines) + " titles" : "";
    return text;
}

/** The layout of a text of which only `sampleSize` bytes are looked at together. */
CaseFileLayout layoutOfLong(std::string_view text, const ReadingChoices& choices = {})
{
    constexpr std::size_t sampleSize = 100;
    const auto read = [rest = text](char* buffer, std::size_t capacity) mutable {
        const std::size_t count = rest.copy(buffer, std::min<std::size_t>(capacity, 7));
        rest.remove_prefix(count);
        return count;
    };
    return recogniseLayout(read, sampleSize, choices);
}

std::string repeated(const std::string& line, int count)
{
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += line;
    }
    return text;
}
} // namespace

TEST(LayoutRecognition, SeparatorsAreCommasSemicolonsTabsBarsAndBlanks)
{
    EXPECT_EQ(separatorOf("a,b\n1,2\n"), ',');
    EXPECT_EQ(separatorOf("a;b\n1;2\n"), ';');
    EXPECT_EQ(separatorOf("a\tb\n1\t2\n"), '\t');
    EXPECT_EQ(separatorOf("a|b\n1|2\n"), '|');
    EXPECT_EQ(separatorOf(" a  b\n 1  2\n"), ' ');
    EXPECT_EQ(separatorOf("one\n1\n"), ',');
}

TEST(LayoutRecognition, TheSeparatorIsNotInsideANameOrANumber)
{
    EXPECT_EQ(separatorOf("Temp; inner,Stress\n1,2\n3,4\n"), ',');
    EXPECT_EQ(separatorOf("\"a;b;c\",d\n1,2\n"), ',');
    EXPECT_EQ(separatorOf("p, q\tr\n1\t2\n"), '\t');
    EXPECT_EQ(separatorOf("x;y\n1,5;2,5\n3,5;4\n"), ';');
    EXPECT_EQ(separatorOf("1,5;2,5\n3,5;4,5\n"), ';');
    EXPECT_EQ(separatorOf("x y\n1,5 2,5\n3,5 4,5\n"), ' ');
    EXPECT_EQ(separatorOf("x, y, z\n1, 2, 3\n4, 5, 6\n"), ',');
    EXPECT_EQ(separatorOf("duration,y\n7, .1\n9, .2\n"), ',');
    EXPECT_EQ(separatorOf("date,y\n2020-01-01 10:00,1.5\n2020-01-01 11:00,2.5\n"), ',');
    EXPECT_EQ(separatorOf("x;y\n1 234,5;2 345,6\n3 456,7;1 000,1\n"), ';');
    EXPECT_EQ(separatorOf("x,y\n5 mm,3 mm\n6 mm,4 mm\n"), ',');
}

TEST(LayoutRecognition, TheSeparatorIsThatOfMostRecords)
{
    EXPECT_EQ(separatorOf("a,b,c\n1,2,3\n4,5\n6,7,8\n"), ',');
    EXPECT_EQ(separatorOf("a,b;c\n1;2\n3;4\n"), ';');
    EXPECT_EQ(recogniseLayout("a,b;c\n1,2;3\n4,5\n6,", false, {}).separator, ',');
    EXPECT_EQ(separatorOf("a\t\tb\n1\t\t2\n"), ' ');
    EXPECT_EQ(separatorOf("a\tb\tc\n1\t\t2\n"), '\t');
    EXPECT_EQ(separatorOf("sep=;\na;b,c\n1;2\n"), ';');
    EXPECT_EQ(partsOf("\xEF\xBB\xBF\"sep=,\"\r\na,b\r\n1,2\r\n"), "line 2, 2 columns");
}

TEST(LayoutRecognition, TitlesStandAboveTheHeading)
{
    EXPECT_EQ(partsOf("Rig 7\nx,y\n1,2\n3,4\n"), "line 2, 2 columns, 1 titles");
    EXPECT_EQ(partsOf("A text\n\"with a quote\nData: y  x\n 1 2\n 3 4\n 5 6\n 7 8\n"),
              "line 3, 2 columns, 1 titles");
    EXPECT_EQ(partsOf("Operator,Smith\nRun,7\n\nx,y\n1,2\n3,4\n5,6\n"),
              "line 3, 2 columns, 2 titles");
    EXPECT_EQ(partsOf("Device;A;12;3;4\nSerial;7;8;9;1\nx;y\n1;2\n3;4\n5;6\n"),
              "line 3, 2 columns, 2 titles");
    EXPECT_EQ(partsOf("a;b;c\n" + repeated("1;2;3\n", 6) + "x;y\n" + repeated("1;2\n", 8)),
              "line 1, 2 columns");
}

TEST(LayoutRecognition, BlanksInTitlesDoNotSplitATableOfTabs)
{
    const std::string titles = "Writer version\t2\nOperator\tA. Smith\t\nSamples\t3\t3\t\n\t\n";
    EXPECT_EQ(partsOf(titles + "x\ty\tz\n1\t2\t3\n4\t5\t6\n7\t8\t9\n5\t8\t9\n"),
              "line 5, 3 columns, 3 titles");
    EXPECT_EQ(separatorOf("x y z\n1\t2 3\n4 5\t6\n7 8 9\n"), ' ');
}

TEST(LayoutRecognition, UnitsStandBelowTheHeading)
{
    EXPECT_EQ(partsOf("p,y\nMPa,mm\n1,2\n3,4\n"), "line 1, 2 columns, units row");
    EXPECT_EQ(layoutOf("p,y\n[MPa],-\n1,2\n3,4\n").units, (std::vector<std::string>{"MPa", ""}));
}

TEST(LayoutRecognition, AFirstRowOfNumbersIsNoHeading)
{
    EXPECT_EQ(partsOf("1,2\n3,4\n"), "line 1, 2 columns, no heading");
    EXPECT_EQ(partsOf("x,2010\n3,4\n"), "line 1, 2 columns");
    EXPECT_EQ(partsOf("1,2\n\nfailed,late\n3,4\n5,6\n"), "line 1, 2 columns, no heading");
}

TEST(LayoutRecognition, ACommentLineAboveTheTableCanBeTheHeading)
{
    EXPECT_EQ(partsOf("# run 7\n# x, y\n1,2\n3,4\n"), "line 2, 2 columns, heading in comment");
    EXPECT_EQ(layoutOf("# x, y\n1,2\n3,4\n").tableBegin, 1u);
    EXPECT_EQ(layoutOf("%RH, y\n1,2\n3,4\n").tableBegin, 0u);
    EXPECT_EQ(partsOf("# a sentence\n1\n2\n"), "line 1, 1 columns, no heading");
    EXPECT_EQ(partsOf("# x, y\np,q\n1,2\n3,4\n"), "line 1, 2 columns");
    EXPECT_EQ(layoutOf("# x y\n# mm MPa\n1 2\n3 4\n").units,
              (std::vector<std::string>{"mm", "MPa"}));
}

TEST(LayoutRecognition, MarksInMostRowsAreNoComments)
{
    EXPECT_TRUE(layoutOf("id,x\n#1,2\n#2,3\n#3,4\n").commentMarks.empty());
    EXPECT_FALSE(layoutOf("id,x\n1,2\n#2,3\n3,4\n").commentMarks.empty());
}

TEST(LayoutRecognition, TheUserDecides)
{
    ReadingChoices choices;
    choices.heading = true;
    EXPECT_EQ(partsOf("2010,2011\n3,4\n", choices), "line 1, 2 columns");
    choices.heading = false;
    EXPECT_EQ(partsOf("north,1\nsouth,2\n", choices), "line 1, 2 columns, no heading");
    EXPECT_EQ(partsOf("some text\n1,2\n3,4\n", choices), "line 2, 2 columns, no heading, 1 titles");
    choices.heading.reset();
    choices.unitsRow = false;
    EXPECT_EQ(partsOf("p,y\nMPa,mm\n1,2\n3,4\n", choices), "line 1, 2 columns");
    choices.unitsRow = true;
    EXPECT_EQ(partsOf("p,y\nveh,USD\n1,2\n3,4\n", choices), "line 1, 2 columns, units row");
    choices.unitsRow.reset();
    choices.skippedLines = 2;
    EXPECT_EQ(partsOf("a,b\n1,2\nx,y\n3,4\n", choices), "line 3, 2 columns, 2 titles");
    choices.skippedLines.reset();
    choices.commentMark = "!";
    EXPECT_EQ(partsOf("! a\nx,y\n3,4\n", choices), "line 1, 2 columns");
    EXPECT_EQ(layoutOf("x,y\n3,4\n", choices).commentMarks, std::vector<std::string>{"!"});
}

TEST(LayoutRecognition, TitlesCanHoldQuotesThatAreNeverClosed)
{
    EXPECT_EQ(partsOf("\"5 inch pipe\n# warm\n\"6 inch pipe\nx,y\n1,2\n3,4\n5,6\n7,8\n9,10\n"
                      "11,12\n13,14\n15,16\n17,18\n19,20\n"),
              "line 4, 2 columns");

    std::string sample;
    for (int i = 0; i < 20000; ++i) {
        sample += "\"x 5,1,2\n";
    }

    EXPECT_EQ(separatorOf(sample), ',');
}

TEST(LayoutRecognition, AnOpenQuoteDoesNotChangeTheSeparator)
{
    EXPECT_EQ(separatorOf("Angle;Speed;Lift\n5;10;1,2\n5;20;\"2,4\n10;10;1,9\n"), ';');
    EXPECT_EQ(separatorOf("a;b\n1,5;2,5\n1,6;2,6\n1,7;\"2,7\n1,8;2,8\n1,9;2,9\n"), ';');
}

TEST(LayoutRecognition, SkippedLinesCanBeLongerThanTheSample)
{
    const std::string rows = repeated("1;2\n", 100);
    const std::string titles = repeated("Rig 7, warm\n", 99);
    ReadingChoices choices;
    choices.skippedLines = 100;

    for (const std::string first : {"Rig 7, warm\n", "sep=;\nRig 7, warm\n"}) {
        const std::string above = first + titles;
        const CaseFileLayout layout = layoutOfLong(above + "x;y\n" + rows, choices);

        EXPECT_EQ(layout.separator, ';') << first;
        EXPECT_EQ(layout.tableBegin, above.size()) << first;
        EXPECT_EQ(layout.tableLine,
                  1 + static_cast<std::size_t>(std::count(above.begin(), above.end(), '\n')))
            << first;
        EXPECT_EQ(layout.titleLines, 100u) << first;
        EXPECT_TRUE(layout.hasHeading) << first;
    }
}

TEST(LayoutRecognition, CommentsCanBeLongerThanTheSample)
{
    const std::string comments = repeated("# Rig 7, warm\n", 100);
    const std::string rows = repeated("1;2\n", 100);

    EXPECT_EQ(layoutOfLong(comments + "x;y\n" + rows).separator, ';');

    const CaseFileLayout layout = layoutOfLong(comments + "# x;y\n" + rows);
    EXPECT_EQ(layout.separator, ';');
    EXPECT_TRUE(layout.isHeadingComment);
    EXPECT_EQ(layout.tableBegin, comments.size() + 1);
    EXPECT_EQ(layout.tableLine, 101u);
    EXPECT_EQ(layout.commentLines, 100u);
}

TEST(LayoutRecognition, ATextThatIsLongerThanTheSampleIsRecognisedFromItsBeginning)
{
    EXPECT_EQ(layoutOfLong("a,b;c\n" + repeated("1,5;2\n", 50)).separator, ';');
    EXPECT_EQ(layoutOfLong("a,b\n1,2\n3,4\n").columns, 2u);
}
