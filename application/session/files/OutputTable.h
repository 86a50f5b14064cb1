#pragma once

#include <surrogate_session/Export.h>

#include <cstddef>
#include <string>
#include <vector>

class CellTexts;
class OutputFile;

/** A table to be written, its cells borrowed. */
struct SURROGATE_SESSION_EXPORT OutputTable
{
    struct Column
    {
        std::string name;
        /** One per row; null for a text column. */
        const double* numbers = nullptr;
        /** One per row, or null. With `numbers`: the same cells as the input file spells them. */
        const CellTexts* texts = nullptr;
    };

    /** The columns of an output's prediction interval. */
    static std::string lowerName(const std::string& output);
    static std::string upperName(const std::string& output);

    /** Adds the two; one number per row each, borrowed. */
    void addLimits(const std::string& output, const double* lower, const double* upper);

    std::vector<Column> columns;
    std::size_t rows = 0;
};

/** How a table is written as text. */
struct TableDialect
{
    char separator = ',';         ///< as CaseFileLayout has it
    bool hasDecimalComma = false; ///< only where the separator is no comma
    /** Headings and texts that begin with =, +, -, @, a tab or a carriage return get an apostrophe
     *  before them: spreadsheets take them for formulas. Numbers stay as they are. */
    bool isForSpreadsheet = false;
};

/**
 * Writes separated values that CaseFileReader reads back as they were: numbers as appendNumber()
 * writes them, NaN as an empty cell, or NA where blanks separate. Cells of an input file keep their
 * spelling but for the decimal mark.
 */
SURROGATE_SESSION_EXPORT void writeCsv(const OutputTable& table, OutputFile& out,
                                       const TableDialect& dialect = {});

/**
 * Writes {"columns": [names], "rows": [[cells], ...]}; missing cells and numbers that are not
 * finite are null.
 */
SURROGATE_SESSION_EXPORT void writeJson(const OutputTable& table, OutputFile& out);
