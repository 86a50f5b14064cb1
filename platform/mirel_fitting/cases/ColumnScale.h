#pragma once

#include <cstddef>
#include <limits>

/**
 * Maps a column of values to the middle of its range, in units of about half that range, so that
 * fits do not depend on the column's units and origin: (x - centre) / unit lies in [-1, 1].
 */
class ColumnScale
{
public:
    /** Leaves values as they are. */
    ColumnScale() = default;

    /** @param values `count` finite values, at least one, borrowed for the call. */
    ColumnScale(const double* values, std::size_t count);

    double centre() const { return middle; }

    /** A power of two, so that dividing by it rounds nothing; 1 for a constant column. */
    double unit() const { return scale; }

    double smallestValue() const { return lowest; }
    double largestValue() const { return highest; }

    /** Largest value minus smallest, 0 for a constant column; infinite where it overflows. */
    double spread() const { return highest - lowest; }

    /** Half of it, finite; 0 for a constant column. */
    double halfRange() const { return highest / 2.0 - lowest / 2.0; }

    /** Values that differ by no more, relative to the largest magnitude, are one constant. */
    static constexpr double roundingOfConstant = 4.0 * std::numeric_limits<double>::epsilon();

    /** Whether the values differ by rounding only, at most four epsilon, as 0.3 and 0.1 + 0.2 do: a
     *  model must not take that for an influence. */
    bool isConstantUpToRounding() const;

    /** The largest magnitude among the values. */
    double largest() const;

    /** The rounding error of the values, in scaled units: half a unit in the last place of the
     *  largest one. */
    double rounding() const;

    /** @param scaled receives `count` values; may be `values` itself. */
    void apply(const double* values, std::size_t count, double* scaled) const;

private:
    double lowest = 0.0;
    double highest = 0.0;
    double middle = 0.0;
    double scale = 1.0;
};
