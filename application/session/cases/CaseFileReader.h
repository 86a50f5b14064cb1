#pragma once

#include <session/cases/CaseTable.h>
#include <session/cases/ReadingChoices.h>

#include <surrogate_session/Export.h>

#include <string>

/**
 * Reads tables of cases: one case in each record, below a heading with the names of the variables.
 *
 * How the file is laid out is recognised from its first block (recogniseLayout()) as far as the
 * user does not say it: separator, comment lines, titles above the heading, a row of units, row
 * names, no heading, UTF-8, UTF-16 or Windows-1252 (also where a byte far down shows it). Between
 * semicolons, tabs, bars and blanks numbers may be written with a decimal comma, all of them or
 * none; between commas, where they are quoted. What cells say is defined by CellValue, how they are
 * quoted by CsvSplitter. Empty cells after the last column and rows without a filled cell at the
 * end are ignored. A column without a name is called C and its number.
 *
 * A column is numeric if at least half of its filled cells are numbers; its other cells then count
 * as missing, and are reported (CellsWithoutNumber). Row names are text. Where most filled cells
 * are numbers with the same unit ("12 mm"), the numbers are read and the unit is the column's.
 *
 * Rows that repeat the heading, and rows without a number or of sums after the last case, are no
 * cases; they are counted in the layout.
 *
 * The file is read in blocks, and only its columns stay in memory. What a column is, is known at
 * the end: where its first filled cell suggests the other kind, the file is read a second time for
 * it. A pipe is kept in a temporary file for that.
 */
class SURROGATE_SESSION_EXPORT CaseFileReader
{
public:
    using Options = ReadingOptions;

    /**
     * @param path "-" is the standard input.
     * @throw CaseDataError for an empty file, a row whose number of cells differs from the
     *        heading's, a repeated heading, a quote that is never closed, decimal commas next to
     *        decimal points, bytes that are no text, a workbook or another file that is no table
     *        of text, and, where the user wants it so, a cell that is no number.
     * @throw FileError if the file cannot be opened or read.
     */
    static CaseTable read(const std::string& path, const Options& options);
};
