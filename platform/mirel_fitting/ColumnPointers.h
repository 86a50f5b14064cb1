#pragma once

#include <vector>

/** Columns as models take them; the pointers are valid while the columns are unchanged. */
template <class Columns>
auto pointersTo(Columns& columns)
{
    std::vector<decltype(columns.front().data())> pointers;
    pointers.reserve(columns.size());
    for (auto& column : columns) {
        pointers.push_back(column.data());
    }
    return pointers;
}
