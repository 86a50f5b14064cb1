#pragma once

#include <mirel_fitting/kriging/grid/AxisSums.h>
#include <mirel_fitting/kriging/grid/SeparatedGrid.h>

#include <cstddef>
#include <memory>
#include <vector>

/**
 * Predictions over a grid as sums along one axis (AxisSums), for each combination of the other
 * axes. Costs a few operations per combination and case and some twenty per point.
 *
 * Memory: per thread about 2 MiB, and up to twice that for the correlations of each other axis.
 */
class GridSums
{
public:
    /** @param model has a correlation.
     *  @param axis  along which one input varies. */
    GridSums(const FittedKriging& model, const std::vector<double*>& columns,
             const ProductGrid& grid, std::size_t axis);

    /** One number per row of the grid, NaN where a coordinate is not finite. */
    void predict(int threads, double* result) const;

private:
    class Worker;

    void prepareSums();
    std::size_t panelRanges() const;

    FittedKriging model;                  // cases in ascending order along the axis
    SeparatedGrid separated;              // fast: the axis
    std::size_t axisStride;               // in rows of the grid
    std::vector<std::size_t> positions;   // on the axis, of its finite values in ascending order
    std::unique_ptr<const AxisSums> sums; // null: no value is finite
    std::size_t tileSize = 0;             // combinations of the other axes
    std::size_t panelsPerRange = 0;
};
