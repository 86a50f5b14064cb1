#include "session/cases/CaseFileReader.h"

#include "session/cases/CaseSeparator.h"
#include "session/cases/CsvSplitter.h"
#include "session/files/ByteSource.h"
#include "session/text/CellValue.h"
#include "session/text/SessionErrors.h"
#include "session/text/TrimmedText.h"

#include <mirel_property/Utf8.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <numeric>
#include <string_view>

namespace {
/** How much of a file the separator is recognised from, and the number of its cases estimated. */
constexpr std::size_t sampleSize = 1 << 18;

[[noreturn]] void fail(const std::string& path, std::size_t line, const std::string& sentence)
{
    throw CaseDataError((path == "-" ? std::string("standard input") : path) + ", line " +
                        std::to_string(line) + ": " + sentence);
}

std::string counted(std::size_t count, const std::string& noun)
{
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

/** Checks the records and turns them into columns. */
class ColumnBuilder
{
public:
    ColumnBuilder(CaseTable& result, const CaseFileReader::Options& options)
        : table(result), keepCells(options.keepCells),
          decimalComma(result.separator != ',' && options.decimalMark != CellValue::Point),
          needsComma(options.decimalMark == CellValue::Comma)
    {}

    void takeHeading(const std::vector<std::string_view>& names, std::size_t line);

    void takeCase(const std::vector<std::string_view>& cells, std::size_t line)
    {
        const std::size_t known = std::min(cells.size(), table.columns.size());
        for (std::size_t i = 0; i < known; ++i) {
            takeCell(table.columns[i], states[i], cells[i], line);
        }
        if (cells.size() != table.columns.size()) {
            fail(table.path, line,
                 "the row has " + counted(cells.size(), "cell") + ", the heading has " +
                     std::to_string(table.columns.size()) + '.');
        }
        ++table.cases;
    }

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
    void takeCellAgain(std::size_t column, std::string_view text)
    {
        takeValue(table.columns[column], CellValue::read(text, decimalComma), text);
    }

    /** Finds out which decimal mark the numbers have, and checks that all have the same. */
    void takeDecimalMark();

private:
    /** What is known of a column while it is read. */
    struct State
    {
        std::size_t numbers = 0;
        std::size_t firstPointLine = 0;
        std::size_t firstCommaLine = 0;
    };

    void checkText(std::string_view text, std::size_t line) const
    {
        if (!isUtf8Text(text)) {
            fail(table.path, line, "the file is not UTF-8 text; save it as UTF-8.");
        }
    }

    void checkNames(std::size_t line) const;

    void takeCell(CaseColumn& column, State& state, std::string_view text, std::size_t line)
    {
        const CellValue value = CellValue::read(text, decimalComma);
        if (value.kind == CellValue::Number) {
            takeNumber(state, value, line);
        } else if (value.kind == CellValue::Text) {
            takeText(column, state, text, line);
        }
        takeValue(column, value, text);
        if (keepCells) {
            column.cells.append(text);
        }
    }

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

    static void takeNumber(State& state, const CellValue& value, std::size_t line)
    {
        ++state.numbers;
        if (value.mark == CellValue::Point && state.firstPointLine == 0) {
            state.firstPointLine = line;
        } else if (value.mark == CellValue::Comma && state.firstCommaLine == 0) {
            state.firstCommaLine = line;
        }
    }

    void takeText(CaseColumn& column, const State& state, std::string_view text, std::size_t line);
    void exchangeKind(CaseColumn& column);

    CaseTable& table;
    std::vector<State> states;
    bool keepCells;
    bool decimalComma; ///< whether numbers may have one
    bool needsComma;   ///< whether they must not have a point
};

void ColumnBuilder::takeText(CaseColumn& column, const State& state, std::string_view text,
                             std::size_t line)
{
    checkText(text, line);
    CellsWithoutNumber& cells = column.withoutNumber;
    ++cells.count;
    if (cells.firstLine == 0) {
        cells.firstLine = line;
        if (state.numbers == 0) {
            exchangeKind(column); // likely a column of texts
            column.texts.resize(keepCells ? 0 : table.cases);
        }
    }
    if (!cells.hasMoreSpellings &&
        std::find(cells.spellings.begin(), cells.spellings.end(), text) == cells.spellings.end()) {
        if (cells.spellings.size() < CellsWithoutNumber::keptSpellings) {
            cells.spellings.emplace_back(text);
        } else {
            cells.hasMoreSpellings = true;
        }
    }
}

/** Of a column without its values, with the same room for them. */
void ColumnBuilder::exchangeKind(CaseColumn& column)
{
    const std::size_t room = std::max(column.numbers.capacity(), column.texts.capacity());
    std::vector<double>().swap(column.numbers);
    std::vector<std::string>().swap(column.texts);
    column.isNumeric = !column.isNumeric;
    if (column.isNumeric) {
        column.numbers.reserve(room);
    } else if (!keepCells) {
        column.texts.reserve(room);
    }
}

std::vector<std::size_t> ColumnBuilder::decideKinds()
{
    std::vector<std::size_t> exchanged;
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        CaseColumn& column = table.columns[i];
        if (column.isNumeric == (states[i].numbers >= column.withoutNumber.count)) {
            continue;
        }
        exchangeKind(column);
        if (!keepCells) {
            exchanged.push_back(i);
            continue;
        }
        for (std::size_t row = 0; row < table.cases; ++row) {
            takeCellAgain(i, column.cells[row]);
        }
    }
    return exchanged;
}

void ColumnBuilder::takeHeading(const std::vector<std::string_view>& names, std::size_t line)
{
    for (const std::string_view text : names) {
        checkText(text, line);
        table.columns.emplace_back().name = trimmedText(text);
    }
    states.resize(names.size());
    checkNames(line);
}

void ColumnBuilder::checkNames(std::size_t line) const
{
    std::vector<std::size_t> byName(table.columns.size());
    std::iota(byName.begin(), byName.end(), std::size_t(0));
    const auto name = [&](std::size_t i) -> const std::string& { return table.columns[i].name; };

    for (const std::size_t i : byName) {
        if (name(i).empty()) {
            fail(table.path, line, "column " + std::to_string(i + 1) + " has no name.");
        }
    }
    std::stable_sort(byName.begin(), byName.end(),
                     [&](std::size_t left, std::size_t right) { return name(left) < name(right); });
    const auto same =
        std::adjacent_find(byName.begin(), byName.end(), [&](std::size_t left, std::size_t right) {
            return name(left) == name(right);
        });
    if (same != byName.end()) {
        fail(table.path, line,
             "columns " + std::to_string(same[0] + 1) + " and " + std::to_string(same[1] + 1) +
                 " are both named \"" + name(*same) + "\".");
    }
}

void ColumnBuilder::takeDecimalMark()
{
    // In a file with both marks one of them may separate thousands, which would make the numbers
    // wrong by a factor of 1000.
    std::size_t pointColumn = table.columns.size();
    std::size_t commaColumn = table.columns.size();
    for (std::size_t i = table.columns.size(); i-- > 0;) {
        if (table.columns[i].isNumeric) {
            pointColumn = states[i].firstPointLine != 0 ? i : pointColumn;
            commaColumn = states[i].firstCommaLine != 0 ? i : commaColumn;
        }
    }
    table.hasDecimalComma = commaColumn < table.columns.size();
    if (needsComma && pointColumn < table.columns.size()) {
        fail(table.path, states[pointColumn].firstPointLine,
             "column \"" + table.columns[pointColumn].name +
                 "\" has a number with a decimal point, where decimal commas were asked for.");
    }
    if (pointColumn < table.columns.size() && table.hasDecimalComma) {
        fail(table.path, states[commaColumn].firstCommaLine,
             "column \"" + table.columns[commaColumn].name +
                 "\" has a number with a decimal comma, but column \"" +
                 table.columns[pointColumn].name + "\" has one with a decimal point in line " +
                 std::to_string(states[pointColumn].firstPointLine) +
                 "; write all numbers in one way.");
    }
}

CsvSplitter splitterOf(ByteSource& source, char separator)
{
    source.rewind();
    const auto read = [&source](char* buffer, std::size_t capacity) {
        return source.read(buffer, capacity);
    };
    return CsvSplitter(read, separator);
}

char separatorOf(ByteSource& source)
{
    source.rewind();
    std::string sample(sampleSize, '\0');
    sample.resize(source.read(sample.data(), sample.size()));
    return recogniseSeparator(sample, sample.size() == source.size());
}

void readColumns(ByteSource& source, ColumnBuilder& builder, CaseTable& table)
{
    CsvSplitter splitter = splitterOf(source, table.separator);
    bool hasRoom = false;
    if (splitter.next()) {
        builder.takeHeading(splitter.cells(), splitter.line());
    }
    while (splitter.next()) {
        builder.takeCase(splitter.cells(), splitter.line());
        if (!hasRoom && splitter.bytesSplit() > sampleSize / 2) {
            constexpr double surplus = 1.02; // lines differ in length a little
            const double share =
                static_cast<double>(splitter.bytesSplit()) / static_cast<double>(source.size());
            builder.reserve(
                static_cast<std::size_t>(surplus * static_cast<double>(table.cases) / share));
            hasRoom = true;
        }
    }
    if (splitter.hasUnclosedQuote()) {
        fail(table.path, splitter.line(), "a quoted cell that begins in this row is never closed.");
    }
    if (table.columns.empty()) {
        fail(table.path, 1, "the file is empty; its first line must name the variables.");
    }
}

/** Reads the values of these columns, which are known to be of the other kind only now. */
void readAgain(ByteSource& source, char separator, ColumnBuilder& builder,
               const std::vector<std::size_t>& columns)
{
    if (columns.empty()) {
        return;
    }
    CsvSplitter splitter = splitterOf(source, separator);
    splitter.next(); // the heading
    while (splitter.next()) {
        for (const std::size_t column : columns) {
            builder.takeCellAgain(column, splitter.cells()[column]);
        }
    }
}
} // namespace

CaseTable CaseFileReader::read(const std::string& path, const Options& options)
{
    ByteSource source(path);
    CaseTable table;
    table.path = path;
    table.separator = options.separator ? *options.separator : separatorOf(source);
    if (table.separator == ',' && options.decimalMark == CellValue::Comma) {
        fail(path, 1, "commas separate the cells, so that numbers cannot have decimal commas.");
    }

    ColumnBuilder builder(table, options);
    readColumns(source, builder, table);
    readAgain(source, table.separator, builder, builder.decideKinds());
    builder.takeDecimalMark();
    return table;
}
