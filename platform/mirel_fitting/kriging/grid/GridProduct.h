#pragma once

#include <mirel_fitting/kriging/grid/SeparatedGrid.h>

#include <cstddef>

/**
 * Predictions over a grid as a matrix product: the rows of the fast combinations times those of the
 * slow combinations, computed in tiles. For F and S combinations and n cases F S n multiply-adds of
 * BLAS and (F + S) n correlations.
 *
 * Memory: per thread two tiles of about 4 MiB, and up to twice a tile for the correlations of each
 * axis.
 */
class GridProduct
{
public:
    /** @param model has a correlation; borrowed.
     *  @param grid has two axes at least. */
    GridProduct(const FittedKriging& model, const std::vector<double*>& columns,
                const ProductGrid& grid);

    /** One number per row of the grid, NaN where a coordinate is not finite. */
    void predict(int threads, double* result) const;

private:
    class Worker;

    const FittedKriging& model;
    SeparatedGrid separated;
    std::size_t tileSize; // combinations of a group
};
