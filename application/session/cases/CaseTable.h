#pragma once

#include <session/cases/CaseFileLayout.h>
#include <session/cases/ReadingChoices.h>
#include <session/text/CellTexts.h>

#include <surrogate_session/Export.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/** The filled cells of a column that are no numbers. */
struct CellsWithoutNumber
{
    static constexpr std::size_t keptSpellings = 3;

    std::size_t count = 0;
    /** The first that differ, in their order. */
    std::vector<std::string> spellings;
    /** Whether there are more than these. */
    bool hasMoreSpellings = false;
    /** The line of the first one. */
    std::size_t firstLine = 0;

    void add(std::string_view text, std::size_t line);

    /** `"failed", first in line 17`. */
    SURROGATE_SESSION_EXPORT std::string whichText() const;
    /** `4 cells are no numbers ("failed", first in line 17)`. */
    SURROGATE_SESSION_EXPORT std::string text() const;
};

/** How the missing cells of a column are spelled, "" for empty ones, with their counts: the first
 *  spellings that differ. */
using MissingSpellings = std::vector<std::pair<std::string, std::size_t>>;

/** One column of a case file, as CaseFileReader understood it. */
struct CaseColumn
{
    std::string name;
    /** Whether the heading has a name for it; the row numbers of other programs have none. */
    bool isNamed = true;

    /** As the row below the heading says, without brackets; empty if it says nothing. */
    std::string unit;

    /** Whether at least half of the filled cells are numbers; a column without a filled cell is
     *  numeric. */
    bool isNumeric = true;

    /** Numeric column: one per case, NaN for a missing cell and for one that is no number, infinity
     *  for a number that a double cannot hold. */
    std::vector<double> numbers;

    /** Text column: one per case, "" for a missing cell. Empty where `cells` is kept. */
    std::vector<std::string> texts;

    /** One per case, the text of the cell as the file has it, if the reader was asked to keep it.
     */
    CellTexts cells;

    CellsWithoutNumber withoutNumber;
    MissingSpellings missing;

    /** Whether cells that are no numbers count as missing. */
    bool lacksNumbers() const { return isNumeric && withoutNumber.count > 0; }
};

/** A case file as columns. */
struct SURROGATE_SESSION_EXPORT CaseTable
{
    /** The names of the columns, in their order. */
    std::vector<std::string> names() const;

    /** The column of this name; null if there is none. */
    const CaseColumn* find(const std::string& name) const;

    std::string path;
    std::vector<CaseColumn> columns;
    std::size_t cases = 0;
    CaseFileLayout layout;
    /** What the user said about the reading. */
    ReadingChoices choices;
    /** What of the layout nobody said, in words as CaseFileLayout::text() has them. */
    std::string guess;
};
