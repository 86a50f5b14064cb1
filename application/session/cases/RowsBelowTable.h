#pragma once

#include <session/cases/CellReader.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/** Rows that may stand below the last case: empty ones, remarks, sums of columns. They are held
 *  back until a case follows them, which makes them cases too. */
class RowsBelowTable
{
public:
    struct Row
    {
        std::vector<std::string> cells; ///< none at all of an empty row
        std::size_t line;
    };

    /** What the first column says of a case. */
    enum class FirstColumn
    {
        Values,
        Labels,       ///< names: a row with one is a case, be the rest of it missing or failed
        LabelsOfEach, ///< the same, of each case so far: a row without one is no case
        CaseNumbers   ///< which count up: a row with a text or nothing there is no case
    };

    /** @param reader borrowed for life. */
    RowsBelowTable(const CellReader& reader, const ReadingOptions& options);

    /**
     * Keeps a row if it may stand below the table.
     * @param columns of the table.
     * @return whether it was kept.
     */
    bool holdBack(const std::vector<std::string_view>& cells, std::size_t line, std::size_t columns,
                  FirstColumn firstColumn);

    /** Gives the rows held back, in their order, and forgets them. */
    std::vector<Row> release();

    /** Holds a row back without looking at it. */
    void add(const std::vector<std::string_view>& cells, std::size_t line);

    void removeEmptyRowsAtEnd();

    /** How many of the rows that are held back are not empty. */
    std::size_t filledRows() const { return filled; }

    static bool isEmpty(const std::vector<std::string_view>& cells);

    /** Whether the first cell of a row names a statistic of the columns: "Total:", "Mean". */
    static bool namesFigures(std::string_view firstCell);

private:
    bool mayStandBelow(const std::vector<std::string_view>& cells, std::size_t columns,
                       FirstColumn firstColumn) const;

    const CellReader& reader;
    bool keepsAllFilled; ///< whether each row with a filled cell is a case
    bool keepsFull;      ///< whether each row with as many cells as columns is one
    std::vector<Row> rows;
    std::size_t filled = 0;
};
