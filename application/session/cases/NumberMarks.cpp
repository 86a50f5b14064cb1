#include "session/cases/NumberMarks.h"

#include "session/text/CellValue.h"
#include "session/text/UnitText.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace {
/** What separates thousands in all numbers that can only be read so; NUL where they differ. */
char onlyThousandsSeparator(const std::vector<SampleRecord>& records, const TableParts& parts,
                            const ReadingChoices& choices)
{
    char found = '\0';
    for (const SampleRecord& record : records) {
        for (std::size_t i = 0; i < record.cells.size(); ++i) {
            CellValue::DecimalMark mark = CellValue::NoMark;
            const auto [number, unit] = numberAndUnit(record.cells[i]);
            const char own = parts.isNumeric(i) || !unit.empty()
                                 ? CellValue::thousandsSeparator(number, mark)
                                 : '\0';
            if (own == '\0') {
                continue;
            }
            const bool hasComma = mark == CellValue::Comma || own == '.';
            const bool hasPoint = mark == CellValue::Point || own == ',';
            const bool isRefused = (hasComma && choices.decimalMark == CellValue::Point) ||
                                   (hasPoint && choices.decimalMark == CellValue::Comma);
            if (isRefused || (found != '\0' && own != found)) {
                return '\0';
            }
            found = own;
        }
    }
    return found;
}

/** Whether the only mark of a number can separate thousands: "12.345" and no "0.345". */
bool mayGroup(std::string_view number, CellValue::DecimalMark mark)
{
    const bool isComma = mark == CellValue::Comma;
    const CellValue value = CellValue::read(number, !isComma, isComma ? ',' : '.');
    return value.kind == CellValue::Number && value.mark == CellValue::NoMark &&
           number[number.find_first_not_of("+-")] != '0' &&
           number.find_first_not_of("+-0123456789.,") == std::string_view::npos;
}

/** What the numbers of a column have of one mark. */
struct Mark
{
    std::string grouped;    ///< the first number in which it may separate thousands
    bool isDecimal = false; ///< whether it cannot in another one
};

struct ColumnMarks
{
    ColumnMarks(const std::vector<SampleRecord>& records, std::size_t column)
    {
        for (const SampleRecord& record : records) {
            const std::string number =
                column < record.cells.size() ? numberAndUnit(record.cells[column]).first : "";
            const CellValue value = CellValue::read(number, true);
            Mark& mark = value.mark == CellValue::Point ? point : comma;
            if (value.mark == CellValue::NoMark) {
                hasHundreds = hasHundreds || (value.number >= 100.0 && value.number < 1000.0);
            } else if (!mayGroup(number, value.mark)) {
                mark.isDecimal = true;
            } else {
                mark.grouped = mark.grouped.empty() ? number : mark.grouped;
                grouped = grouped.empty() ? number : grouped;
            }
        }
    }

    Mark point;
    Mark comma;
    std::string grouped; ///< the first of either mark
    bool hasHundreds = false;
};

/** Whether a mark separates thousands since other columns have the other one as decimal mark. */
bool separatesThousands(Mark ColumnMarks::*mark, Mark ColumnMarks::*other,
                        const std::vector<ColumnMarks>& columns, bool isOtherChosen)
{
    const auto anyColumn = [&](const auto& holds) {
        return std::any_of(columns.begin(), columns.end(), holds);
    };
    const auto groups = [&](const ColumnMarks& column) { return !(column.*mark).grouped.empty(); };
    const auto hasOther = [&](const ColumnMarks& column) { return (column.*other).isDecimal; };
    return anyColumn(groups) && (isOtherChosen || anyColumn(hasOther)) &&
           !anyColumn([&](const ColumnMarks& column) {
               const bool isWrittenInTwoWays = groups(column) && hasOther(column);
               return (column.*mark).isDecimal || isWrittenInTwoWays;
           });
}

char thousandsBesideDecimals(const std::vector<ColumnMarks>& columns, const ReadingChoices& choices)
{
    const bool isPointChosen = choices.decimalMark == CellValue::Point;
    const bool isCommaChosen = choices.decimalMark == CellValue::Comma;
    return !isPointChosen && separatesThousands(&ColumnMarks::point, &ColumnMarks::comma, columns,
                                                isCommaChosen)
               ? '.'
           : !isCommaChosen && separatesThousands(&ColumnMarks::comma, &ColumnMarks::point, columns,
                                                  isPointChosen)
               ? ','
               : '\0';
}

/** Empty if there is none. */
std::string doubtfulNumber(const std::vector<ColumnMarks>& columns, char separator)
{
    std::string found;
    for (const ColumnMarks& column : columns) {
        if (column.point.isDecimal || column.comma.isDecimal) {
            return "";
        }
        const char lessUsual = separator == ';' ? '.' : ',';
        if (found.empty() &&
            (column.hasHundreds || column.grouped.find(lessUsual) != std::string::npos)) {
            found = column.grouped;
        }
    }
    return found;
}

/** What the commas of quoted cells are, where commas separate the cells. */
void takeQuotedCommas(const std::vector<SampleRecord>& records, const TableParts& parts,
                      const ReadingChoices& choices, CaseFileLayout& layout)
{
    bool hasPoint = false;
    bool hasComma = false;
    bool areThousands =
        choices.decimalMark != CellValue::Comma && layout.thousandsSeparator == '\0';
    for (const SampleRecord& record : records) {
        for (std::size_t i = 0; i < record.cells.size(); ++i) {
            const std::string& cell = record.cells[i];
            const CellValue value = CellValue::read(cell, true, layout.thousandsSeparator);
            if (!parts.isNumeric(i) || value.kind != CellValue::Number) {
                continue;
            }
            hasPoint = hasPoint || value.mark == CellValue::Point;
            if (value.mark == CellValue::Comma) {
                hasComma = true;
                areThousands = areThousands && cell[cell.find_first_not_of("+-")] != '0' &&
                               CellValue::read(cell, false, ',').kind == CellValue::Number;
            }
        }
    }
    if (hasComma && areThousands) {
        layout.thousandsSeparator = ',';
    } else if (hasComma && !hasPoint) {
        layout.hasDecimalComma = true;
    }
}
} // namespace

void takeNumberMarks(const std::vector<SampleRecord>& records, const TableParts& parts,
                     const ReadingChoices& choices, CaseFileLayout& layout)
{
    std::vector<ColumnMarks> columns;
    for (std::size_t i = 0; i < parts.columns(); ++i) {
        if (parts.isNumeric(i)) {
            columns.emplace_back(records, i);
        }
    }
    char& thousands = layout.thousandsSeparator;
    thousands = choices.thousandsSeparator.value_or('\0');
    if (!choices.thousandsSeparator) {
        thousands = onlyThousandsSeparator(records, parts, choices);
        thousands = thousands == '\0' ? thousandsBesideDecimals(columns, choices) : thousands;
        if (thousands == '\0' && !choices.decimalMark && layout.separator != ',') {
            layout.doubtfulNumber = doubtfulNumber(columns, layout.separator);
        }
    }
    if (layout.separator == ',' && thousands != ',' && choices.decimalMark != CellValue::Point) {
        takeQuotedCommas(records, parts, choices, layout);
    }
}
