#pragma once

#include <cstddef>
#include <vector>

/**
 * Consecutive rows of some columns as a product of axes: row i stands at value
 * (i / stride) % size of each axis, and a column varies along one axis only. Columns that vary
 * together share an axis. Rows that are no such product have one axis, along which everything
 * varies.
 *
 * Values are compared bit by bit, so that a NaN is a value like others.
 */
class ProductGrid
{
public:
    struct Axis
    {
        std::size_t stride = 1;
        std::size_t size = 1;             ///< at least 2
        std::vector<std::size_t> columns; ///< that vary along it, ascending; none: rows repeat
    };

    /**
     * Splits the rows into grids, usually one of all rows. Where the last value of the slowest axis
     * lacks rows, its rows follow as a grid of their own, and so on.
     * Every value is read about once; rows that are no grid are mostly recognised from the first.
     */
    static std::vector<ProductGrid> split(const std::vector<double*>& columns, std::size_t count);

    /** The same rows as consecutive grids with at most so many values, 3 or more, on each axis.
     * They have the same axes but for the number of values on the slowest, which differs by 1 at
     * most. */
    std::vector<ProductGrid> cut(std::size_t maxValues) const;

    std::size_t firstRow() const { return first; }
    std::size_t rowCount() const { return rows; }

    /** From the fastest to the slowest: strides ascend, and the product of the sizes is the number
     *  of rows. None if all rows are the same. */
    const std::vector<Axis>& axes() const { return axisList; }

    /** The columns that have one value in all rows. */
    const std::vector<std::size_t>& constantColumns() const { return constants; }

private:
    ProductGrid(const std::vector<double*>& columns, std::size_t first, std::size_t count);

    ProductGrid slice(std::size_t firstValue, std::size_t values) const;

    std::size_t first;
    std::size_t rows;
    std::vector<Axis> axisList;
    std::vector<std::size_t> constants;
};
