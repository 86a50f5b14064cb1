#pragma once

#include <mirel_fitting/kriging/grid/GridSide.h>
#include <mirel_fitting/machine/AlignedBuffer.h>

#include <cstddef>
#include <vector>

/** The rows of some consecutive combinations of a side, one after the other. */
class GridRows
{
public:
    /** @param rows there are at most so many at a time. Side and correlation are borrowed. */
    GridRows(const GridSide& side, const MaternCorrelation& correlation, std::size_t rows);

    /** Computes the rows of `count` combinations. One with a value that is not finite has NaN
     *  behind its correlations. */
    void fill(std::size_t firstCombination, std::size_t count);

    const double* data() const { return buffer.data(); }
    std::size_t stride() const { return rowStride; }
    std::size_t columns() const { return cases + side.trend.size(); }

private:
    void computeTable(std::size_t axis, std::size_t count);
    const double* correlationsOf(std::size_t axis, std::size_t combination) const;
    void multiplySlowerAxes(std::size_t combination);

    /** Of an axis that has no table of all its values. */
    struct PartialTable
    {
        AlignedBuffer rows;
        bool isWhole; ///< nevertheless, since all its values are passed through
    };

    const GridSide& side;
    const MaternCorrelation& correlation;
    std::size_t cases;
    std::size_t tableStride;
    std::size_t rowStride;
    AlignedBuffer buffer;
    std::vector<PartialTable> partialTables;
    AlignedBuffer shared; // by the combinations that differ in the fastest axis only
    std::size_t first = 0;
};
