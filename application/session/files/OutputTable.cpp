#include "session/files/OutputTable.h"

#include "session/files/OutputFile.h"
#include "session/text/CellTexts.h"
#include "session/text/CellValue.h"
#include "session/text/DecimalText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <string_view>

namespace {
using Column = OutputTable::Column;

/** Whether a cell with this character is quoted. Semicolons and tabs are too, so that a reader that
 *  recognises the separator from the heading sees the right one only. */
bool needsQuotes(char character, char separator)
{
    return character == separator ||
           std::string_view(",;\t\"\r\n").find(character) != std::string_view::npos;
}

void appendCell(std::string& line, std::string_view text, char separator)
{
    const bool hasOuterBlank = !text.empty() && (text.front() == ' ' || text.back() == ' ');
    const auto isQuoted = [&](char character) { return needsQuotes(character, separator); };
    const bool readsAsComment =
        line.empty() &&
        (text.substr(0, 1) == "#" || text.substr(0, 1) == "%" || text.substr(0, 2) == "//");
    if (!hasOuterBlank && !readsAsComment && std::none_of(text.begin(), text.end(), isQuoted)) {
        line += text;
        return;
    }
    line += '"';
    for (const char character : text) {
        line.append(character == '"' ? 2 : 1, character);
    }
    line += '"';
}

void appendText(std::string& line, std::string_view text, const TableDialect& dialect)
{
    const bool looksLikeFormula =
        !text.empty() && std::string_view("=+-@\t\r").find(text.front()) != std::string_view::npos;
    if (dialect.isForSpreadsheet && looksLikeFormula) {
        appendCell(line, '\'' + std::string(text), dialect.separator);
    } else {
        appendCell(line, text, dialect.separator);
    }
}

void appendNumberIn(const TableDialect& dialect, std::string& line, double number)
{
    const std::size_t begin = line.size();
    if (!std::isnan(number)) {
        appendNumber(line, number);
    } else if (dialect.separator == ' ') {
        line += "NA";
    }
    if (dialect.hasDecimalComma) {
        std::replace(line.begin() + static_cast<std::ptrdiff_t>(begin), line.end(), '.', ',');
    }
}

/** A number of the input file: as it is spelled there, but with the decimal mark of the dialect. */
void appendNumberIn(const TableDialect& dialect, std::string& line, double number,
                    std::string_view text)
{
    const char otherMark = dialect.hasDecimalComma ? '.' : ',';
    if (text.find(otherMark) == std::string_view::npos) {
        line += text;
        return;
    }
    std::string withPoint(text);
    std::replace(withPoint.begin(), withPoint.end(), ',', '.');
    const CellValue value = CellValue::read(withPoint, false);
    if (value.kind != CellValue::Number || value.number != number) {
        appendNumberIn(dialect, line, number); // It has separators between thousands.
        return;
    }
    if (dialect.hasDecimalComma) {
        std::replace(withPoint.begin(), withPoint.end(), '.', ',');
    }
    line += withPoint;
}

void appendCell(std::string& line, const Column& column, std::size_t row,
                const TableDialect& dialect)
{
    if (column.texts == nullptr) {
        appendNumberIn(dialect, line, column.numbers[row]);
        return;
    }
    const std::string_view text = (*column.texts)[row];
    const bool isNumber = column.numbers != nullptr && !std::isnan(column.numbers[row]);
    const bool isPlain = text.find_first_of(" \"") == std::string_view::npos;
    if (isNumber && isPlain) {
        appendNumberIn(dialect, line, column.numbers[row], text);
    } else if (text.empty() && dialect.separator == ' ') {
        line += "NA";
    } else {
        // Of a text column, but a number by itself.
        const bool isText = CellValue::read(text, false).kind != CellValue::Number;
        isText ? appendText(line, text, dialect) : appendCell(line, text, dialect.separator);
    }
}

/** Readers skip empty lines: where the only cell of a row is empty, it is quoted. */
void endLine(std::string& line)
{
    line += line.empty() ? "\"\"\n" : "\n";
}

void appendJsonText(std::string& text, std::string_view value)
{
    text += nlohmann::json(value).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

void appendJsonCell(std::string& text, const Column& column, std::size_t row)
{
    if (column.numbers != nullptr) {
        if (std::isfinite(column.numbers[row])) {
            appendNumber(text, column.numbers[row]);
        } else {
            text += "null";
        }
        return;
    }
    const std::string_view cell = (*column.texts)[row];
    if (CellValue::read(cell, false).kind == CellValue::Missing) {
        text += "null";
    } else {
        appendJsonText(text, cell);
    }
}
} // namespace

std::string OutputTable::lowerName(const std::string& output)
{
    return output + " lower";
}

std::string OutputTable::upperName(const std::string& output)
{
    return output + " upper";
}

void OutputTable::addLimits(const std::string& output, const double* lower, const double* upper)
{
    columns.push_back({lowerName(output), lower, nullptr});
    columns.push_back({upperName(output), upper, nullptr});
}

void writeCsv(const OutputTable& table, OutputFile& out, const TableDialect& dialect)
{
    std::string line;
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        line.append(i == 0 ? 0 : 1, dialect.separator);
        appendText(line, table.columns[i].name, dialect);
    }
    endLine(line);
    out.write(line);

    for (std::size_t row = 0; row < table.rows; ++row) {
        line.clear();
        for (std::size_t i = 0; i < table.columns.size(); ++i) {
            if (i > 0) {
                line += dialect.separator;
            }
            appendCell(line, table.columns[i], row, dialect);
        }
        endLine(line);
        out.write(line);
    }
}

void writeJson(const OutputTable& table, OutputFile& out)
{
    std::string text = "{\"columns\":[";
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        text += i == 0 ? "" : ",";
        appendJsonText(text, table.columns[i].name);
    }
    text += "],\"rows\":[";
    for (std::size_t row = 0; row < table.rows; ++row) {
        text += row == 0 ? "\n[" : ",\n[";
        for (std::size_t i = 0; i < table.columns.size(); ++i) {
            if (i > 0) {
                text += ',';
            }
            appendJsonCell(text, table.columns[i], row);
        }
        text += ']';
        out.write(text);
        text.clear();
    }
    text += "]}";
    out.write(text);
}
