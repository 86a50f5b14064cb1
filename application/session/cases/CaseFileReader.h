#pragma once

#include <session/cases/CaseTable.h>
#include <session/text/CellValue.h>

#include <surrogate_session/Export.h>

#include <optional>
#include <string>

/**
 * Reads tables of cases: separated values, the names of the variables in the first record, a case
 * in each further one.
 *
 * The separator is comma, semicolon or tab; where it is a semicolon or a tab, numbers may be
 * written with a decimal comma, all of them or none. Text is UTF-8, with or without a byte order
 * mark; lines end with LF, CRLF or CR, and lines without a cell are skipped. What cells say is
 * defined by CellValue, how they are quoted by CsvSplitter.
 *
 * A column is numeric if at least half of its filled cells are numbers; its other cells then count
 * as missing, and are reported (CellsWithoutNumber).
 *
 * The file is read in blocks, and only its columns stay in memory. What a column is, is known at
 * the end: where its first filled cell suggests the other kind, the file is read a second time for
 * it. A pipe is kept in a temporary file for that.
 */
class SURROGATE_SESSION_EXPORT CaseFileReader
{
public:
    struct Options
    {
        /** Recognised from the first records if absent. */
        std::optional<char> separator;
        /** Which decimal mark numbers have; either if absent. Where the separator is a comma they
         *  have points. */
        std::optional<CellValue::DecimalMark> decimalMark;
        /** Whether the texts of all cells are kept as well. */
        bool keepCells = false;
    };

    /**
     * @param path "-" is the standard input.
     * @throw CaseDataError for an empty file, a row whose number of cells differs from the
     *        heading's, an empty or repeated heading, a quote that is never closed, decimal commas
     *        beside decimal points, and bytes that are not UTF-8 text.
     * @throw FileError if the file cannot be opened or read.
     */
    static CaseTable read(const std::string& path, const Options& options);
};
