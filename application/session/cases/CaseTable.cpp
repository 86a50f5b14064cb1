#include "session/cases/CaseTable.h"

std::vector<std::string> CaseTable::names() const
{
    std::vector<std::string> all;
    all.reserve(columns.size());
    for (const CaseColumn& column : columns) {
        all.push_back(column.name);
    }
    return all;
}
