#pragma once

#include <session/files/TextEncoding.h>
#include <session/text/CellValue.h>
#include <session/text/MissingWords.h>

#include <cstddef>
#include <optional>
#include <string>

/** What a user says about how case files are to be read; what is absent is recognised. */
struct ReadingChoices
{
    /** As CaseFileLayout has it. */
    std::optional<char> separator;
    /** Which decimal mark numbers have. Where the separator is a comma they have points. */
    std::optional<CellValue::DecimalMark> decimalMark;
    /** As CaseFileLayout has it. */
    std::optional<char> thousandsSeparator;
    std::optional<TextEncoding> encoding;
    /** Whether the first record names the columns. */
    std::optional<bool> heading;
    /** Whether the record below the heading holds units. */
    std::optional<bool> unitsRow;
    /** How many lines come before the table, whatever they hold. */
    std::optional<std::size_t> skippedLines;
    /** What comment lines begin with; empty: there are none. */
    std::optional<std::string> commentMark;
    /** Spellings of missing cells besides those that CellValue knows. */
    MissingWords missing;
    /** Whether a filled cell that is no number is refused in a numeric column. */
    bool isStrict = false;
};

/** These, and what the caller wants of the table. */
struct ReadingOptions : ReadingChoices
{
    /** Whether the texts of all cells are kept as well. */
    bool keepCells = false;
};
