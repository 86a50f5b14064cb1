#include "Program.h"

#include <plot/drawing/DrawingApplication.h>

#include "../../../analyzer/surrogatemodel/tests/CapturedErrors.h"
#include "../../../platform/mirel_fitting/tests/SanitizedRuns.h"
#include "../../session/tests/TemporaryFolder.h"

#include <mirel_property/tests/TextParts.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace {
using Strings = std::vector<std::string>;

/** The cells of twelve cases: x and z on a grid, y nearly a plane over it. */
std::vector<Strings> cases()
{
    const char* const noise[] = {"0", "5", "2", "8", "3", "1", "7", "4", "9", "6", "2", "5"};
    std::vector<Strings> rows;
    for (int i = 0; i < 12; ++i) {
        const int x = i % 4;
        const int z = i / 4;
        rows.push_back({std::to_string(x) + ".5", std::to_string(z) + ".25",
                        std::to_string(10 + 2 * x - z) + '.' + noise[i]});
    }
    return rows;
}

std::string replaced(std::string text, const std::string& what, const std::string& by)
{
    for (std::size_t at = text.find(what); at != std::string::npos;
         at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
    return text;
}

std::string line(const Strings& cells, const std::string& separator)
{
    std::string text;
    for (const std::string& cell : cells) {
        text += (&cell == &cells.front() ? "" : separator) + cell;
    }
    return text;
}

/** The cases alone. @param change is given each row and its number. */
std::string rows(const std::string& separator = ",", const std::string& decimal = ".",
                 const std::function<void(Strings&, int)>& change = {})
{
    std::string text;
    int number = 0;
    for (Strings& row : cases()) {
        for (std::string& cell : row) {
            cell = replaced(cell, ".", decimal);
        }
        if (change) {
            change(row, number);
        }
        ++number;
        text += line(row, separator) + '\n';
    }
    return text;
}

std::string table(const std::string& separator = ",", const std::string& decimal = ".",
                  const std::function<void(Strings&, int)>& change = {})
{
    return line({"x", "z", "y"}, separator) + '\n' + rows(separator, decimal, change);
}

/** The plain table with another text in the cells of y in some rows. */
std::string tableWith(const std::string& cell, int every = 5)
{
    return table(",", ".",
                 [&](Strings& row, int number) { row[2] = number % every == 2 ? cell : row[2]; });
}

std::string quotedRows()
{
    const std::string text = replaced(rows("\",\"", ","), "\n", "\"\n\"");
    return '"' + text.substr(0, text.size() - 1);
}

std::string markdownRows()
{
    std::string text = replaced(rows(" | "), "\n", " |\n| ");
    return "| " + text.substr(0, text.size() - 2);
}

/** Each case with a cell before the others. */
std::string rowsAfter(const std::function<std::string(int)>& first,
                      const std::string& separator = ",")
{
    return rows(separator, ".",
                [&](Strings& row, int number) { row.insert(row.begin(), first(number)); });
}

/** Row numbers, a text and a number. */
std::string rowsOfTexts()
{
    std::string text;
    for (const Strings& row : cases()) {
        text += std::to_string(std::count(text.begin(), text.end(), '\n')) + ",A," + row[2] + '\n';
    }
    return text;
}

std::string utf16(const std::string& text, bool isBig)
{
    std::string bytes;
    for (const char character : text) {
        bytes += isBig ? std::string{'\0', character} : std::string{character, '\0'};
    }
    return bytes;
}

/** 12 bytes and more each: longer than the 262 144 bytes that a layout is recognised from. */
constexpr std::size_t manyLines = 22000;

std::string manyOf(const std::string& line)
{
    std::string text;
    for (std::size_t i = 0; i < manyLines; ++i) {
        text += line;
    }
    return text;
}

/** The exit code of commands that make a model. */
enum Outcome
{
    Done = 0,
    NoModel = 1,  ///< the table is read, and no model can be made of it
    NoChoice = 2, ///< the table is read, and what was chosen does not fit it
    NoTable = 3
};

struct OddTable
{
    const char* name;
    std::string content;
    /** What the command says: how the table was read, or why nothing was done. */
    std::string sentence;
    Outcome outcome = Done;
    std::string output = "y";
    Strings options = {};
};

const std::string sentenceOfShape = "; correct it, or begin it with # to leave it out.";

const std::vector<OddTable>& oddTables()
{
    static const std::vector<OddTable> tables = {
        {"Plain", table(), ""},
        {"Semicolons", table(";"), "Read as: semicolons\n"},
        {"SemicolonsAndDecimalCommas", table(";", ","), "Read as: semicolons, decimal commas\n"},
        {"Tabs", table("\t"), "Read as: tabs\n"},
        {"TabsAndDecimalCommas", table("\t", ","), "Read as: tabs, decimal commas\n"},
        {"RepeatedTabs", table("\t\t"), "Read as: columns separated by blanks\n"},
        {"VerticalBars", table("|"), "Read as: vertical bars\n"},
        {"Blanks", table(" "), "Read as: columns separated by blanks\n"},
        {"AlignedColumns", "   x     z      y\n" + replaced("  " + rows("   "), "\n", "\n  "),
         "Read as: columns separated by blanks\n"},
        {"BlanksAndDecimalCommas", table(" ", ","),
         "Read as: columns separated by blanks, decimal commas\n"},
        {"BlanksAroundCells", table(" , "), ""},
        {"SeparatorDeclared", "sep=;\n" + table(";"), "Read as: semicolons\n"},
        {"SeparatorDeclaredInQuotes", "\"sep=,\"\n" + table(), ""},
        {"LinesEndWithCrLf", replaced(table(), "\n", "\r\n"), ""},
        {"LinesEndWithCr", replaced(table(), "\n", "\r"), ""},
        {"LastLineWithoutAnEnd", table() + "1.5,1.5,12", ""},
        {"ByteOrderMark", "\xEF\xBB\xBF" + table(), ""},
        {"ByteOrderMarkInTheMiddle", table() + "\xEF\xBB\xBF" + rows(), ""},
        {"Latin1", replaced(table(), "x,", "\xD6l,"), "Read as: Windows-1252 text\n"},
        {"Windows1252InTheLastRow",
         replaced(table(), "\n", ",s\n") + "1.5,1.5,12,K\xF6ln \x96 S\xFC"
                                           "d\n",
         "Read as: Windows-1252 text\n"},
        {"Utf16", "\xFF\xFE" + utf16(table(), false), "Read as: UTF-16 text\n"},
        {"Utf16BigEndian", "\xFE\xFF" + utf16(table(), true), "Read as: UTF-16 text\n"},
        {"Utf16WithoutAMark", utf16(table(), false), "Read as: UTF-16 text\n"},
        {"CommentsAbove", "# rig 7\n# warm\n" + table(), "Read as: 2 comment lines skipped\n"},
        {"CommentsBetween", table() + "# pause\n" + rows(), "Read as: 1 comment line skipped\n"},
        {"CommentsWithSlashes", "// rig 7\n" + table(), "Read as: 1 comment line skipped\n"},
        {"CommentsWithPercentSigns", "% rig 7\n" + table(), "Read as: 1 comment line skipped\n"},
        {"CaseCommentedOut", table() + "#1.5,2.5,-99\n", "Read as: 1 comment line skipped\n"},
        {"ManyCommentsAbove", manyOf("# rig 7, warm\n") + table(";"),
         "Read as: semicolons; 22000 comment lines skipped\n"},
        {"LongCells", "note,x,z,y\n" + rowsAfter([](int) { return std::string(manyLines, 'n'); }),
         ""},
        {"HeadingInAComment", "# " + table(), "Read as: the heading from a comment line\n"},
        {"HeadingInACommentOfBlanks", "# rig 7\n# " + table(" "),
         "Read as: columns separated by blanks, the heading from a comment line; 1 comment line "
         "skipped\n"},
        {"PercentSignInAName", "%RH,x,y\n" + rows(), "Read as: the heading from a comment line\n"},
        {"TitleLine", "Stress of rig 7\n" + table(), "Read as: 1 title line skipped\n"},
        {"TitlesAndAnEmptyLine", "Rig 7\nOperator: Smith\n\n" + table(),
         "Read as: 2 title lines skipped\n"},
        {"TitlesPaddedWithSeparators", "Rig 7,,\n,,\n" + table(),
         "Read as: 1 title line skipped\n"},
        {"TitlesWithValues", "Operator,Smith,\nRun,7,\n\n" + table(),
         "Read as: 2 title lines skipped\n"},
        {"GroupsAboveTheHeading", "Inputs,,Output\n" + table(), "Read as: 1 title line skipped\n"},
        {"UnitsRow", "x,z,y\nmm,kN,MPa\n" + rows(), "Read as: a units row skipped\n"},
        {"UnitsRowInBrackets", "x;z;y\n[mm];[-];[MPa]\n" + rows(";", ","),
         "Read as: semicolons, decimal commas; a units row skipped\n"},
        {"NoHeading", rows(), "Read as: no heading (the columns are called C1, C2, ...)\n", Done,
         "C3"},
        {"NoHeadingAndBlanks", rows("  "),
         "Read as: columns separated by blanks, no heading (the columns are called C1, C2, ...)\n",
         Done, "C3"},
        {"NumbersAsNames", "2010,2011,2012\n" + rows(), "", Done, "2012", {"--heading"}},
        {"EmptyLines", "\n\n" + replaced(table(), "\n", "\n\n"), ""},
        {"SeparatorAtTheEndOfLines", replaced(table(), "\n", ",\n"), ""},
        {"SeparatorAtTheEndOfRows", "x,z,y\n" + replaced(rows(), "\n", ",\n"), ""},
        {"EmptyColumnsAtTheEnd", replaced(table(), "\n", ",,,\n"), ""},
        {"EmptyRowsAtTheEnd", table() + ",,\n,,\n", ""},
        {"EmptyRowInTheMiddle", table() + ",,\n" + rows(), ""},
        {"RowNamesThatCount",
         "\"x\" \"z\" \"y\"\n" +
             rowsAfter([](int i) { return '"' + std::to_string(i + 1) + '"'; }, " "),
         "Read as: columns separated by blanks, a first column of row names without a heading\n"},
        {"RowNamesOfText",
         table().substr(0, 6) + rowsAfter([](int i) { return "case " + std::to_string(i); }),
         "Read as: a first column of row names without a heading\n"},
        {"IndexWithoutAName", ",x,z,y\n" + rowsAfter([](int i) { return std::to_string(i); }), ""},
        {"QuotedCells",
         '"' + replaced(replaced(table() + "1.5,1.5,12", ",", "\",\""), "\n", "\"\n\"") + '"', ""},
        {"LineBreakInAHeading", replaced(table(), "x,", "\"x\n(mm)\","), ""},
        {"LineBreakInACell", "note,x,z,y\n" + rowsAfter([](int) { return "\"two\nlines\""; }), ""},
        {"SeparatorsInNames", replaced(table(), "x,", "\"x, inner; left\","), ""},
        {"DatesAsNumbers",
         "day,x,z,y\n" + rowsAfter([](int i) { return std::to_string(19580310 + 3 * i % 17); }),
         "\"day\" (dates written as numbers, from 19580310 to 19580326)"},
        {"FailedCells", tableWith("failed"),
         ": 2 cells are no numbers (\"failed\", first in line 4)"},
        {"FailedCellsNamedMissing", tableWith("failed"), "", Done, "y", {"--missing", "failed"}},
        {"NumbersThatMeanMissing", tableWith("-999"), "", Done, "y", {"--missing", "-999.0"}},
        {"MissingCells", tableWith("n.a."), ""},
        {"ErrorsOfSpreadsheets", tableWith("#DIV/0!"), ""},
        {"ErrorInTheFirstCell", table() + "#N/A,1.5,12\n", ""},
        {"ThousandsWithCommas", replaced(table(";"), "\n2.5;", "\n1,002.5;"),
         "Read as: semicolons, thousands separated by \",\"\n"},
        {"ThousandsWithPoints", replaced(table(";", ","), "\n2,5;", "\n1.002,5;"),
         "Read as: semicolons, decimal commas, thousands separated by \".\"\n"},
        {"ThousandsWithBlanks", replaced(table(";", ","), "\n2,5;", "\n1 002,5;"),
         "Read as: semicolons, decimal commas, thousands separated by blanks\n"},
        {"ThousandsWithPointsAndNoDecimals",
         replaced(replaced(replaced(table(";"), ".", ""), "\n25;", "\n9.604.308;"), "\n35;",
                  "\n1.853;"),
         "Read as: semicolons, thousands separated by \".\"\n"},
        {"MinusSignOfTypesetting",
         tableWith("\xE2\x88\x92"
                   "3.5"),
         ""},
        {"ExponentsOfFortran", replaced(table(), ".5,", ".5D+00,"), ""},
        {"InfiniteNumbers", tableWith("inf"), ""},
        {"PercentSigns", "s,x,z,y\n" + rowsAfter([](int i) { return std::to_string(i * i) + '%'; }),
         "Read as: units in the cells of s (%)\n"},
        {"UnitsInCells",
         "s,x,z,y\n" + rowsAfter([](int i) { return std::to_string(i * i) + " mm"; }),
         "Read as: units in the cells of s (mm)\n"},
        {"UnitsInAllCells", replaced(replaced(table(";"), ";", " mm;"), "x mm;z mm", "x;z"),
         "Read as: semicolons, units in the cells of x (mm) and z (mm)\n"},
        {"NumbersAmongPercentSigns", "s,x,z,y\n" + rowsAfter([](int i) {
                                         return std::to_string(i * i) + (i % 5 == 1 ? "" : "%");
                                     }),
         "Read as: units in the cells of s (%, also taken for 3 cells without a unit, first in "
         "line "
         "3)\n"},
        {"Currencies", "s,x,z,y\n" + rowsAfter([](int i) { return "$" + std::to_string(i * i); }),
         "Read as: units in the cells of s ($)\n"},
        {"CurrenciesWithThousands", "s,x,z,y\n" + rowsAfter([](int i) {
                                        return "\"$1," + std::to_string(200 + i * i) + ".50\"";
                                    }),
         "Read as: thousands separated by \",\", units in the cells of s ($)\n"},
        {"CodesOfDigitAndLetter",
         "s,x,z,y\n" + rowsAfter([](int i) { return std::to_string(i * i) + 'A'; }), ""},
        {"QuotedDecimalCommas", "x,z,y\n" + quotedRows(), "Read as: decimal commas\n"},
        {"QuotedThousands",
         "s,x,z,y\n" + rowsAfter([](int i) { return "\"1," + std::to_string(200 + i * i) + '"'; }),
         "Read as: thousands separated by \",\"\n"},
        {"CommentsOutnumberRows", replaced(table(), "\n", "\n# checked\n# and approved\n"),
         "Read as: 26 comment lines skipped\n"},
        {"RepeatedHeading", table() + table(), "Read as: 1 repeated heading skipped\n"},
        {"RepeatedHeadingWithUnits", "x,z,y\nmm,kN,MPa\n" + rows() + "x,z,y\nmm,kN,MPa\n" + rows(),
         "Read as: a units row and 1 repeated heading skipped\n"},
        {"LineBelowTheTable", table() + "Total: 12 runs\n",
         "Read as: 1 line below the table skipped\n"},
        {"LinesBelowTheTable", table() + ",,\nTotal,,\nend of data,,\n,,\n",
         "Read as: 2 lines below the table skipped\n"},
        {"SumsBelowTheTable", table() + "Total:,30,200\nmean,2.5,16\n",
         "Read as: 2 lines below the table skipped\n"},
        {"FailedLastCase",
         "id,x,z,y\n" + rowsAfter([](int i) { return 's' + std::to_string(i); }) + "s12,,,failed\n",
         ": 1 cell is no number (\"failed\", in line 14)"},
        {"TotalBelowLabelledCases",
         "id,x,z,y\n" + rowsAfter([](int i) { return 's' + std::to_string(i); }) + "Total,,,\n",
         "Read as: 1 line below the table skipped\n"},
        {"RemarkBetweenTheCases", table() + "pause,,\n" + rows(),
         ": 1 cell is no number (\"pause\", in line 14)"},
        {"RemarksBelowTheTable", table() + "\nNotes\n1) measured twice\n",
         "Read as: 2 lines below the table skipped\n"},
        {"SecondHeading", "x,z,y\nset value,set value,measured\n" + rows(),
         "Read as: a second heading skipped\n"},
        {"RuleBelowTheHeading", "   x     z      y\n--------------\n" + rows("   "),
         "Read as: columns separated by blanks; 1 comment line skipped\n"},
        {"TableOfMarkdown", "| x | z | y |\n|---|--:|---|\n" + markdownRows(),
         "Read as: vertical bars; 1 comment line skipped\n"},
        {"EntriesAboveTheHeading",
         "Instrument:\tUTM\nSerial No:\t12345\nOperator:\tSmith\n\n[Data]\nx\tz\ty\nmm\ts\tN\n" +
             rows("\t"),
         "Read as: tabs; 4 title lines and a units row skipped\n"},
        {"TimesAsNumbers",
         "time,x,z,y\n" + rowsAfter([](int i) { return std::to_string(1772000000 + 60 * i); }),
         "\"time\" (times that only ascend, from 1772000000 to 1772000660)"},
        {"ThousandsWithUnderscores",
         "s,x,z,y\n" + rowsAfter([](int i) { return "1_" + std::to_string(200 + i * i); }),
         "Read as: thousands separated by \"_\"\n"},
        {"ExponentsOfThreeDigits", replaced(table(), ".5,", ".5+000,"), ""},
        {"NumberAsAName", "150,z,y\n" + rows(), "Read as: names that are numbers (150)\n"},
        {"TextColumn", "site,x,z,y\n" + rowsAfter([](int i) { return i < 6 ? "north" : "south"; }),
         ""},
        {"Dates",
         "day,x,z,y\n" + rowsAfter([](int i) { return "2026-11-" + std::to_string(10 + i); }), ""},
        {"RepeatedNames", "x,x,y\n" + rows(), "Read as: repeated names numbered (x.1)\n"},
        {"RepeatedNamesAboveUnits", "x,x,y\n°C,K,N\n" + rows(),
         "Read as: repeated names numbered (x.1); a units row skipped\n"},
        {"ThousandsWithTypographicApostrophes",
         "s;x;z;y\n" + rowsAfter([](int i) { return "1’2" + std::to_string(10 + i * i / 2); }, ";"),
         "Read as: semicolons, thousands separated by \"'\"\n"},
        {"ThousandsBesideDecimalCommas",
         replaced("s;x;z;y\n" + rows(";", ",",
                                     [](Strings& row, int i) {
                                         row.insert(row.begin(),
                                                    "1." + std::to_string(200 + i * i));
                                     }),
                  ";;", ";"),
         "Read as: semicolons, decimal commas, thousands separated by \".\"\n"},
        {"ThousandsBesideDecimalPoints",
         "s\tx\tz\ty\n" + rowsAfter([](int i) { return "1," + std::to_string(200 + i * i); }, "\t"),
         "Read as: tabs, thousands separated by \",\"\n"},
        {"QuotedThousandsAndDecimalCommas",
         "x,z,y\n" + replaced(quotedRows(), "\"2,5\"", "\"2.002,5\""),
         "Read as: decimal commas, thousands separated by \".\"\n"},
        {"HeadingWiderThanAllCases", "x\tz\ty\tRemark\n" + rows("\t"), "Read as: tabs\n"},
        {"HeaderOfALogger",
         "Version\t2\nSeparator\tTab\n***End***\t\nSamples\t12\t12\t12\nDelta\t0.1\t0.1\t0.1\n"
         "***End***\t\t\t\nx\tz\ty\tRemark\n" +
             rows("\t"),
         "Read as: tabs; 6 title lines skipped\n"},
        {"TitlesWithExclamationMarks", "! solver\n! case 3\nx z y\n" + rows(" "),
         "Read as: columns separated by blanks; 2 title lines skipped\n"},
        {"AveragesInFrench", table() + "Moyenne,2,3\nÉcart-type,1,1\n",
         "Read as: 2 lines below the table skipped\n"},
        {"AveragesBelowAnEmptyRowAndLabelledCases", "essai,x,z,y\n" + rowsAfter([](int i) {
                                                        return 'E' + std::to_string(i);
                                                    }) + ",,,,,\nMoy.,,,14.2,,\n",
         "Read as: 1 line below the table skipped\n"},
        {"AveragesBelowNumberedCases", "no,x,z,y\n" + rowsAfter([](int i) {
                                           return std::to_string(i + 1);
                                       }) + "Moyenne,1,2,3\nÉcart-type,1,1,1\n",
         "Read as: 2 lines below the table skipped\n"},
        {"SparseColumn",
         "k,x,z,y\n" + rowsAfter([](int i) { return i < 2 ? std::to_string(i) : ""; }),
         "\"k\" (lacks a number in 10 of 12 cases)"},
        {"InputBehindTheOutput", "x,y,z\n" + rows(),
         "z stands behind the output and is an input here: if it is an output, name the inputs"},
        {"OutputsBeforeTheOutput",
         "x,z,v,y\n" + rows(",", ".",
                            [](Strings& row, int i) {
                                row.insert(row.begin() + 2, std::to_string((7 * i) % 12) + ".3");
                            }),
         "v looks like an output, too, and is an input here: if it is an output, name the inputs "
         "(-x)."},
        {"TruthValues",
         "on,x,z,y\n" + rowsAfter([](int i) { return i % 3 == 0 ? "TRUE" : "False"; }),
         "Read as: truth values as 1 and 0 in on\n"},
        {"RemarksWithoutSeparatorsInLaterRows",
         "x,z,y,remark\n" +
             rows(",", ".",
                  [](Strings& row, int i) { row.resize(i < 5 ? 4 : 3, i == 1 ? "ok" : ""); }),
         ""},
        {"NamesOfSeveralWords", "oil temp  air speed  y\n" + rows("  "),
         "Read as: columns separated by blanks\n"},
        {"HeadingOfBlanksAboveTabs", "# cd\n# x    z    y\n" + rows("\t"),
         "Read as: columns separated by blanks, the heading from a comment line; 1 comment line "
         "skipped\n"},
        {"NumbersBehindHashes",
         "id,x,z,y\n" + rowsAfter([](int i) { return '#' + std::to_string(i); }), ""},
        {"ConstantColumn", "c,x,z,y\n" + rowsAfter([](int) { return "7"; }), ""},

        {"HeadingAlone", "x,z,y\n",
         "The case file names columns and holds no case; add a row for each case.", NoModel},
        {"RowNumbersBesideTexts", ",wool,y\n" + rowsOfTexts(),
         "surrogate: No column is left to be an input: \"C1\" (counts up by one, from 0 to 11), "
         "\"wool\" (text, such as \"A\"). Name the inputs (-x).",
         NoChoice},
        {"TextsAlone", "a,b,y\n" + replaced(replaced(rows(), ".", "-q"), ",", ",p"),
         "surrogate: \"y\" cannot be an output, it is a text column", NoChoice},
        {"NoOutputCell", table(",", ".", [](Strings& row, int) { row[2].clear(); }), "", NoModel},
        {"OutputOfTexts", table(",", ".", [](Strings& row, int) { row[2] = "soft"; }),
         "surrogate: \"y\" cannot be an output, it is a text column", NoChoice},
        {"UnknownOutput", table(), "surrogate: There is no variable \"Y2\"", NoChoice, "Y2"},
        {"VariablesInRows", "name,run 1,run 2,run 3\nx,1,2,3\nz,2,5,2\ny,7,8,5\n",
         "\"y\" names a row of the table: write the table with a column for each variable",
         NoChoice},
        {"HeadingOfNumbers", "2010,2011,2012\n" + rows(),
         "The table was read without a heading: take its first row for one (--heading).", NoChoice,
         "2012"},
        {"OneColumn", "y\n1\n2\n3\n", "", NoChoice},

        {"Empty", "", "line 1: the file is empty; its first line must name the variables.",
         NoTable},
        {"EmptyLinesAlone", "\n \n\t\n", "line 1: the file is empty", NoTable},
        {"CommentsAlone", "# a\n# b\n", "line 1: the file has comment lines only", NoTable},
        {"Workbook", std::string("PK\x03\x04\x14\0\0", 7),
         "is a workbook of a spreadsheet program or another packed file", NoTable},
        {"OldWorkbook", "\xD0\xCF\x11\xE0\xA1\xB1",
         "is a workbook of a spreadsheet program or another packed file", NoTable},
        {"Parquet", "PAR1\x15", "is a Parquet file", NoTable},
        {"Compressed", "\x1F\x8B\x08", "is compressed; unpack it with gunzip.", NoTable},
        {"XmlDocument", "<?xml version=\"1.0\"?>\n<a/>\n", "is an XML document", NoTable},
        {"WebPage", "<html><table></table></html>\n", "is a web page, no table of text", NoTable},
        {"NulByte", table() + std::string("1,\0,3\n", 6), "line 14: a cell holds a NUL byte",
         NoTable},
        {"UnclosedQuote", table() + "1,\"2,3\n4,5,6\n", "line 14: a quoted cell", NoTable},
        {"RepeatedNamesThatAreNumbers", "7,7,y\n" + rows(),
         "line 1: columns 1 and 2 are both named \"7\"", NoTable},
        {"SecondTableBelow", table() + "\na,b,c\n" + rows(),
         "line 15: the row holds names (\"a\", ...) and no numbers: another table begins here",
         NoTable},
        {"Json", "[\n {\"x\": 1}]\n", "is JSON, no table of text", NoTable},
        {"Arff",
         "% rig 7\n@RELATION wear\n\n@ATTRIBUTE x NUMERIC\n@ATTRIBUTE y REAL\n@DATA\n1,2\n2,3\n",
         "is an ARFF file, no plain table; save it as CSV, or keep the rows below @DATA", NoTable},
        {"Tecplot",
         "TITLE = \"Channel\"\nVARIABLES = \"x\", \"y\"\nZONE T=\"1\", I=2, F=POINT\n1 2\n2 3\n",
         "is a Tecplot file, no plain table; save it as CSV, or keep the rows of one zone",
         NoTable},
        {"Database", std::string("SQLite format 3\0", 16), "is a database", NoTable},
        {"ShortRow", table() + "1.5,2\n",
         "line 14: the row has 2 cells, the heading has 3" + sentenceOfShape, NoTable},
        {"LongRow", table() + "1.5,2,3,4\n",
         "line 14: the row has 4 cells, the heading has 3" + sentenceOfShape, NoTable},
        {"LineBetweenTheCases", table() + "pause\n" + rows(),
         "line 14: the row has 1 cell, the heading has 3" + sentenceOfShape, NoTable},
        {"DecimalCommasBetweenCommas", table(",", ","),
         "line 2: the row has 6 cells, the heading has 3; if the table begins further down",
         NoTable},
        {"BothDecimalMarks", table(";") + "1,5;2;3\n",
         "line 14: column \"x\" has a number with a decimal comma", NoTable},
        {"FailedCellsRefused",
         tableWith("failed"),
         "line 4: column \"y\" holds \"failed\", which is no number",
         NoTable,
         "y",
         {"--strict"}},
    };
    return tables;
}

/** The commands that are tried with a table, in the sanitizer build the summary and one more: what
 *  differs between the tables is how they are read, which all commands do alike. */
Strings commandsFor(const OddTable& odd)
{
    Strings commands = {"fit", "evaluate", "predict", "equations", "plot", "export", "compare"};
    const auto first = static_cast<std::ptrdiff_t>(odd.content.size() % commands.size());
    std::rotate(commands.begin(), commands.begin() + first, commands.end());
    commands.resize(runs(commands.size(), 1));
    commands.insert(commands.begin(), "summary");
    return commands;
}

std::ostream& operator<<(std::ostream& out, const OddTable& odd)
{
    return out << odd.name;
}

class OddTables : public ::testing::TestWithParam<OddTable>
{
protected:
    static void SetUpTestSuite() { static const DrawingApplication application; }

    /** The arguments of a command, and what it writes. */
    Strings argumentsOf(const std::string& command) const
    {
        const std::string& output = GetParam().output;
        Strings arguments = {command, cases, "-o", result};
        if (command != "summary") {
            arguments.insert(arguments.end(), {"-y", output});
        }
        if (command == "predict") {
            arguments.insert(arguments.end(), {"--points", cases});
        } else if (command == "plot") {
            arguments.insert(arguments.end(), {"--kind", "actual"});
        } else if (command == "export") {
            arguments.insert(arguments.end(), {"--format", "json"});
        } else if (command == "compare") {
            arguments.insert(arguments.end(), {"--folds", "2", "--transform", "none"});
        }
        arguments.insert(arguments.end(), GetParam().options.begin(), GetParam().options.end());
        return arguments;
    }

    /** The names in the folder. */
    Strings filesThere() const
    {
        Strings names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path(""))) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    /** What `summary` says of a subject, without the reasons of the roles: those that a project
     *  keeps have none. */
    nlohmann::json summaryOf(const std::string& subject, const Strings& options) const
    {
        Strings arguments = {"summary", subject, "--json", "-o", result};
        arguments.insert(arguments.end(), options.begin(), options.end());
        EXPECT_EQ(runProgram(arguments), 0) << subject;
        nlohmann::json summary = nlohmann::json::parse(folder.read("result.svg"));
        for (nlohmann::json& variable : summary["variables"]) {
            variable.erase("reason");
        }
        return summary;
    }

    TemporaryFolder folder;
    std::string cases = folder.write("cases.csv", GetParam().content);
    std::string result = folder.path("result.svg");
};
} // namespace

TEST_P(OddTables, GiveAResultOrASentenceInEveryCommand)
{
    const OddTable& odd = GetParam();
    for (const std::string& command : commandsFor(odd)) {
        const bool isRead = odd.outcome != NoTable;
        const bool succeeds = odd.outcome == Done || (isRead && command == "summary");
        CapturedErrors errors;

        const int exitCode = runProgram(argumentsOf(command));

        const std::string said = errors.text();
        ASSERT_EQ(exitCode, static_cast<int>(succeeds ? Done : odd.outcome))
            << command << ": " << said;
        const bool isPromised = odd.outcome == Done || !succeeds;
        const bool isInSummary =
            command == "summary" && odd.sentence.rfind("Read as", 0) != 0 && odd.outcome == Done;
        if (isPromised && !isInSummary) {
            EXPECT_TRUE(contains(said, odd.sentence)) << command;
        }
        if (odd.sentence.empty() && odd.outcome == Done) {
            EXPECT_FALSE(contains(said, "Read as")) << command;
        }
        if (succeeds) {
            EXPECT_EQ(filesThere(), (Strings{"cases.csv", "result.svg"})) << command;
            EXPECT_GT(std::filesystem::file_size(result), 0u) << command;
            std::filesystem::remove(result);
        } else {
            EXPECT_EQ(filesThere(), Strings{"cases.csv"}) << command;
            EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << command << ": " << said;
            EXPECT_TRUE(beginsWith(said, "surrogate: ")) << command;
        }
    }
}

TEST_P(OddTables, AreReadTheSameFromASavedProject)
{
    const OddTable& odd = GetParam();
    if (odd.outcome != Done) {
        return;
    }
    const CapturedErrors errors;
    const std::string project = folder.path("cases.surrogate.xml");
    Strings options = {"-y", odd.output, "--save", project};
    options.insert(options.end(), odd.options.begin(), odd.options.end());

    const nlohmann::json saved = summaryOf(cases, options);

    EXPECT_EQ(summaryOf(project, {}), saved) << errors.text();
}

INSTANTIATE_TEST_SUITE_P(All, OddTables, ::testing::ValuesIn(oddTables()),
                         [](const auto& parameter) { return std::string(parameter.param.name); });
