#pragma once

#include <mirel_fitting/grid/ProductGrid.h>
#include <mirel_fitting/kriging/prediction/FittedKriging.h>

#include <cstddef>
#include <vector>

/** The values of one axis of a product grid, and their correlations with the cases. */
class GridAxis
{
public:
    /** @param strideInGroup number of combinations of the faster axes of its group. */
    GridAxis(const FittedKriging& model, const std::vector<double*>& columns, std::size_t firstRow,
             const ProductGrid::Axis& axis, std::size_t strideInGroup);

    std::size_t valueAt(std::size_t combination) const { return combination / stride % size; }

    /** Rows of correlations with the cases for `count` values from `first` on, each
     *  correlationStride() long. */
    void correlate(const MaternCorrelation& correlation, std::size_t first, std::size_t count,
                   double* rows) const;

    std::size_t size;
    std::size_t stride; ///< in combinations of its group
    std::vector<char> isFinite;
    std::vector<std::size_t> inputs; ///< that vary along it, as indices of the model's inputs
    /** Of each of these inputs one per value; 0 for a value that is not finite. */
    std::vector<std::vector<double>> coordinates;
};
