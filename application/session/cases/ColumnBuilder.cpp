#include "session/cases/ColumnBuilder.h"

#include "session/text/AsciiText.h"
#include "session/text/QuotedText.h"
#include "session/text/SessionErrors.h"
#include "session/text/SettingHint.h"
#include "session/text/UnitText.h"

#include <mirel_fitting/numerics/TextPieces.h>
#include <mirel_property/Utf8.h>

#include <algorithm>
#include <optional>
#include <unordered_map>

namespace {
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

/** The names of columns that are separated by several blanks: "oil temp  load", where so many are
 *  there as there are columns; else each word. */
std::vector<std::string_view> namesOfWords(const std::vector<std::string_view>& words,
                                           const CaseFileLayout& layout)
{
    if (layout.separator != CaseFileLayout::blanks || words.size() <= layout.columns) {
        return words;
    }
    std::vector<std::string_view> names;
    for (const std::string_view word : words) {
        const bool follows =
            !names.empty() && names.back().data() + names.back().size() + 1 == word.data();
        if (follows) {
            names.back() = {names.back().data(), names.back().size() + 1 + word.size()};
        } else {
            names.push_back(word);
        }
    }
    return names.size() == layout.columns ? names : words;
}

/** 1 or 0 for the words of a truth value, as spreadsheets in several languages write them. */
std::optional<double> truthValue(std::string_view text)
{
    const std::string word = lowerCaseText(text);
    const bool isTrue = isOneOf(word, {"true", "yes", "on", "wahr", "ja", "vrai"});
    const bool isFalse = isOneOf(word, {"false", "no", "off", "falsch", "nein", "faux"});
    return isTrue || isFalse ? std::make_optional(isTrue ? 1.0 : 0.0) : std::nullopt;
}

void addTo(MissingSpellings& spellings, std::string_view text)
{
    constexpr std::size_t maxSpellings = 4;
    const auto known = std::find_if(spellings.begin(), spellings.end(),
                                    [&](const auto& spelling) { return spelling.first == text; });
    if (known != spellings.end()) {
        ++known->second;
    } else if (spellings.size() < maxSpellings) {
        spellings.emplace_back(text, 1);
    }
}
} // namespace

void refuseLine(const std::string& path, std::size_t line, const std::string& sentence)
{
    throw CaseDataError((path == "-" ? std::string("standard input") : path) + ", line " +
                        std::to_string(line) + ": " + sentence);
}

void ColumnBuilder::checkSize(const std::vector<std::string_view>& cells, std::size_t line) const
{
    const std::size_t columns = table.columns.size();
    const bool isSurplusEmpty =
        cells.size() > columns &&
        RowsBelowTable::isEmpty(std::vector<std::string_view>(
            cells.begin() + static_cast<std::ptrdiff_t>(columns), cells.end()));
    // Where the heading has more cells than all cases, the last columns are empty. Spreadsheets
    // leave out separators before empty cells of remarks, but not in their first rows.
    constexpr std::size_t fewestCases = 4;
    const char separator = table.layout.separator;
    bool isLackEmpty =
        cells.size() > 1 && cells.size() < columns && separator != CaseFileLayout::blanks &&
        (table.cases >= fewestCases || (separator != ',' && cells.size() == table.layout.columns));
    for (std::size_t i = 0; i < columns; ++i) {
        isLackEmpty =
            isLackEmpty && table.columns[i].isNamed && (i < cells.size() || states[i].numbers == 0);
    }
    if (isSurplusEmpty || isLackEmpty) {
        return;
    }
    const std::string hint = table.cases == 0
                                 ? "; if the table begins further down, skip the lines above it" +
                                       settingHint(Setting::SkippedLines, "N") + "."
                                 : "; correct it, or begin it with # to leave it out.";
    refuseLine(table.path, line,
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
        refuseLine(
            table.path, line,
            "a cell holds a NUL byte, so that the file is damaged or no text; save it as UTF-8.");
    }
    if (!isUtf8Sure) {
        throw NotUtf8();
    }
    refuseLine(table.path, line, "the file is not UTF-8 text; save it as UTF-8.");
}

void ColumnBuilder::checkNumbers() const
{
    if (!isStrict) {
        return;
    }
    for (const CaseColumn& column : table.columns) {
        if (column.isNumeric && column.withoutNumber.count > 0) {
            refuseLine(table.path, column.withoutNumber.firstLine,
                       "column " + quotedText(column.name) + " holds " +
                           quotedText(column.withoutNumber.spellings.front()) +
                           ", which is no number; correct it, or have such cells count as missing" +
                           settingHint(Setting::NotStrict) + ".");
        }
    }
}

RowsBelowTable::FirstColumn ColumnBuilder::firstColumn() const
{
    constexpr std::size_t enoughToCount = 5;
    const CaseColumn& column = table.columns.front();
    const std::vector<double>& numbers = column.numbers;
    const bool isCounting =
        numbers.size() >= enoughToCount && states.front().numbers == numbers.size() &&
        numbers.back() - numbers.front() == static_cast<double>(numbers.size() - 1);
    return isCounting ? RowsBelowTable::FirstColumn::CaseNumbers
           : column.withoutNumber.count >= enoughToCount &&
                   column.withoutNumber.count == table.cases
               ? RowsBelowTable::FirstColumn::LabelsOfEach
           : column.withoutNumber.count >= std::max<std::size_t>(states.front().numbers, 1)
               ? RowsBelowTable::FirstColumn::Labels
               : RowsBelowTable::FirstColumn::Values;
}

/** Whether, among cases with numbers in two columns at least, a row has a text in each of these,
 *  all of them different: of a failed case the inputs are known. */
bool ColumnBuilder::isOtherHeading(const std::vector<std::string_view>& cells) const
{
    constexpr std::size_t minCases = 4; // Units may stand below a second heading.
    if (keepCells || table.cases < minCases || cells.size() != table.columns.size() ||
        cells.empty() || cells.back().empty() || beginsAsNumber(cells.back())) {
        return false;
    }
    std::size_t texts = 0;
    std::size_t units = 0;
    for (std::size_t i = cells.size(); i-- > 0;) { // numbers come last
        if (states[i].numbers == 0) {
            continue;
        }
        if (reader.read(cells[i]).kind != CellValue::Text ||
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
    for (const RowsBelowTable::Row& row : rowsBelow.release()) {
        std::vector<std::string_view> cells(row.cells.begin(), row.cells.end());
        if (isOtherHeading(cells)) {
            refuseLine(table.path, row.line,
                       "the row holds names (" + quotedText(cells.front()) +
                           ", ...) and no numbers: another table begins here; skip the lines "
                           "above it" +
                           settingHint(Setting::SkippedLines, std::to_string(row.line - 1)) +
                           " to read that one, or delete its lines to read the first one.");
        }
        if (cells.empty()) {
            cells.resize(table.columns.size());
        }
        takeRow(cells, row.line);
    }
}

void ColumnBuilder::endCases()
{
    followsHeading = false; // the file may be read again
    rowsBelow.removeEmptyRowsAtEnd();
    const bool hasNumbers = std::any_of(states.begin(), states.end(),
                                        [](const State& state) { return state.numbers > 0; });
    if (!hasNumbers) {
        takeHeldBack();
    }
    table.layout.linesBelow = rowsBelow.filledRows();
}

void ColumnBuilder::takeCell(CaseColumn& column, State& state, std::string_view text,
                             std::size_t line)
{
    const CellValue value = reader.read(text);
    if (value.kind == CellValue::Number) {
        state.firstNumberLine = state.numbers++ == 0 ? line : state.firstNumberLine;
        takeMark(state, value, line);
    } else if (value.kind == CellValue::Text) {
        takeText(column, state, text, line);
    } else {
        addTo(column.missing, text);
    }
    takeValue(column, value, text);
    if (keepCells) {
        column.cells.append(text);
    }
}

void ColumnBuilder::takeCellAgain(std::size_t column, std::string_view text)
{
    CellValue value = reader.read(text);
    if (value.kind == CellValue::Text && states[column].isTruth) {
        value.kind = CellValue::Number;
        value.number = *truthValue(text);
    } else if (value.kind == CellValue::Text && !states[column].unit.empty()) {
        const auto [number, unit] = numberAndUnit(text);
        value = unit == states[column].unit ? reader.read(number) : value;
    }
    takeValue(table.columns[column], value, text);
}

void ColumnBuilder::takeText(CaseColumn& column, State& state, std::string_view text,
                             std::size_t line)
{
    checkText(text, line);
    if (column.withoutNumber.count == 0 && state.numbers == 0 && column.isNumeric) {
        exchangeKind(column); // likely a column of texts
        column.texts.resize(keepCells ? 0 : table.cases);
    }
    column.withoutNumber.add(text, line);
    const auto [number, unit] = numberAndUnit(text);
    const bool isSameUnit = !unit.empty() && (state.unit.empty() || unit == state.unit);
    const CellValue value = isSameUnit ? reader.read(number) : CellValue();
    if (value.kind == CellValue::Number) {
        state.unit = unit;
        ++state.withUnit;
        takeMark(state, value, line);
    } else {
        state.otherTexts.add(text, line);
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

void ColumnBuilder::takeUnit(CaseColumn& column, const State& state)
{
    if (state.unit == plusMinus) {
        table.layout.errorsInCells.push_back(column.name);
        return;
    }
    column.unit = column.unit.empty() ? unitWithoutBrackets(state.unit) : column.unit;
    table.layout.unitsInCells.push_back(
        state.numbers == 0 ? nameWithUnit(column.name, column.unit)
                           : column.name + " (" + column.unit + ", also taken for " +
                                 countedText(state.numbers, "cell") + " without a unit, " +
                                 (state.numbers == 1 ? "in line " : "first in line ") +
                                 std::to_string(state.firstNumberLine) + ')');
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
            takeUnit(column, state);
        }
        const std::vector<std::string>& texts = column.withoutNumber.spellings;
        state.isTruth = !isRowNames && state.numbers == 0 && !texts.empty() &&
                        !column.withoutNumber.hasMoreSpellings &&
                        std::all_of(texts.begin(), texts.end(), [](const std::string& text) {
                            return truthValue(text).has_value();
                        });
        if (state.isTruth) {
            table.layout.truthValues.push_back(column.name);
            column.withoutNumber = {};
        }
        const bool isOfNumbers =
            state.isTruth ||
            state.numbers + (state.unit.empty() ? 0 : state.withUnit) >= column.withoutNumber.count;
        if (isRowNames ||
            (column.isNumeric == isOfNumbers && state.unit.empty() && !state.isTruth)) {
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

void ColumnBuilder::takeHeading(const std::vector<std::string_view>& words, std::size_t line)
{
    CaseFileLayout& layout = table.layout;
    const std::vector<std::string_view> names = namesOfWords(words, layout);
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
            refuseLine(table.path, line,
                       "columns " + std::to_string(first + 1) + " and " + std::to_string(i + 1) +
                           " are both named " + quotedText(name) +
                           "; rename one of them, or read the table without a heading" +
                           settingHint(Setting::NoHeading) + " if the row holds a case.");
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
        refuseLine(table.path, states[pointColumn].firstPointLine,
                   "column " + quotedText(table.columns[pointColumn].name) +
                       " has a number with a decimal point, where decimal commas were asked for.");
    }
    if (pointColumn < table.columns.size() && hasDecimalComma) {
        refuseLine(table.path, states[commaColumn].firstCommaLine,
                   "column " + quotedText(table.columns[commaColumn].name) +
                       " has a number with a decimal comma, but column " +
                       quotedText(table.columns[pointColumn].name) +
                       " has one with a decimal point in line " +
                       std::to_string(states[pointColumn].firstPointLine) +
                       "; write all numbers in one way.");
    }
}
