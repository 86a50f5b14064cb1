#pragma once

#include <surrogate_session/Export.h>

#include <cstddef>
#include <limits>
#include <string>
#include <unordered_set>
#include <vector>

/** What a column holds, in a few figures. */
struct ColumnFigures
{
    static constexpr double none = std::numeric_limits<double>::quiet_NaN();
    /** More distinct values than these are not counted: the figure stays quick to get. */
    static constexpr std::size_t maxDistinct = 10000;

    std::size_t count = 0;   ///< cells with a finite number, or with a text
    std::size_t missing = 0; ///< NaN, or an empty text
    double minimum = none;
    double median = none; ///< the mean of the two in the middle of an even number of cells
    double maximum = none;
    std::size_t distinct = 0; ///< at most maxDistinct
    bool hasMoreDistinct = false;

    /** Linear in the number of cells. */
    SURROGATE_SESSION_EXPORT static ColumnFigures of(const std::vector<double>& numbers);
    SURROGATE_SESSION_EXPORT static ColumnFigures of(const std::vector<std::string>& texts);
};

/** The mean of the two middle ones of an even number. @param numbers at least one, none NaN. */
SURROGATE_SESSION_EXPORT double medianOf(std::vector<double> numbers);

/** How many values of a column differ, counted up to `max`. */
template <typename Value>
std::size_t distinctValues(const std::vector<Value>& values, std::size_t max)
{
    std::unordered_set<Value> seen;
    for (auto value = values.begin(); value != values.end() && seen.size() < max; ++value) {
        seen.insert(*value);
    }
    return seen.size();
}
