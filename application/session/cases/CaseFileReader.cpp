#include "session/cases/CaseFileReader.h"

#include "session/cases/CaseSeparator.h"
#include "session/cases/CsvSplitter.h"
#include "session/cases/PlainCells.h"
#include "session/files/ByteSource.h"
#include "session/text/CellValue.h"
#include "session/text/SessionErrors.h"
#include "session/text/Utf8.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <limits>
#include <numeric>
#include <string_view>
#include <system_error>
#include <utility>

namespace {
constexpr std::size_t blockSize = 1 << 18;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

[[noreturn]] void fail(const std::string& path, std::size_t line, const std::string& sentence)
{
    throw CaseDataError((path == "-" ? std::string("standard input") : path) + ", line " +
                        std::to_string(line) + ": " + sentence);
}

std::string counted(std::size_t count, const std::string& noun)
{
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

/** Feeds a source to a splitter, block by block and without the byte order mark. */
class BlockFeeder
{
public:
    explicit BlockFeeder(ByteSource& bytes) : source(bytes), block(blockSize, '\0') {}

    /** The first block; the first call of next() gives it again. */
    std::string_view peek()
    {
        source.rewind();
        const std::size_t count = source.read(block.data(), block.size());
        current = std::string_view(block).substr(0, count);
        if (current.substr(0, byteOrderMark.size()) == byteOrderMark) {
            current.remove_prefix(byteOrderMark.size());
        }
        consumed = count;
        isPeeked = true;
        return current;
    }

    std::string_view next()
    {
        if (!std::exchange(isPeeked, false)) {
            const std::size_t count = source.read(block.data(), block.size());
            current = std::string_view(block).substr(0, count);
            consumed += count;
        }
        return current;
    }

    bool isAtEnd() const { return consumed >= source.size(); }

    /** The share of the source that has been read; 1 for an empty one. */
    double fraction() const
    {
        return source.size() == 0
                   ? 1.0
                   : static_cast<double>(consumed) / static_cast<double>(source.size());
    }

private:
    ByteSource& source;
    std::string block;
    std::string_view current;
    std::size_t consumed = 0;
    bool isPeeked = false;
};

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

/**
 * Reads a number that needs no second look: it begins with a digit, perhaps behind a minus.
 * CellValue reads such a text as the same number.
 * @return the end of its text; null if the text begins with anything else.
 */
const char* readPlainNumber(const char* begin, const char* end, double& number)
{
    const char* const digits = begin + (begin != end && *begin == '-' ? 1 : 0);
    if (digits == end || !isDigit(*digits)) {
        return nullptr;
    }
    const auto read = std::from_chars(begin, end, number);
    return read.ec == std::errc() ? read.ptr : nullptr;
}

/**
 * The same for a number with a decimal comma.
 * @param comma what readPlainNumber() found behind the digits before it.
 */
const char* readPlainDecimals(const char* begin, const char* comma, const char* end, double& number)
{
    std::array<char, 40> withPoint; // longer numbers go the long way
    const bool hasOnlyDigits = std::all_of(begin + (*begin == '-' ? 1 : 0), comma, isDigit);
    if (!hasOnlyDigits || comma - begin >= static_cast<std::ptrdiff_t>(withPoint.size())) {
        return nullptr;
    }
    const std::size_t count = std::min(static_cast<std::size_t>(end - begin), withPoint.size());
    std::memcpy(withPoint.data(), begin, count);
    withPoint[static_cast<std::size_t>(comma - begin)] = '.';
    const char* const last = withPoint.data() + count;
    const auto read = std::from_chars(withPoint.data(), last, number);
    const bool mayGoOn = read.ptr == last && count == withPoint.size();
    return read.ec == std::errc() && !mayGoOn ? begin + (read.ptr - withPoint.data()) : nullptr;
}

/** Checks the records and turns them into columns. */
class ColumnBuilder : public CsvSplitter::Sink
{
public:
    ColumnBuilder(CaseTable& result, const CaseFileReader::Options& options)
        : table(result), keepCells(options.keepCells),
          decimalComma(result.separator != ',' && options.decimalMark != CellValue::Point),
          needsComma(options.decimalMark == CellValue::Comma),
          takesPlainNumbers(std::string_view(",;\t").find(result.separator) !=
                            std::string_view::npos)
    {}

    void cell(std::string_view text, std::size_t line) override
    {
        if (!hasHeading) {
            takeName(text, line);
        } else if (cellInRecord < table.columns.size()) {
            takeCell(text, line);
        }
        ++cellInRecord;
    }

    void endRecord(std::size_t line) override
    {
        const std::size_t cells = std::exchange(cellInRecord, 0);
        if (!hasHeading) {
            checkHeading(line);
            states.resize(table.columns.size());
            hasHeading = true;
            return;
        }
        if (cells != table.columns.size()) {
            fail(table.path, line,
                 "the row has " + counted(cells, "cell") + ", the heading has " +
                     std::to_string(table.columns.size()) + '.');
        }
        ++table.cases;
    }

    /** Numbers, of which most files consist, are read where they stand. */
    void plainRecord(std::string_view text, char separator, std::size_t line) override
    {
        PlainCells cells(text, separator);
        while (cells) {
            const bool isTaken = takesPlainNumbers && cellInRecord < states.size() &&
                                 table.columns[cellInRecord].isNumeric &&
                                 takePlainNumber(cells, line);
            if (isTaken) {
                ++cellInRecord;
            } else {
                cell(cells.next(), line);
            }
        }
        endRecord(line);
    }

    bool sawHeading() const { return hasHeading; }

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

    /** For each text column, the cases at its beginning whose texts were not kept: they were
     *  numbers. 0 for all others. */
    std::vector<std::size_t> casesWithoutText() const
    {
        std::vector<std::size_t> counts;
        counts.reserve(states.size());
        for (const State& state : states) {
            counts.push_back(state.casesWithoutText);
        }
        return counts;
    }

    /** Finds out which mark the numbers have and that they agree. */
    void takeDecimalMark();

private:
    /** What is remembered of a column while it is read. */
    struct State
    {
        bool hasNumber = false;
        std::size_t casesWithoutText = 0;
        std::size_t firstPointLine = 0;
        std::size_t firstCommaLine = 0;
    };

    void checkText(std::string_view text, std::size_t line) const
    {
        if (!isUtf8Text(text)) {
            fail(table.path, line, "the file is not UTF-8 text; save it as UTF-8.");
        }
    }

    void takeName(std::string_view text, std::size_t line)
    {
        checkText(text, line);
        const std::size_t begin = std::min(text.find_first_not_of(" \t"), text.size());
        const std::size_t end = text.find_last_not_of(" \t") + 1;
        table.columns.emplace_back();
        table.columns.back().name = text.substr(begin, end - std::min(begin, end));
    }

    void checkHeading(std::size_t line) const;

    void takeCell(std::string_view text, std::size_t line)
    {
        CaseColumn& column = table.columns[cellInRecord];
        const CellValue value = CellValue::read(text, decimalComma);
        if (value.kind == CellValue::Text) {
            checkText(text, line);
        }
        if (column.isNumeric && value.kind == CellValue::Text) {
            turnIntoText(column, states[cellInRecord], text, line);
        }

        if (column.isNumeric) {
            takeNumber(column, states[cellInRecord], value, line);
        } else if (!keepCells) {
            column.texts.emplace_back(value.kind == CellValue::Missing ? std::string_view() : text);
        }
        if (keepCells) {
            column.cells.append(text);
        }
    }

    /** @return whether the next cell is a number of the plainest kind; if not, it is still next. */
    bool takePlainNumber(PlainCells& cells, std::size_t line)
    {
        double number = 0.0;
        const char* const begin = cells.begin();
        const char* end = readPlainNumber(begin, cells.recordEnd(), number);
        const bool hasComma =
            decimalComma && end != nullptr && end != cells.recordEnd() && *end == ',';
        if (hasComma) {
            end = readPlainDecimals(begin, end, cells.recordEnd(), number);
        }
        if (end == nullptr || !cells.isCellEnd(end)) {
            return false;
        }
        cells.skipTo(end);

        CaseColumn& column = table.columns[cellInRecord];
        State& state = states[cellInRecord];
        column.numbers.push_back(number);
        state.hasNumber = true;
        if (hasComma) {
            state.firstCommaLine = state.firstCommaLine == 0 ? line : state.firstCommaLine;
        } else if (decimalComma && state.firstPointLine == 0 && std::find(begin, end, '.') != end) {
            state.firstPointLine = line;
        }
        if (keepCells) {
            column.cells.append({begin, static_cast<std::size_t>(end - begin)});
        }
        return true;
    }

    void takeNumber(CaseColumn& column, State& state, const CellValue& value, std::size_t line)
    {
        if (value.kind == CellValue::Missing) {
            column.numbers.push_back(std::numeric_limits<double>::quiet_NaN());
            return;
        }
        column.numbers.push_back(value.number);
        state.hasNumber = true;
        if (value.mark == CellValue::Point && state.firstPointLine == 0) {
            state.firstPointLine = line;
        } else if (value.mark == CellValue::Comma && state.firstCommaLine == 0) {
            state.firstCommaLine = line;
        }
    }

    void turnIntoText(CaseColumn& column, State& state, std::string_view text, std::size_t line)
    {
        column.isNumeric = false;
        column.firstText = text;
        column.firstTextLine = line;
        // Where every cell so far was missing, the empty texts are the right ones already.
        state.casesWithoutText = state.hasNumber ? table.cases : 0;
        const std::size_t room = column.numbers.capacity();
        std::vector<double>().swap(column.numbers);
        if (!keepCells) {
            column.texts.reserve(room);
            column.texts.resize(table.cases);
        }
    }

    CaseTable& table;
    std::vector<State> states;
    bool keepCells;
    bool decimalComma;      ///< whether numbers may have one
    bool needsComma;        ///< whether they must not have a point
    bool takesPlainNumbers; ///< whether the separator cannot be a part of one
    bool hasHeading = false;
    std::size_t cellInRecord = 0;
};

void ColumnBuilder::checkHeading(std::size_t line) const
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
    // One of "1,234" and "1.234" is a thousand times what the other would be read as: a file that
    // has both is not guessed at.
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

/** Puts the texts of early cells in their place, in columns that turned out to be text later. */
class EarlyTextFiller : public CsvSplitter::Sink
{
public:
    EarlyTextFiller(CaseTable& result, std::vector<std::size_t> casesToFill)
        : table(result), casesWithoutText(std::move(casesToFill)),
          last(*std::max_element(casesWithoutText.begin(), casesWithoutText.end()))
    {}

    void cell(std::string_view text, std::size_t) override
    {
        // Record 0 is the heading.
        if (record > 0 && column < casesWithoutText.size() && record <= casesWithoutText[column] &&
            CellValue::read(text, false).kind != CellValue::Missing) {
            table.columns[column].texts[record - 1] = text;
        }
        ++column;
    }

    void endRecord(std::size_t) override
    {
        ++record;
        column = 0;
    }

    bool isDone() const { return record > last; }

private:
    CaseTable& table;
    std::vector<std::size_t> casesWithoutText;
    std::size_t last;
    std::size_t record = 0;
    std::size_t column = 0;
};

void readColumns(BlockFeeder& feeder, ColumnBuilder& builder, CaseTable& table)
{
    /** The first block says how many cases to expect; lines differ in length a little. */
    constexpr double surplus = 1.02;

    CsvSplitter splitter(table.separator, builder);
    for (bool isFirst = true;; isFirst = false) {
        const std::string_view block = feeder.next();
        if (block.empty()) {
            break;
        }
        splitter.parse(block.data(), block.size());
        if (isFirst) {
            const double expected =
                static_cast<double>(table.cases + 1) / feeder.fraction() * surplus;
            builder.reserve(feeder.isAtEnd() ? table.cases + 1
                                             : static_cast<std::size_t>(expected));
        }
    }
    if (!splitter.finish()) {
        fail(table.path, splitter.recordLine(),
             "a quoted cell that begins in this row is never closed.");
    }
    if (!builder.sawHeading()) {
        fail(table.path, 1, "the file is empty; its first line must name the variables.");
    }
}
} // namespace

CaseTable CaseFileReader::read(const std::string& path, const Options& options)
{
    ByteSource source(path);
    BlockFeeder feeder(source);
    CaseTable table;
    table.path = path;

    const std::string_view sample = feeder.peek();
    table.separator =
        options.separator ? *options.separator : recogniseSeparator(sample, feeder.isAtEnd());

    if (table.separator == ',' && options.decimalMark == CellValue::Comma) {
        fail(path, 1, "commas separate the cells, so that numbers cannot have decimal commas.");
    }

    ColumnBuilder builder(table, options);
    readColumns(feeder, builder, table);
    builder.takeDecimalMark();

    const std::vector<std::size_t> early = builder.casesWithoutText();
    const bool lacksTexts =
        !options.keepCells &&
        std::any_of(early.begin(), early.end(), [](std::size_t count) { return count > 0; });
    if (lacksTexts) {
        EarlyTextFiller filler(table, early);
        CsvSplitter splitter(table.separator, filler);
        feeder.peek();
        for (std::string_view block = feeder.next(); !block.empty() && !filler.isDone();
             block = feeder.next()) {
            splitter.parse(block.data(), block.size());
        }
        if (!filler.isDone()) {
            splitter.finish();
        }
    }
    return table;
}
