#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

/** An array of doubles aligned to cache lines, as SIMD registers load them fastest. */
class AlignedBuffer
{
public:
    /** All zero. */
    explicit AlignedBuffer(std::size_t count = 0) : AlignedBuffer(uninitialised(count))
    {
        std::fill_n(data(), padded(count), 0.0);
    }

    /** Of large arrays the system provides each page when it is first touched: what is never
     *  used, as one triangle of a symmetric matrix, takes no memory. */
    static AlignedBuffer uninitialised(std::size_t count)
    {
        return AlignedBuffer(std::unique_ptr<Line[]>(new Line[padded(count) / perLine]));
    }

    double* data() { return reinterpret_cast<double*>(lines.get()); }
    const double* data() const { return reinterpret_cast<const double*>(lines.get()); }

    /** The smallest multiple of a line that has room for `count` doubles. */
    static constexpr std::size_t padded(std::size_t count)
    {
        return (count + perLine - 1) / perLine * perLine;
    }

private:
    static constexpr std::size_t perLine = 8;

    struct alignas(perLine * sizeof(double)) Line
    {
        double values[perLine];
    };

    explicit AlignedBuffer(std::unique_ptr<Line[]> lines) : lines(std::move(lines)) {}

    std::unique_ptr<Line[]> lines;
};
