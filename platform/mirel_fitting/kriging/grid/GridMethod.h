#pragma once

#include <mirel_fitting/grid/ProductGrid.h>
#include <mirel_fitting/kriging/prediction/FittedKriging.h>

#include <cstddef>

/**
 * How the predictions over a grid are computed, and what that costs: an estimate, in operations on
 * eight numbers at once. It is infinite where the method is not possible.
 */
struct GridMethod
{
    enum class Kind
    {
        Scattered,     ///< point by point
        MatrixProduct, ///< GridProduct
        AxisSums       ///< GridSums
    };

    /** The cheapest one; Scattered unless another one saves a quarter of its cost at least. */
    static GridMethod cheapest(const FittedKriging& model, const ProductGrid& grid);

    static GridMethod scattered(const FittedKriging& model, const ProductGrid& grid);
    static GridMethod matrixProduct(const FittedKriging& model, const ProductGrid& grid);
    static GridMethod axisSums(const FittedKriging& model, const ProductGrid& grid,
                               std::size_t axis);

    /** How many of the axes, from the fastest, form the fast group of a matrix product: both groups
     *  have as few combinations as possible, since each takes a row of correlations.
     *  @param grid has two axes at least. */
    static std::size_t fastAxes(const ProductGrid& grid);

    Kind kind;
    double cost;
    std::size_t axis = 0; ///< that AxisSums run along
};
