#include "session/files/OutputTable.h"

#include "session/files/OutputFile.h"
#include "session/text/CellTexts.h"
#include "session/text/CellValue.h"
#include "session/text/NumberText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <string_view>

namespace {
using Column = OutputTable::Column;

/** Whether a cell with this character is quoted. Semicolons and tabs are too, so that a reader that
 *  recognises the separator from the heading sees commas only. */
bool needsQuotes(char character)
{
    switch (character) {
    case ',':
    case ';':
    case '\t':
    case '"':
    case '\r':
    case '\n':
        return true;
    default:
        return false;
    }
}

void appendCell(std::string& line, std::string_view text)
{
    const bool hasOuterBlank = !text.empty() && (text.front() == ' ' || text.back() == ' ');
    if (!hasOuterBlank && std::none_of(text.begin(), text.end(), needsQuotes)) {
        line += text;
        return;
    }
    line += '"';
    for (const char character : text) {
        line.append(character == '"' ? 2 : 1, character);
    }
    line += '"';
}

void appendCell(std::string& line, const Column& column, std::size_t row)
{
    if (column.texts == nullptr) {
        if (!std::isnan(column.numbers[row])) {
            appendNumber(line, column.numbers[row]);
        }
        return;
    }
    const std::string_view text = (*column.texts)[row];
    const bool isNumber = column.numbers != nullptr && !std::isnan(column.numbers[row]);
    if (isNumber && std::find(text.begin(), text.end(), ',') != text.end()) {
        std::string withPoint(text);
        std::replace(withPoint.begin(), withPoint.end(), ',', '.');
        appendCell(line, withPoint);
    } else {
        appendCell(line, text);
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

void writeCsv(const OutputTable& table, OutputFile& out)
{
    std::string line;
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        line += i == 0 ? "" : ",";
        appendCell(line, table.columns[i].name);
    }
    endLine(line);
    out.write(line);

    for (std::size_t row = 0; row < table.rows; ++row) {
        line.clear();
        for (std::size_t i = 0; i < table.columns.size(); ++i) {
            if (i > 0) {
                line += ',';
            }
            appendCell(line, table.columns[i], row);
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
