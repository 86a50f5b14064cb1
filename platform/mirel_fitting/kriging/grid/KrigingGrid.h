#pragma once

#include <mirel_fitting/grid/ProductGrid.h>
#include <mirel_fitting/kriging/prediction/KrigingPredictor.h>

#include <cstddef>
#include <memory>
#include <vector>

class AxisSums;
class CondensedProduct;
class GridAxis;
class GridSide;
class KrigingLine;

/**
 * Predictions over a product grid. The correlation is a product over the inputs, so that a grid
 * needs far fewer correlations than it has points. In one of these ways, whichever is fastest:
 *
 * - Along a line it is summed gap by gap between the cases (KrigingLine).
 * - For each combination of all axes but one, a long one with one input, the weighted correlations
 *   of the cases are summed along that axis by AxisSums: a few operations per combination and case,
 *   and some twenty per point.
 * - The axes are split into a fast and a slow group, and the predictions are a matrix product:
 *   correlations of the fast combinations with the cases, times weighted ones of the slow
 *   combinations. Two operations for each point and case remain, which the matrix product does near
 *   the speed limit of the machine.
 * - For axes of some ten to fifty values, the values of one axis between the two groups are reached
 *   through few moments of the cases between two neighbouring values (CondensedProduct): that
 *   matrix product with fewer columns.
 *
 * A prediction differs from the scattered one by rounding: by 4 eps times the sum of |w_j c_j| and
 * 1e-12 of the output's standard deviation at most. Memory: the correlations of each value of each
 * axis (up to 16 MiB an axis, else computed as they are needed) and some MiB per thread.
 */
class KrigingGrid
{
public:
    /** Whether there is enough repetition to be faster than point by point. */
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
    class CondensingWorker;
    class ProductWorker;
    class SumWorker;

    const MaternCorrelation& correlation() const;
    void sortCases(const GridAxis& axis);
    std::vector<double> fixInputs(const std::vector<double*>& columns, const ProductGrid& grid);
    void splitTrend(const std::vector<double>& fixed);
    void prepareProduct();
    void prepareSums();
    void prepareCondensing(GridSide others);
    std::size_t tilesOf(const GridSide& side) const;
    std::size_t panelRanges() const;

    const KrigingPredictor::Parts& parts;
    std::size_t rows;
    double cost;                             // an estimate
    std::unique_ptr<const KrigingLine> line; // then nothing else is needed
    bool isNowhereFinite = false;
    std::unique_ptr<GridSide> fast; // with sums: the axis along which they run
    std::unique_ptr<GridSide> slow;
    std::size_t tileSize; // combinations of a side

    // For sums and condensing: the cases by their coordinate on that axis.
    std::unique_ptr<const MaternCorrelation> sorted;

    // For condensing; else empty.
    std::unique_ptr<const CondensedProduct> condensed;
    std::vector<double> fastTrend; // polynomial by polynomial

    // For sums; else empty.
    std::unique_ptr<const AxisSums> sums;
    std::vector<std::size_t> positions; // on the axis, of the values in ascending order
    std::size_t summedStride = 1;       // in rows of the grid
    std::size_t panelsPerRange = 0;
};
