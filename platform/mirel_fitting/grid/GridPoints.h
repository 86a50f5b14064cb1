#pragma once

#include <mirel_fitting/grid/ProductGrid.h>

#include <cstddef>
#include <vector>

/**
 * Points at which models are evaluated, taken apart into grids. A cell that is not finite, a
 * missing one in a table say, hides a grid of millions of points: where columns are no grid by
 * themselves, such cells are filled with what would make them one. Their points get NaN in the end,
 * so that what they are filled with changes no result.
 */
class GridPoints
{
public:
    /** @param columns are borrowed. Those with cells that hide a grid are copied. */
    GridPoints(const std::vector<double*>& columns, std::size_t count);

    /** With the cells filled. */
    const std::vector<double*>& columns() const { return pointers; }
    const std::vector<ProductGrid>& grids() const { return gridList; }
    std::size_t count() const { return pointCount; }

    /** Writes NaN for the points that have a cell that was filled. */
    void markFilled(double* result) const;

private:
    bool mayHideGrid() const;
    bool fill(std::size_t column);

    std::vector<double*> pointers;
    std::size_t pointCount;
    std::vector<ProductGrid> gridList;
    std::vector<std::vector<double>> copies;
    std::vector<std::size_t> filledRows;
};
