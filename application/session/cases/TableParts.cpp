#include "session/cases/TableParts.h"

#include "session/text/AsciiText.h"
#include "session/text/CellValue.h"
#include "session/text/UnitText.h"

#include <algorithm>
#include <set>
#include <string>

namespace {
std::size_t widthOf(const SampleRecords& sample)
{
    std::size_t width = 0;
    for (const SampleRecord& record : sample.records) {
        if (record.cells.size() == sample.cellCount) {
            width = std::max(width, record.filledCells());
        }
    }
    return width == 0 ? sample.cellCount : width;
}
} // namespace

TableParts::TableParts(const SampleRecords& sample)
    : sample(sample), records(sample.records), width(widthOf(sample)), numericColumns(width)
{
    for (std::size_t column = 0; column < width; ++column) {
        numericColumns[column] = isNumericBelow(column);
    }
    hasNumericColumn =
        std::find(numericColumns.begin(), numericColumns.end(), true) != numericColumns.end();
    firstColumnNames = canNameRows();
}

std::optional<std::size_t> TableParts::heading() const
{
    // "Run;7" may stand above the table, too.
    constexpr std::size_t maxTitlesWithNumbers = 30;
    constexpr std::size_t maxWiderTitles = 5; // more are cases of another table
    const auto numeric =
        static_cast<std::size_t>(std::count(numericColumns.begin(), numericColumns.end(), true));
    std::optional<std::size_t> found;
    std::size_t cases = 0;
    std::size_t wider = 0;
    for (std::size_t i = 0; i < records.size() && cases <= maxTitlesWithNumbers; ++i) {
        if (isHeading(i)) {
            const bool begins = records[i].followsEmptyLine ||
                                (i > 0 && width > 1 && records[i - 1].filledCells() <= 1);
            const bool followsTitle =
                found && cases == 0 && (isTitle(*found) || (i > *found + 1 && isTitle(i - 1)));
            const bool isUnits = found && i == *found + 1 && readsAsUnits(i);
            if ((!found && cases == 0) || begins || hasLabel(i) || (followsTitle && !isUnits)) {
                found = i;
                cases = 0;
            }
            if (!hasNumericColumn) {
                return found;
            }
        } else if (!isEntry(i) && isCase(i) && 2 * numbersIn(records[i], 0) >= numeric &&
                   2 * records[i].filledCells() >= width &&
                   (records[i].filledCells() <= width || ++wider > maxWiderTitles)) {
            if (isOfNumbersAlone(i)) {
                return found;
            }
            ++cases;
        }
    }
    return found;
}

std::optional<std::size_t> TableParts::faultyHeading() const
{
    for (std::size_t i = 0; i < records.size() && !isCase(i); ++i) {
        const std::vector<std::string>& cells = records[i].cells;
        const auto filled =
            cells.size() - static_cast<std::size_t>(std::count(cells.begin(), cells.end(), ""));
        if (cells.size() >= width && 2 * filled >= width) {
            return i;
        }
    }
    return std::nullopt;
}

bool TableParts::hasRowNames(std::size_t heading) const
{
    return firstColumnNames && records[heading].filledCells() + 1 == width;
}

bool TableParts::hasLabel(std::size_t record) const
{
    SampleRecord names = records[record];
    const std::string& label = names.cells.front();
    if (names.filledCells() != width + 1 || label.empty() || label.back() != ':') {
        return false;
    }
    names.cells.erase(names.cells.begin());
    return canBeNames(names, false);
}

bool TableParts::isOfNumbersAlone(std::size_t record) const
{
    std::size_t filled = 0;
    for (const std::string& cell : records[record].cells) {
        const bool isMissing =
            CellValue::read(cell, sample.separator != ',').kind == CellValue::Missing;
        filled += isMissing ? 0 : 1;
        if (!isMissing && !sample.isNumber(cell)) {
            return false;
        }
    }
    return filled > 0 && records[record].filledCells() <= width;
}

bool TableParts::readsAsUnits(std::size_t record) const
{
    const std::vector<std::string>& cells = records[record].cells;
    std::size_t filled = 0;
    std::size_t units = 0;
    bool isAboveNumbers = false;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (cells[i].empty() || cells[i] == "-" || cells[i] == "--" || cells[i] == "1") {
            continue;
        }
        ++filled;
        const bool isUnit = isUnitText(cells[i]);
        units += isUnit ? 1 : 0;
        isAboveNumbers = isAboveNumbers || (isUnit && i < width && numericColumns[i]);
        // "5 %" is a value with its unit, "1/min" a unit.
        const auto [number, unit] = numberAndUnit(cells[i]);
        const bool isValue = unit.empty() || unit.front() != '/';
        if (isValue && sample.isNumber(std::string(trimmedText(number)))) {
            return false;
        }
    }
    return isAboveNumbers && 2 * units >= filled && records[record].filledCells() <= width;
}

bool TableParts::readsAsSecondHeading(std::size_t record) const
{
    const std::vector<std::string>& cells = records[record].cells;
    std::size_t texts = 0;
    for (std::size_t i = 0; i < width; ++i) {
        if (!numericColumns[i]) {
            continue;
        }
        if (i >= cells.size() || CellValue::read(cells[i], true).kind != CellValue::Text) {
            return false;
        }
        ++texts;
    }
    return texts > 2;
}

bool TableParts::canBeNames(const SampleRecord& record, bool firstIsMissing) const
{
    std::vector<std::string> names(record.cells.begin(), record.cells.end());
    names.resize(record.filledCells());
    std::sort(names.begin(), names.end());
    const bool areDifferent = std::adjacent_find(names.begin(), names.end()) == names.end();
    return areDifferent && !names.empty() && !names.front().empty() &&
           numbersIn(record, firstIsMissing ? 1 : 0) == 0;
}

bool TableParts::isNumericBelow(std::size_t column) const
{
    std::size_t filled = 0;
    std::size_t numbers = 0;
    for (std::size_t i = records.size() / 2; i < records.size(); ++i) {
        const std::vector<std::string>& cells = records[i].cells;
        if (column < cells.size() && records[i].filledCells() <= width && !cells[column].empty()) {
            ++filled;
            numbers += sample.isNumber(cells[column]) ? 1 : 0;
        }
    }
    return filled > 0 && 2 * numbers >= filled;
}

/** How many numbers stand where the records below have numbers. */
std::size_t TableParts::numbersIn(const SampleRecord& record, std::size_t shift) const
{
    std::size_t numbers = 0;
    for (std::size_t i = 0; i < record.cells.size() && i + shift < width; ++i) {
        numbers += numericColumns[i + shift] && sample.isNumber(record.cells[i]) ? 1 : 0;
    }
    return numbers;
}

bool TableParts::isHeading(std::size_t record) const
{
    const std::size_t cells = records[record].filledCells();
    if (record > 0 && readsAsUnits(record) && hasRepeatedNames(record - 1)) {
        return false;
    }
    // The last columns may be empty in all cases, and their separators left out.
    const bool isWider = cells > width && (sample.separator == '\t' || sample.separator == ';');
    return hasLabel(record) ||
           ((cells == width || isWider) && canBeNames(records[record], false)) ||
           (firstColumnNames && cells + 1 == width && canBeNames(records[record], true));
}

/** Whether it holds names, some of them twice: "in, in, out" above symbols does, too, but some
 * units have more than a letter. */
bool TableParts::hasRepeatedNames(std::size_t record) const
{
    const std::vector<std::string>& below = records[record + 1].cells;
    return records[record].filledCells() == width && !isCase(record) &&
           !canBeNames(records[record], false) &&
           std::any_of(below.begin(), below.end(),
                       [](const std::string& cell) { return cell.size() > 1 && isUnitText(cell); });
}

/** Whether the first column can be row names: texts, or numbers that differ. A decimal comma
 *  between commas makes as many cells: there such numbers have to count the rows. */
bool TableParts::canNameRows() const
{
    constexpr std::size_t enoughToCount = 5;
    if (width < 2 || (sample.separator == ',' && width == 2)) {
        return false;
    }
    std::size_t rows = 0;
    bool areTexts = true;
    bool areNumbers = true;
    std::set<std::string> different;
    for (const SampleRecord& record : sample.records) {
        if (record.cells.size() == sample.cellCount) {
            ++rows;
            areTexts = areTexts && !sample.isNumber(record.cells[0]);
            areNumbers = areNumbers && record.cells[0] == std::to_string(rows);
            different.insert(record.cells[0]);
        }
    }
    return sample.separator == ',' ? areTexts || (areNumbers && rows >= enoughToCount)
                                   : areTexts || different.size() == rows;
}

/** "Operator: | Smith" above a wider table. */
bool TableParts::isEntry(std::size_t record) const
{
    const std::string& first = records[record].cells.front();
    return records[record].filledCells() < width && !first.empty() && first.back() == ':';
}

/** "Operator:" next to another text, or a record of another size than the cases. */
bool TableParts::isTitle(std::size_t record) const
{
    const std::vector<std::string>& cells = records[record].cells;
    return records[record].filledCells() != width ||
           (!cells.front().empty() && cells.front().back() == ':');
}
