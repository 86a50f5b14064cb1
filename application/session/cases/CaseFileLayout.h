#pragma once

#include <session/files/TextEncoding.h>
#include <session/text/Word.h>

#include <surrogate_session/Export.h>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

/** How the text of a case file is to be read: recognised, or as the user says. */
struct SURROGATE_SESSION_EXPORT CaseFileLayout
{
    /** The separator of cells between which there are blanks and tabs, as many as there may be. */
    static constexpr char blanks = ' ';

    TextEncoding encoding = TextEncoding::Utf8;
    char separator = ','; ///< comma, semicolon, tab, '|' or `blanks`
    /** Whether numbers have one; where the separator is a comma these cells are quoted. */
    bool hasDecimalComma = false;
    char thousandsSeparator = '\0'; ///< as CellValue::read() takes it
    /** A number whose mark may also separate thousands, as "1.234"; empty if none is in doubt. */
    std::string doubtfulNumber;

    /** What lines begin with that are no part of the table. */
    std::vector<std::string> commentMarks = {"#", "//", "%"};
    std::size_t commentLines = 0; ///< of the whole file

    std::size_t titleLines = 0; ///< above the heading, those that hold something
    std::size_t tableBegin = 0; ///< where heading or first case begin, in bytes of the UTF-8 text
    std::size_t tableLine = 1;  ///< the line of that, from 1

    bool hasHeading = true;
    bool isHeadingComment = false;         ///< whether the heading stands after a comment mark
    bool hasUnitsRow = false;              ///< whether the record below the heading holds the units
    std::vector<std::string> units;        ///< one per column, without brackets, or none at all
    bool hasRowNames = false;              ///< whether a column without a heading comes first
    std::vector<std::string> numericNames; ///< those of the columns that read as numbers
    std::vector<std::string> numberedNames; ///< what names that came before are called: "x.1"
    std::vector<std::string> truthValues;   ///< columns of TRUE and FALSE or the like
    std::vector<std::string> unitsInCells;  ///< columns with a unit after numbers: "x (mm)"
    std::vector<std::string> errorsInCells; ///< columns with an error after numbers: "12 ± 0.5"
    std::size_t repeatedHeadings = 0;       ///< lines among the cases that say the same again
    std::size_t linesBelow = 0;             ///< after the last case: remarks, sums of columns
    /** Cases, from 1, that begin with "Mean" or the like: figures of the others, or their names. */
    std::vector<std::size_t> casesOfFigures;
    /** How many columns there are; 0: as many as the heading names. */
    std::size_t columns = 0;

    /**
     * What is not as in a plain table (commas, decimal points, UTF-8, the heading first), in words:
     * "semicolons, decimal commas; 2 comment lines and a units row skipped". Empty for a plain one.
     */
    std::string text() const;
};

/** What command lines, projects and reports call the separators. */
inline constexpr std::array<Word<char>, 5> separatorWords = {{{"comma", ','},
                                                              {"semicolon", ';'},
                                                              {"tab", '\t'},
                                                              {"bar", '|'},
                                                              {"blanks", CaseFileLayout::blanks}}};

/** "utf-8", "windows-1252", "utf-16". */
SURROGATE_SESSION_EXPORT std::string encodingWord(TextEncoding encoding);
