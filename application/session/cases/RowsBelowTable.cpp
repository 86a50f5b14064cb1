#include "session/cases/RowsBelowTable.h"

#include "session/text/AsciiText.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {
/** More are no remarks. */
constexpr std::size_t maxFilledRows = 20;
} // namespace

bool RowsBelowTable::namesFigures(std::string_view firstCell)
{
    static const WordList words = {
        "total",   "totals",   "grand",      "totale",     "gesamt",  "sum",      "sums",
        "summe",   "somme",    "soma",       "suma",       "average", "averages", "avg",
        "mean",    "means",    "mittel",     "mittelwert", "moyenne", "moy",      "media",
        u8"média", "promedio", "gennemsnit", "min",        "minimum", "max",      "maximum",
        "std",     "stdev",    "stdabw",     "ecart",      u8"écart", u8"Écart",  "median",
        "count",   "sd",       "stddev",     "sem",        "cv",      "cv%",      "rsd",
        "variance"};
    return !beginsAsNumber(firstCell) &&
           isOneOf(lowerCaseText(firstCell.substr(0, firstCell.find_first_of(" :.-"))), words);
}

RowsBelowTable::RowsBelowTable(const CellReader& reader, const ReadingOptions& options)
    : reader(reader), keepsAllFilled(options.isStrict),
      keepsFull(options.keepCells) // points get all their rows back
{}

bool RowsBelowTable::isEmpty(const std::vector<std::string_view>& cells)
{
    return std::all_of(cells.begin(), cells.end(),
                       [](std::string_view cell) { return cell.empty(); });
}

bool RowsBelowTable::holdBack(const std::vector<std::string_view>& cells, std::size_t line,
                              std::size_t columns, FirstColumn firstColumn)
{
    const bool isBlank = cells.front().empty() && cells.size() > 1 && isEmpty(cells);
    if (isBlank) {
        rows.push_back({{}, line});
        return true;
    }
    if (filled >= maxFilledRows || !mayStandBelow(cells, columns, firstColumn)) {
        return false;
    }
    add(cells, line);
    return true;
}

void RowsBelowTable::add(const std::vector<std::string_view>& cells, std::size_t line)
{
    rows.push_back({{cells.begin(), cells.end()}, line});
    ++filled;
}

bool RowsBelowTable::mayStandBelow(const std::vector<std::string_view>& cells, std::size_t columns,
                                   FirstColumn firstColumn) const
{
    const std::string_view first = cells.front();
    std::size_t size = cells.size();
    while (size > columns && cells[size - 1].empty()) {
        --size; // behind separators at the end of the line
    }
    const auto end = cells.begin() + static_cast<std::ptrdiff_t>(size);
    const bool isWhole = size == columns;
    if (keepsAllFilled || size > columns || (isWhole && (keepsFull || beginsAsNumber(first)))) {
        return false;
    }
    const bool isOfEach =
        firstColumn == FirstColumn::CaseNumbers || firstColumn == FirstColumn::LabelsOfEach;
    const bool hasLabels =
        firstColumn == FirstColumn::Labels || firstColumn == FirstColumn::LabelsOfEach;
    constexpr std::size_t maxUnlabelled = 2; // a sum or a mean; more rows are cases
    if ((namesFigures(first) && !hasLabels) ||
        (first.empty() && isOfEach && filled < maxUnlabelled) ||
        (firstColumn == FirstColumn::CaseNumbers && reader.read(first).kind == CellValue::Text)) {
        return true;
    }
    if (hasLabels && !namesFigures(first) && !first.empty() && isWhole) {
        return false;
    }
    const bool isSumOfSome =
        namesFigures(first) &&
        std::any_of(cells.begin(), end, [](std::string_view cell) { return cell.empty(); });
    if (isSumOfSome) {
        return true;
    }
    // Texts next to empty cells. In a full row of texts a case may have failed.
    bool hasText = false;
    bool hasEmpty = !isWhole;
    for (auto cell = std::make_reverse_iterator(end); cell != cells.rend();
         ++cell) { // numbers come last
        const CellValue value = cell->empty() ? CellValue() : reader.read(*cell);
        hasText = hasText || value.kind == CellValue::Text;
        hasEmpty = hasEmpty || cell->empty();
        if (!cell->empty() && value.kind != CellValue::Text) {
            return false;
        }
    }
    return hasText && hasEmpty;
}

std::vector<RowsBelowTable::Row> RowsBelowTable::release()
{
    filled = 0;
    return std::exchange(rows, {});
}

void RowsBelowTable::removeEmptyRowsAtEnd()
{
    while (!rows.empty() && rows.back().cells.empty()) {
        rows.pop_back();
    }
}
