#pragma once

#include <session/cases/CaseTable.h>
#include <session/cases/CellReader.h>
#include <session/cases/RowsBelowTable.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

/** A byte shows that the text is not UTF-8, as was assumed from its beginning. */
struct NotUtf8
{};

/** Checks the records of a case file and turns them into the columns of a table. */
class ColumnBuilder
{
public:
    ColumnBuilder(CaseTable& result, const ReadingOptions& options)
        : table(result), reader(options, result.layout), rowsBelow(reader, options),
          keepCells(options.keepCells), needsComma(options.decimalMark == CellValue::Comma),
          isUtf8Sure(options.encoding || result.layout.encoding != TextEncoding::Utf8),
          isStrict(options.isStrict)
    {}

    void takeHeading(const std::vector<std::string_view>& words, std::size_t line);

    void takeUnits(const std::vector<std::string_view>& cells)
    {
        unitCells.assign(cells.begin(), cells.end());
    }

    /** Whether a record says what the heading says, or the units below it. Takes every record below
     *  the heading, in order, each time the file is read. */
    bool isRepeatedHeading(const std::vector<std::string_view>& cells)
    {
        const auto equals = [&](const std::vector<std::string>& texts) {
            return !texts.empty() &&
                   std::equal(cells.begin(), cells.end(), texts.begin(), texts.end());
        };
        const bool isHeading = equals(headingCells);
        const bool isUnits = followsHeading && equals(unitCells);
        followsHeading = isHeading || (followsHeading && RowsBelowTable::isEmpty(cells));
        return isHeading || isUnits;
    }

    /** Names the columns of a table without a heading. */
    void nameColumns(std::size_t count);

    void takeCase(const std::vector<std::string_view>& cells, std::size_t line)
    {
        if (isRepeatedHeading(cells)) {
            table.layout.repeatedHeadings += followsHeading ? 1 : 0;
            return;
        }
        if (rowsBelow.holdBack(cells, line, table.columns.size(), firstColumn())) {
            return;
        }
        if (isOtherHeading(cells)) { // or a remark in as many words, if no number follows
            rowsBelow.add(cells, line);
            if (isStrict) {
                takeHeldBack(); // refuses the row
            }
            return;
        }
        takeHeldBack();
        takeRow(cells, line);
    }

    /** At the end: rows that were held back hold no case, unless all columns are of texts. */
    void endCases();

    /** Makes room for so many cases at once: growing by doubling would hold every column twice. */
    void reserve(std::size_t cases)
    {
        for (CaseColumn& column : table.columns) {
            if (column.isNumeric) {
                column.numbers.reserve(cases);
            } else if (!keepCells) {
                column.texts.reserve(cases);
            }
            if (keepCells) {
                column.cells.reserve(cases);
            }
        }
    }

    /**
     * Decides which columns are numeric, now that all cells are known.
     * @return the columns that were taken for the other kind so far, with room for all cases and no
     *         values; where the cells are kept they are complete.
     */
    std::vector<std::size_t> decideKinds();

    /** Reads a cell of such a column again. */
    void takeCellAgain(std::size_t column, std::string_view text);

    /** Refuses cells that are no numbers if the user wants it so. */
    void checkNumbers() const;

    /** Finds out which decimal mark the numbers have, and checks that all have the same. */
    void takeDecimalMark();

private:
    /** What is known of a column while it is read. */
    struct State
    {
        std::size_t numbers = 0;
        bool isTruth = false; ///< whether all texts are truth values
        std::size_t firstNumberLine = 0;
        std::string unit;              ///< after the first number that has one
        std::size_t withUnit = 0;      ///< cells of a number with that unit
        CellsWithoutNumber otherTexts; ///< without these
        std::size_t firstPointLine = 0;
        std::size_t firstCommaLine = 0;
    };

    void takeRow(const std::vector<std::string_view>& cells, std::size_t line)
    {
        const std::size_t known = std::min(cells.size(), table.columns.size());
        for (std::size_t i = 0; i < known; ++i) {
            takeCell(table.columns[i], states[i], cells[i], line);
        }
        if (cells.size() != table.columns.size()) {
            checkSize(cells, line);
            for (std::size_t i = known; i < table.columns.size(); ++i) {
                takeCell(table.columns[i], states[i], {}, line);
            }
        }
        ++table.cases;
        if (!cells.empty() && RowsBelowTable::namesFigures(cells.front())) {
            table.layout.casesOfFigures.push_back(table.cases);
        }
    }

    /** Empty cells after the last column do no harm. */
    void checkSize(const std::vector<std::string_view>& cells, std::size_t line) const;

    void checkText(std::string_view text, std::size_t line) const;

    void numberRepeatedNames(std::size_t line);

    RowsBelowTable::FirstColumn firstColumn() const;
    bool isOtherHeading(const std::vector<std::string_view>& cells) const;
    void takeHeldBack();

    void takeCell(CaseColumn& column, State& state, std::string_view text, std::size_t line);

    void takeValue(CaseColumn& column, const CellValue& value, std::string_view text)
    {
        if (column.isNumeric) {
            column.numbers.push_back(value.kind == CellValue::Number
                                         ? value.number
                                         : std::numeric_limits<double>::quiet_NaN());
        } else if (!keepCells) {
            column.texts.emplace_back(value.kind == CellValue::Missing ? std::string_view() : text);
        }
    }

    static void takeMark(State& state, const CellValue& value, std::size_t line)
    {
        if (value.mark == CellValue::Point && state.firstPointLine == 0) {
            state.firstPointLine = line;
        } else if (value.mark == CellValue::Comma && state.firstCommaLine == 0) {
            state.firstCommaLine = line;
        }
    }

    void takeText(CaseColumn& column, State& state, std::string_view text, std::size_t line);
    void exchangeKind(CaseColumn& column);
    void takeUnit(CaseColumn& column, const State& state);

    CaseTable& table;
    CellReader reader;
    RowsBelowTable rowsBelow;
    std::vector<State> states;
    std::vector<std::string> headingCells;
    std::vector<std::string> unitCells;
    bool followsHeading = false;
    bool keepCells;
    bool needsComma; ///< whether numbers must not have a point
    bool isUtf8Sure; ///< whether other bytes are a fault
    bool isStrict;
};

/** Refuses a file. @throw CaseDataError with file and line before the sentence. */
[[noreturn]] void refuseLine(const std::string& path, std::size_t line,
                             const std::string& sentence);
