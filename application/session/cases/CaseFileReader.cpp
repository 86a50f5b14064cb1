#include "session/cases/CaseFileReader.h"

#include "session/cases/CsvSplitter.h"
#include "session/cases/LayoutRecognition.h"
#include "session/files/ByteSource.h"
#include "session/files/TextEncoding.h"
#include "session/text/CellValue.h"
#include "session/text/CountedText.h"
#include "session/text/QuotedText.h"
#include "session/text/SessionErrors.h"
#include "session/text/TrimmedText.h"
#include "session/text/UnitText.h"

#include <mirel_property/Utf8.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace {
/** How much of a file the layout is recognised from, and the number of its cases estimated. */
constexpr std::size_t sampleSize = 1 << 18;

std::string placeOf(const std::string& path, std::size_t line)
{
    return (path == "-" ? std::string("standard input") : path) + ", line " + std::to_string(line) +
           ": ";
}

[[noreturn]] void fail(const std::string& path, std::size_t line, const std::string& sentence)
{
    throw CaseDataError(placeOf(path, line) + sentence);
}

/** Bytes that are not UTF-8 were met, where it is no matter of course that the text is UTF-8. */
struct NotUtf8
{};

/** The text of a heading on one line, without blanks around it. A tab before what a spreadsheet
 *  takes for a formula stays: it is there so that it does not. */
std::string nameIn(std::string_view text)
{
    const std::string_view trimmed = trimmedText(text);
    const bool isGuarded =
        !trimmed.empty() &&
        std::string_view("=+-@").find(trimmed.front()) != std::string_view::npos &&
        trimmed.data() != text.data() && *(trimmed.data() - 1) == '\t';
    std::string name;
    for (const char character : trimmed) {
        const bool isLineEnd = character == '\n' || character == '\r' || character == '\t';
        if (!isLineEnd) {
            name += character;
        } else if (!name.empty() && name.back() != ' ') {
            name += ' ';
        }
    }
    return (isGuarded ? "\t" : "") + std::string(trimmedText(name));
}

/** Checks the records and turns them into columns. */
class ColumnBuilder
{
public:
    ColumnBuilder(CaseTable& result, const CaseFileReader::Options& options)
        : table(result), keepCells(options.keepCells), missing(options.missing),
          decimalComma((result.layout.separator != ',' || result.layout.hasDecimalComma) &&
                       result.layout.thousandsSeparator != ',' &&
                       options.decimalMark != CellValue::Point),
          needsComma(options.decimalMark == CellValue::Comma),
          thousands(result.layout.thousandsSeparator),
          isUtf8Sure(options.encoding || result.layout.encoding != TextEncoding::Utf8),
          isStrict(options.isStrict)
    {}

    void takeHeading(const std::vector<std::string_view>& names, std::size_t line);

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
        followsHeading = isHeading || (followsHeading && isEmpty(cells));
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
        const bool isBlank = cells.front().empty() && cells.size() > 1 && isEmpty(cells);
        if (isBlank && heldBack.empty()) {
            ++emptyRows;
            return;
        }
        if ((isBlank || mayStandBelow(cells)) && heldBack.size() < maxHeldBack) {
            heldBack.push_back({{cells.begin(), cells.end()}, line});
            if (isBlank) { // which may be shorter
                heldBack.back().cells.resize(table.columns.size());
            }
            return;
        }
        if (emptyRows > 0 || !heldBack.empty()) {
            takeHeldBack();
        }
        if (isOtherHeading(cells)) {
            fail(
                table.path, line,
                "the row holds names (" + quotedText(cells.front()) +
                    ", ...) and no numbers: another table begins here; read that one with --skip " +
                    std::to_string(line - 1) + ", or delete its lines to read the first one.");
        }
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
    void takeCellAgain(std::size_t column, std::string_view text)
    {
        CellValue value = valueOf(text);
        if (value.kind == CellValue::Text && !states[column].unit.empty()) {
            const auto [number, unit] = numberAndUnit(text);
            value = unit == states[column].unit ? valueOf(number) : value;
        }
        takeValue(table.columns[column], value, text);
    }

    /** Refuses cells that are no numbers if the user wants it so. */
    void checkNumbers() const;

    /** Finds out which decimal mark the numbers have, and checks that all have the same. */
    void takeDecimalMark();

private:
    /** What is known of a column while it is read. */
    struct State
    {
        std::size_t numbers = 0;
        std::size_t firstNumberLine = 0;
        std::string unit;              ///< behind the first number that has one
        std::size_t withUnit = 0;      ///< cells of a number with that unit
        CellsWithoutNumber otherTexts; ///< without these
        std::size_t firstPointLine = 0;
        std::size_t firstCommaLine = 0;
    };

    static bool isEmpty(const std::vector<std::string_view>& cells)
    {
        return std::all_of(cells.begin(), cells.end(),
                           [](std::string_view cell) { return cell.empty(); });
    }

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
    }

    /** Empty cells behind the last column do no harm. */
    void checkSize(const std::vector<std::string_view>& cells, std::size_t line) const;

    void checkText(std::string_view text, std::size_t line) const;

    CellValue valueOf(std::string_view text) const
    {
        CellValue value = CellValue::read(text, decimalComma, thousands);
        if (!missing.isEmpty() && missing.contains(text, value)) {
            value = CellValue();
        }
        return value;
    }

    void numberRepeatedNames(std::size_t line);

    /** A row that would hold no case behind the last one: a remark, or sums of the columns. */
    struct HeldRow
    {
        std::vector<std::string> cells;
        std::size_t line;
    };
    static constexpr std::size_t maxHeldBack = 20;

    bool mayStandBelow(const std::vector<std::string_view>& cells) const;
    bool countsCases() const;
    bool isOtherHeading(const std::vector<std::string_view>& cells) const;
    void takeHeldBack();

    void takeCell(CaseColumn& column, State& state, std::string_view text, std::size_t line)
    {
        const CellValue value = valueOf(text);
        if (value.kind == CellValue::Number) {
            state.firstNumberLine = state.numbers++ == 0 ? line : state.firstNumberLine;
            takeMark(state, value, line);
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

    static void takeMark(State& state, const CellValue& value, std::size_t line)
    {
        if (value.mark == CellValue::Point && state.firstPointLine == 0) {
            state.firstPointLine = line;
        } else if (value.mark == CellValue::Comma && state.firstCommaLine == 0) {
            state.firstCommaLine = line;
        }
    }

    void takeText(CaseColumn& column, State& state, std::string_view text, std::size_t line);
    static void addTo(CellsWithoutNumber& cells, std::string_view text, std::size_t line);
    void exchangeKind(CaseColumn& column);

    CaseTable& table;
    std::vector<State> states;
    std::vector<std::string> headingCells;
    std::vector<std::string> unitCells;
    bool followsHeading = false;
    std::size_t emptyRows = 0;     ///< of which it is not known yet whether they end the file
    std::vector<HeldRow> heldBack; ///< likewise, behind these
    bool keepCells;
    const MissingWords& missing;
    bool decimalComma; ///< whether numbers may have one
    bool needsComma;   ///< whether they must not have a point
    char thousands;
    bool isUtf8Sure; ///< whether other bytes are a fault
    bool isStrict;
};

void ColumnBuilder::checkSize(const std::vector<std::string_view>& cells, std::size_t line) const
{
    const std::size_t columns = table.columns.size();
    const bool isSurplusEmpty =
        cells.size() > columns &&
        isEmpty(std::vector<std::string_view>(cells.begin() + static_cast<std::ptrdiff_t>(columns),
                                              cells.end()));
    // Where the heading has more cells than all cases, the last columns are empty.
    const char separator = table.layout.separator;
    const bool isLackEmpty = (separator == '\t' || separator == ';') && cells.size() < columns &&
                             cells.size() == table.layout.columns &&
                             std::all_of(table.columns.begin(), table.columns.end(),
                                         [](const CaseColumn& column) { return column.isNamed; });
    if (isSurplusEmpty || isLackEmpty) {
        return;
    }
    const std::string hint =
        table.cases == 0
            ? "; if the table begins further down, --skip N leaves out the lines above it."
            : "; correct it, or begin it with # to leave it out.";
    fail(table.path, line,
         "the row has " + countedText(cells.size(), "cell") +
             (table.layout.hasHeading ? ", the heading has " : ", the first row has ") +
             std::to_string(columns) + hint);
}

void ColumnBuilder::checkText(std::string_view text, std::size_t line) const
{
    if (isUtf8Text(text)) {
        return;
    }
    if (text.find('\0') != std::string_view::npos) {
        fail(table.path, line,
             "a cell holds a NUL byte, so that the file is damaged or no text; save it as UTF-8.");
    }
    if (!isUtf8Sure) {
        throw NotUtf8();
    }
    fail(table.path, line, "the file is not UTF-8 text; save it as UTF-8.");
}

void ColumnBuilder::checkNumbers() const
{
    if (!isStrict) {
        return;
    }
    for (const CaseColumn& column : table.columns) {
        if (column.isNumeric && column.withoutNumber.count > 0) {
            fail(table.path, column.withoutNumber.firstLine,
                 "column " + quotedText(column.name) + " holds " +
                     quotedText(column.withoutNumber.spellings.front()) +
                     ", which is no number; correct it, or leave out --strict to have such cells "
                     "count as missing.");
        }
    }
}

bool ColumnBuilder::mayStandBelow(const std::vector<std::string_view>& cells) const
{
    constexpr std::array<std::string_view, 35> sums = {
        "total",    "totals",     "grand",  "totale",     "gesamt",  "sum",      "sums",
        "summe",    "somme",      "soma",   "suma",       "average", "averages", "avg",
        "mean",     "means",      "mittel", "mittelwert", "moyenne", "media",    u8"média",
        "promedio", "gennemsnit", "min",    "minimum",    "max",     "maximum",  "std",
        "stdev",    "stdabw",     "ecart",  u8"écart",    u8"Écart", "median",   "count"};
    const std::string_view begin = cells.front().substr(0, 1);
    const bool isNumber = cells.size() == table.columns.size() && !begin.empty() &&
                          std::string_view("0123456789+-.").find(begin) < 13;
    // Points get all their rows back, whatever they hold.
    const bool isPoint = keepCells && cells.size() == table.columns.size();
    if (isStrict || isNumber || isPoint || cells.size() > table.columns.size()) {
        return false;
    }
    // A label names a case, be the rest of it missing or failed.
    const bool hasLabels = table.columns.front().withoutNumber.count >=
                           std::max<std::size_t>(states.front().numbers, 1);
    std::string first(cells.front());
    std::transform(first.begin(), first.end(), first.begin(),
                   [](unsigned char letter) { return std::tolower(letter); });
    first.resize(std::min(first.find_first_of(" :.-"), first.size()));
    const bool isSum = std::find(sums.begin(), sums.end(), first) != sums.end();
    if ((isSum && !hasLabels) ||
        (countsCases() && valueOf(cells.front()).kind == CellValue::Text)) {
        return true;
    }
    if (hasLabels && !isSum && !begin.empty() && cells.size() == table.columns.size()) {
        return false;
    }
    // Texts beside empty cells. In a full row of texts a case may have failed.
    bool hasText = false;
    for (auto cell = cells.rbegin(); cell != cells.rend(); ++cell) { // numbers come last
        const CellValue value = cell->empty() ? CellValue() : valueOf(*cell);
        hasText = hasText || value.kind == CellValue::Text;
        if (!cell->empty() && value.kind != CellValue::Text) {
            return false;
        }
    }
    const bool isFull = cells.size() == table.columns.size() &&
                        std::find(cells.begin(), cells.end(), std::string_view()) == cells.end();
    return hasText && !isFull;
}

/** Whether the first column numbers the cases: what has a text there is none. */
bool ColumnBuilder::countsCases() const
{
    constexpr std::size_t enoughToCount = 5;
    const std::vector<double>& numbers = table.columns.front().numbers;
    return numbers.size() >= enoughToCount && states.front().numbers == numbers.size() &&
           numbers.back() - numbers.front() == static_cast<double>(numbers.size() - 1);
}

/** Whether, among cases with numbers in two columns at least, a row has a text in each of these,
 *  all of them different: of a failed case the inputs are known. */
bool ColumnBuilder::isOtherHeading(const std::vector<std::string_view>& cells) const
{
    constexpr std::size_t fewestCases = 4; // Units may stand below a second heading.
    if (keepCells || table.cases < fewestCases || cells.size() != table.columns.size() ||
        cells.back().empty() || std::string_view("0123456789+-.").find(cells.back().front()) < 13) {
        return false;
    }
    std::size_t texts = 0;
    std::size_t units = 0;
    for (std::size_t i = cells.size(); i-- > 0;) { // numbers come last
        if (states[i].numbers == 0) {
            continue;
        }
        if (valueOf(cells[i]).kind != CellValue::Text ||
            std::find(cells.begin(), cells.begin() + static_cast<std::ptrdiff_t>(i), cells[i]) !=
                cells.begin() + static_cast<std::ptrdiff_t>(i) ||
            !numberAndUnit(cells[i]).second.empty()) {
            return false;
        }
        ++texts;
        units += isUnitText(cells[i]) ? 1 : 0;
    }
    return texts > 1 && units < texts;
}

void ColumnBuilder::takeHeldBack()
{
    for (; emptyRows > 0; --emptyRows) {
        takeRow(std::vector<std::string_view>(table.columns.size()), 0);
    }
    for (const HeldRow& row : heldBack) {
        takeRow({row.cells.begin(), row.cells.end()}, row.line);
    }
    heldBack.clear();
}

void ColumnBuilder::endCases()
{
    followsHeading = false; // the file may be read again
    while (!heldBack.empty() &&
           isEmpty({heldBack.back().cells.begin(), heldBack.back().cells.end()})) {
        heldBack.pop_back();
    }
    const bool hasNumbers = std::any_of(states.begin(), states.end(),
                                        [](const State& state) { return state.numbers > 0; });
    if (!hasNumbers && !heldBack.empty()) {
        takeHeldBack();
    }
    table.layout.linesBelow = static_cast<std::size_t>(
        std::count_if(heldBack.begin(), heldBack.end(), [](const HeldRow& row) {
            return !isEmpty({row.cells.begin(), row.cells.end()});
        }));
}

void ColumnBuilder::takeText(CaseColumn& column, State& state, std::string_view text,
                             std::size_t line)
{
    checkText(text, line);
    if (column.withoutNumber.count == 0 && state.numbers == 0 && column.isNumeric) {
        exchangeKind(column); // likely a column of texts
        column.texts.resize(keepCells ? 0 : table.cases);
    }
    addTo(column.withoutNumber, text, line);
    const auto [number, unit] = numberAndUnit(text);
    const bool isSameUnit = !unit.empty() && (state.unit.empty() || unit == state.unit);
    const CellValue value = isSameUnit ? valueOf(number) : CellValue();
    if (value.kind == CellValue::Number) {
        state.unit = unit;
        ++state.withUnit;
        takeMark(state, value, line);
    } else {
        addTo(state.otherTexts, text, line);
    }
}

void ColumnBuilder::addTo(CellsWithoutNumber& cells, std::string_view text, std::size_t line)
{
    ++cells.count;
    cells.firstLine = cells.count == 1 ? line : cells.firstLine;
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
        const bool isRowNames = i == 0 && table.layout.hasRowNames;
        if (isRowNames && column.withoutNumber.count == 0 && table.cases > 0) {
            column.withoutNumber.firstLine = table.layout.tableLine + 1;
            column.withoutNumber.spellings = {
                std::string(keepCells ? column.cells[0] : column.texts.front())};
        }
        State& state = states[i];
        const std::size_t filled = state.numbers + column.withoutNumber.count;
        if (isRowNames || 2 * state.withUnit <= filled) {
            state.unit.clear();
        } else {
            column.withoutNumber = state.otherTexts;
            column.unit = column.unit.empty() ? unitWithoutBrackets(state.unit) : column.unit;
            table.layout.unitsInCells.push_back(
                column.name + " (" + column.unit +
                (state.numbers == 0 ? ""
                                    : ", also taken for " + countedText(state.numbers, "cell") +
                                          " without a unit, " +
                                          (state.numbers == 1 ? "in line " : "first in line ") +
                                          std::to_string(state.firstNumberLine)) +
                ')');
        }
        const bool isOfNumbers =
            state.numbers + (state.unit.empty() ? 0 : state.withUnit) >= column.withoutNumber.count;
        if (isRowNames || (column.isNumeric == isOfNumbers && state.unit.empty())) {
            continue;
        }
        if (column.isNumeric == isOfNumbers) {
            column.numbers.clear();
        } else {
            exchangeKind(column);
        }
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
    CaseFileLayout& layout = table.layout;
    headingCells.assign(names.begin(), names.end());
    if (layout.hasRowNames) {
        CaseColumn& column = table.columns.emplace_back();
        column.name = "Row name";
        column.isNumeric = false;
    }
    std::size_t count = names.size();
    while (count > std::max<std::size_t>(layout.columns, 1) && names[count - 1].empty()) {
        --count;
    }
    for (std::size_t i = 0; i < count; ++i) {
        checkText(names[i], line);
        CaseColumn& column = table.columns.emplace_back();
        column.name = nameIn(names[i]);
        column.isNamed = !column.name.empty();
        if (!column.isNamed) {
            column.name = 'C' + std::to_string(table.columns.size());
        } else if (CellValue::read(column.name, false).kind == CellValue::Number) {
            layout.numericNames.push_back(column.name);
        }
    }
    states.resize(table.columns.size());
    numberRepeatedNames(line);
    for (std::size_t i = 0; i < std::min(layout.units.size(), table.columns.size()); ++i) {
        checkText(layout.units[i], line);
        table.columns[i].unit = layout.units[i];
    }
}

void ColumnBuilder::nameColumns(std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        table.columns.emplace_back().name = 'C' + std::to_string(i + 1);
    }
    states.resize(count);
}

void ColumnBuilder::numberRepeatedNames(std::size_t line)
{
    std::unordered_map<std::string, std::size_t> columnOf;
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        columnOf.emplace(table.columns[i].name, i);
    }
    std::unordered_map<std::string, std::size_t> repeats;
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        std::string& name = table.columns[i].name;
        const std::size_t first = columnOf.at(name);
        if (first == i) {
            continue;
        }
        if (!table.layout.numericNames.empty()) { // a case rather than a heading
            fail(table.path, line,
                 "columns " + std::to_string(first + 1) + " and " + std::to_string(i + 1) +
                     " are both named " + quotedText(name) +
                     "; rename one of them, or add --no-heading if the row holds a case.");
        }
        std::size_t& number = repeats[name];
        std::string numbered;
        do {
            numbered = name + '.' + std::to_string(++number);
        } while (!columnOf.emplace(numbered, i).second);
        name = numbered;
        table.layout.numberedNames.push_back(numbered);
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
    bool& hasDecimalComma = table.layout.hasDecimalComma;
    hasDecimalComma = commaColumn < table.columns.size();
    if (needsComma && pointColumn < table.columns.size()) {
        fail(table.path, states[pointColumn].firstPointLine,
             "column " + quotedText(table.columns[pointColumn].name) +
                 " has a number with a decimal point, where decimal commas were asked for.");
    }
    if (pointColumn < table.columns.size() && hasDecimalComma) {
        fail(table.path, states[commaColumn].firstCommaLine,
             "column " + quotedText(table.columns[commaColumn].name) +
                 " has a number with a decimal comma, but column " +
                 quotedText(table.columns[pointColumn].name) +
                 " has one with a decimal point in line " +
                 std::to_string(states[pointColumn].firstPointLine) +
                 "; write all numbers in one way.");
    }
}

/** A workbook and the like: what its first bytes say it is, and how a table is made of it. */
struct OtherFile
{
    std::string_view beginning;
    const char* sentence;
};

constexpr const char* workbook =
    "is a workbook of a spreadsheet program or another packed file, no table of text; open it and "
    "save the table as CSV.";
constexpr const char* webPage =
    "is a web page, no table of text; open it in a spreadsheet program and save the table as CSV.";
const OtherFile otherFiles[] = {
    {"PK\x03\x04", workbook},
    {"\xD0\xCF\x11\xE0", workbook},
    {"PAR1", "is a Parquet file, no table of text; save it as CSV, in Python with "
             "pandas.read_parquet(FILE).to_csv(\"cases.csv\", index=False)."},
    {"\x1F\x8B", "is compressed; unpack it with gunzip."},
    {"MATLAB 5.0", "is a MAT-file, no table of text; save the table as CSV, with writetable."},
    {"SQLite format", "is a database, no table of text; export the table as CSV."},
    {"%PDF-", "is a PDF document, no table of text; save the table as CSV."},
    {"\x89HDF", "is an HDF5 file, no table of text; save the table as CSV."},
    {"<!DOCTYPE", webPage},
    {"<html", webPage},
    {"<table", webPage}};

/** One attempt to read a file as text of an encoding. */
class Reading
{
public:
    Reading(ByteSource& bytes, const std::string& path, const CaseFileReader::Options& choices)
        : source(bytes), options(choices)
    {
        table.path = path;
        table.choices = choices;
        readSample();
    }

    /** @throw NotUtf8 */
    CaseTable read(std::optional<TextEncoding> encoding);

private:
    void readSample();
    void recognise(TextEncoding encoding);
    TextDecoder decoder();
    CsvSplitter splitter();
    void readColumns(ColumnBuilder& builder);
    void readAgain(ColumnBuilder& builder, const std::vector<std::size_t>& columns);
    void describeGuess();

    ByteSource& source;
    const CaseFileReader::Options& options;
    std::string sample;
    CaseTable table;
};

void Reading::readSample()
{
    source.rewind();
    sample.resize(sampleSize);
    sample.resize(source.read(sample.data(), sample.size()));
    for (const OtherFile& other : otherFiles) {
        if (sample.compare(0, other.beginning.size(), other.beginning) == 0) {
            throw CaseDataError('"' + table.path + "\" " + other.sentence);
        }
    }
    const std::size_t first = sample.find_first_not_of(" \r\n\t");
    const std::size_t second = sample.find_first_not_of(" \r\n\t", first + 1);
    const bool isJson =
        first < sample.size() && second < sample.size() &&
        ((sample[first] == '{' && (sample[second] == '"' || sample[second] == '}')) ||
         (sample[first] == '[' && (sample[second] == '{' || sample[second] == '[')));
    if (isJson) {
        throw CaseDataError('"' + table.path +
                            "\" is JSON, no table of text; save it as CSV, in Python with "
                            "pandas.read_json(FILE).to_csv(\"cases.csv\", index=False).");
    }
}

TextDecoder Reading::decoder()
{
    source.rewind();
    const auto read = [this](char* buffer, std::size_t capacity) {
        return source.read(buffer, capacity);
    };
    return TextDecoder(read, table.layout.encoding);
}

CsvSplitter Reading::splitter()
{
    const auto text = std::make_shared<TextDecoder>(decoder());
    const auto read = [text](char* buffer, std::size_t capacity) {
        return text->read(buffer, capacity);
    };
    return CsvSplitter(read, table.layout);
}

void Reading::recognise(TextEncoding encoding)
{
    table.layout.encoding = encoding;
    TextDecoder text = decoder();
    const auto read = [&text](char* buffer, std::size_t capacity) {
        return text.read(buffer, capacity);
    };
    table.layout = recogniseLayout(read, sampleSize, options);
    table.layout.encoding = encoding;
}

void Reading::readColumns(ColumnBuilder& builder)
{
    CsvSplitter records = splitter();
    CaseFileLayout& layout = table.layout;
    const std::size_t commentsAbove = layout.commentLines;
    bool hasRoom = false;
    bool isFirst = true;
    while (records.next()) {
        if (isFirst && layout.hasHeading) {
            builder.takeHeading(records.cells(), records.line());
            isFirst = false;
            if (layout.hasUnitsRow && records.next()) {
                builder.takeUnits(records.cells());
            }
            continue;
        }
        if (isFirst) {
            builder.nameColumns(layout.columns == 0 ? records.cells().size() : layout.columns);
            isFirst = false;
        }
        builder.takeCase(records.cells(), records.line());
        if (!hasRoom && records.bytesSplit() > sampleSize / 2) {
            constexpr double surplus = 1.02; // lines differ in length a little
            const double share =
                static_cast<double>(records.bytesSplit()) / static_cast<double>(source.size());
            builder.reserve(
                static_cast<std::size_t>(surplus * static_cast<double>(table.cases) / share));
            hasRoom = true;
        }
    }
    builder.endCases();
    if (records.hasUnclosedQuote()) {
        fail(table.path, records.line(), "a quoted cell that begins in this row is never closed.");
    }
    if (table.columns.empty()) {
        fail(table.path, 1,
             records.commentLines() > 0
                 ? "the file has comment lines only; if they are none, add --comment none."
                 : "the file is empty; its first line must name the variables.");
    }
    layout.commentLines = commentsAbove + records.commentLines();
}

/** Reads the values of these columns, which are known to be of the other kind only now. */
void Reading::readAgain(ColumnBuilder& builder, const std::vector<std::size_t>& columns)
{
    if (columns.empty()) {
        return;
    }
    CsvSplitter records = splitter();
    const int rowsAbove = (table.layout.hasHeading ? 1 : 0) + (table.layout.hasUnitsRow ? 1 : 0);
    for (int i = 0; i < rowsAbove; ++i) {
        records.next();
    }
    for (std::size_t row = 0; row < table.cases && records.next(); ++row) {
        if (builder.isRepeatedHeading(records.cells())) {
            --row;
            continue;
        }
        for (const std::size_t column : columns) {
            const bool isThere = column < records.cells().size(); // An empty row may be shorter.
            builder.takeCellAgain(column, isThere ? records.cells()[column] : std::string_view());
        }
    }
}

/** What the user has said is no guess. */
void Reading::describeGuess()
{
    const CaseFileLayout plain;
    CaseFileLayout guessed = table.layout;
    guessed.separator = options.separator ? plain.separator : guessed.separator;
    guessed.hasDecimalComma = guessed.hasDecimalComma && !options.decimalMark;
    guessed.thousandsSeparator =
        options.thousandsSeparator ? plain.thousandsSeparator : guessed.thousandsSeparator;
    guessed.encoding = options.encoding ? plain.encoding : guessed.encoding;
    guessed.hasHeading = guessed.hasHeading || options.heading;
    guessed.titleLines = options.skippedLines ? 0 : guessed.titleLines;
    guessed.commentLines = options.commentMark ? 0 : guessed.commentLines;
    guessed.hasUnitsRow = guessed.hasUnitsRow && !options.unitsRow;
    guessed.units = options.unitsRow ? plain.units : guessed.units;
    guessed.numericNames = options.heading ? plain.numericNames : guessed.numericNames;
    table.guess = guessed.text();
}

CaseTable Reading::read(std::optional<TextEncoding> encoding)
{
    const bool isWholeFile = sample.size() == source.size();
    const TextEncoding seen = recogniseEncoding(sample, isWholeFile);
    // Who says UTF-16 does not know the order of its bytes.
    const bool isOtherOrder =
        encoding == TextEncoding::Utf16Little && seen == TextEncoding::Utf16Big;
    recognise(encoding && !isOtherOrder ? *encoding : seen);
    if (table.layout.separator == ',' && options.decimalMark == CellValue::Comma &&
        !table.layout.hasDecimalComma) {
        fail(table.path, 1,
             "commas separate the cells, so that numbers cannot have decimal commas.");
    }
    ColumnBuilder builder(table, options);
    readColumns(builder);
    readAgain(builder, builder.decideKinds());
    builder.checkNumbers();
    builder.takeDecimalMark();
    describeGuess();
    return std::move(table);
}
} // namespace

CaseTable CaseFileReader::read(const std::string& path, const Options& options)
{
    ByteSource source(path);
    try {
        return Reading(source, path, options).read(options.encoding);
    } catch (const NotUtf8&) {
        // A byte behind the first block shows it.
        return Reading(source, path, options).read(TextEncoding::Windows1252);
    }
}
