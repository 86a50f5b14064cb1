#pragma once

#include <cstddef>
#include <vector>

/** Doubles, zero at first, aligned for the registers and cache lines that they are read through. */
class AlignedBuffer
{
public:
    explicit AlignedBuffer(std::size_t count = 0) : lines((count + perLine - 1) / perLine) {}

    double* data() { return reinterpret_cast<double*>(lines.data()); }
    const double* data() const { return reinterpret_cast<const double*>(lines.data()); }

    /** The smallest multiple of a line that has room for `count` doubles. */
    static constexpr std::size_t padded(std::size_t count)
    {
        return (count + perLine - 1) / perLine * perLine;
    }

private:
    static constexpr std::size_t perLine = 8;

    struct alignas(perLine * sizeof(double)) Line
    {
        double values[perLine] = {};
    };

    std::vector<Line> lines;
};
