#pragma once

#include <cstddef>

/** Powers of two between 1 and 2, for exponentials that look up most of their digits. */
struct PowersOfTwo
{
    static constexpr std::size_t bits = 10;
    static constexpr std::size_t count = std::size_t{1} << bits;

    /** values[i] = 2^(i / count), rounded to the nearest double. */
    double values[count];

    static const PowersOfTwo table;
};
