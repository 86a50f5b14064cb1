#pragma once

#include <mirel_fitting/KrigingPredictor.h>
#include <mirel_fitting/ProductGrid.h>

#include <cstddef>
#include <memory>
#include <vector>

/**
 * Predictions over a product grid. The correlation is a product over the inputs, so that the axes
 * split into a fast and a slow group, and the predictions are a matrix product: correlations of the
 * fast combinations with the cases, times weighted ones of the slow combinations. The trend
 * follows as some more columns of both. Two to three operations for each point and case remain,
 * which the matrix product does near the speed limit of the machine.
 *
 * A prediction differs from the scattered one by rounding: by 4 eps times the sum of |w_j c_j| and
 * 1e-12 of the output's standard deviation at most. Memory: the correlations of each value of each
 * axis (up to 16 MiB an axis, else computed as they are needed) and some MiB per thread.
 */
class KrigingGrid
{
public:
    /** Whether there is enough repetition for the matrix product to pay. */
    static bool isWorthwhile(const KrigingPredictor::Parts& parts, const ProductGrid& grid);

    /** @param parts are borrowed until the prediction is done. */
    KrigingGrid(const KrigingPredictor::Parts& parts, const std::vector<double*>& columns,
                const ProductGrid& grid);
    ~KrigingGrid();

    /** On as many threads as setThreadCount() allows, with the same bits for any number of them. A
     *  point with a coordinate that is not finite gets NaN.
     *  @param result one number per row of the grid. */
    void predict(double* result) const;

private:
    class Axis;
    class Side;
    class Tile;
    class Worker;

    void splitTrend(const std::vector<double>& fixed);
    std::size_t tilesOf(const Side& side) const;

    const KrigingPredictor::Parts& parts;
    std::size_t rows;
    bool isNowhereFinite = false;
    std::unique_ptr<Side> fast;
    std::unique_ptr<Side> slow;
    std::size_t tileSize;
};
