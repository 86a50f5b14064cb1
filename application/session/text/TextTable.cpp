#include "session/text/TextTable.h"

#include "session/text/QuotedText.h"

#include <mirel_property/Utf8.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace {
/** Counts characters, not bytes. */
std::size_t characters(const std::string& text)
{
    return text.size() -
           static_cast<std::size_t>(std::count_if(text.begin(), text.end(), continuesCharacter));
}
} // namespace

TextTable::TextTable(std::vector<bool> alignsRight) : alignsRight(std::move(alignsRight)) {}

void TextTable::add(std::vector<std::string> cells)
{
    for (std::string& cell : cells) {
        cell = oneLineText(cell);
    }
    rows.push_back(std::move(cells));
}

std::string TextTable::text(const std::string& indent) const
{
    std::vector<std::size_t> widths(alignsRight.size());
    for (const std::vector<std::string>& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], characters(row[i]));
        }
    }
    std::string text;
    for (const std::vector<std::string>& row : rows) {
        std::string line = indent;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::string padding(widths[i] - characters(row[i]), ' ');
            line += (i == 0 ? "" : "  ") + (alignsRight[i] ? padding + row[i] : row[i] + padding);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + '\n';
    }
    return text;
}
