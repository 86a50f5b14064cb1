#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>

/**
 * Sorts as std::sort does, in parts that are then merged, and calls report() between them: with a
 * million elements every few hundredths of a second.
 * @param before a strict weak ordering; what it leaves open the result leaves open.
 * @param report may be null. What it throws passes through and leaves the elements in any order.
 */
template <class Iterator, class Before>
void sortReporting(Iterator first, Iterator last, const Before& before,
                   const std::function<void()>& report)
{
    constexpr std::ptrdiff_t elementsAtOnce = 32768;

    const auto tell = [&report] {
        if (report) {
            report();
        }
    };
    const std::ptrdiff_t count = last - first;
    for (std::ptrdiff_t start = 0; start < count; start += elementsAtOnce) {
        tell();
        std::sort(first + start, first + std::min(start + elementsAtOnce, count), before);
    }
    for (std::ptrdiff_t width = elementsAtOnce; width < count; width *= 2) {
        for (std::ptrdiff_t start = 0; start + width < count; start += 2 * width) {
            tell();
            std::inplace_merge(first + start, first + start + width,
                               first + std::min(start + 2 * width, count), before);
        }
    }
}
