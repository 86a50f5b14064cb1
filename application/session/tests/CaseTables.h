#pragma once

#include <session/cases/CaseTable.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

constexpr double missing = std::numeric_limits<double>::quiet_NaN();

/** Columns of numbers, all of the same length, as if they had been read. */
inline CaseTable tableOf(std::vector<std::pair<std::string, std::vector<double>>> columns)
{
    CaseTable table;
    table.path = "cases.csv";
    table.cases = columns.empty() ? 0 : columns.front().second.size();
    for (auto& [name, numbers] : columns) {
        CaseColumn& column = table.columns.emplace_back();
        column.name = name;
        column.numbers = std::move(numbers);
    }
    return table;
}
