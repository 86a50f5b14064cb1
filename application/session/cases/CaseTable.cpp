#include "session/cases/CaseTable.h"

#include "session/text/QuotedText.h"

#include <mirel_fitting/numerics/TextPieces.h>

#include <algorithm>

void CellsWithoutNumber::add(std::string_view text, std::size_t line)
{
    firstLine = count++ == 0 ? line : firstLine;
    if (hasMoreSpellings ||
        std::find(spellings.begin(), spellings.end(), text) != spellings.end()) {
        return;
    }
    hasMoreSpellings = spellings.size() == keptSpellings;
    if (!hasMoreSpellings) {
        spellings.emplace_back(text);
    }
}

std::string CellsWithoutNumber::whichText() const
{
    std::vector<std::string> quoted;
    for (const std::string& spelling : spellings) {
        quoted.push_back(quotedText(spelling));
    }
    return joinedText(quoted) + (hasMoreSpellings ? " and others" : "") +
           (count == 1 ? ", in line " : ", first in line ") + std::to_string(firstLine);
}

std::string CellsWithoutNumber::text() const
{
    return std::to_string(count) +
           (count == 1 ? " cell is no number (" : " cells are no numbers (") + whichText() + ')';
}

std::vector<std::string> CaseTable::names() const
{
    std::vector<std::string> all;
    all.reserve(columns.size());
    for (const CaseColumn& column : columns) {
        all.push_back(column.name);
    }
    return all;
}

const CaseColumn* CaseTable::find(const std::string& name) const
{
    const auto found = std::find_if(columns.begin(), columns.end(),
                                    [&](const CaseColumn& column) { return column.name == name; });
    return found == columns.end() ? nullptr : &*found;
}
