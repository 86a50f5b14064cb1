#pragma once

#include <session/cases/CaseTable.h>

#include <cmath>
#include <limits>
#include <vector>

/** Five cases with a text column, missing and infinite cells, and a column without values. */
inline CaseTable smallTable()
{
    const double missing = std::nan("");
    CaseTable table;
    table.path = "small.csv";
    table.cases = 5;
    table.columns.resize(4);
    table.columns[0].name = "\xC3\xA4";
    table.columns[0].numbers = {0.5, 1, 2, 3, missing};
    table.columns[1].name = "site";
    table.columns[1].isNumeric = false;
    table.columns[1].texts = {"n", "", "s", "", "n"};
    table.columns[2].name = "y";
    table.columns[2].numbers = {1, 2, 3, std::numeric_limits<double>::infinity(), 5};
    table.columns[3].name = "empty";
    table.columns[3].numbers = std::vector<double>(5, missing);
    return table;
}
