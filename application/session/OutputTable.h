#pragma once

#include <surrogate_session/Export.h>

#include <cstddef>
#include <string>
#include <vector>

class CellTexts;
class OutputFile;

/** A table to be written, its cells borrowed. */
struct OutputTable
{
    struct Column
    {
        std::string name;
        /** One per row; null for a text column. */
        const double* numbers = nullptr;
        /** One per row, or null. Beside `numbers`: the same cells as somebody wrote them. */
        const CellTexts* texts = nullptr;
    };

    std::vector<Column> columns;
    std::size_t rows = 0;
};

/**
 * Writes comma-separated values that CaseFileReader reads back as they were: numbers as
 * appendNumber() writes them, NaN as an empty cell. Cells that somebody wrote stay as they are
 * but for a decimal comma, which becomes a point.
 */
SURROGATE_SESSION_EXPORT void writeCsv(const OutputTable& table, OutputFile& out);

/**
 * Writes {"columns": [names], "rows": [[cells], ...]}; missing cells and numbers that are not
 * finite are null.
 */
SURROGATE_SESSION_EXPORT void writeJson(const OutputTable& table, OutputFile& out);
