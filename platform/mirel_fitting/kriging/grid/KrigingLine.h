#pragma once

#include <mirel_fitting/grid/ProductGrid.h>
#include <mirel_fitting/kriging/prediction/KrigingPredictor.h>
#include <mirel_fitting/machine/AlignedBuffer.h>

#include <cstddef>
#include <vector>

/**
 * Predictions along one input, of points in any order. Between two neighbouring cases, in the order
 * of that input, the sum over the cases is
 *
 *   exp(-u) (a_0 + a_1 u + a_2 u^2) + exp(-v) (b_0 + b_1 v + b_2 v^2),
 *
 * u and v being the distances from the two: see AxisSums. The coefficients of all these gaps take
 * O(n) operations for n cases, carried from case to case in extended precision; a point takes two
 * exponentials, however many cases there are.
 */
class KrigingLine
{
public:
    /** @param grid has one axis, along which one input varies. Parts and columns are borrowed. */
    KrigingLine(const KrigingPredictor::Parts& parts, const std::vector<double*>& columns,
                const ProductGrid& grid);

    /** The same bits for any number of threads; NaN where a coordinate is not finite.
     *  @param result one number per row of the grid. */
    void predict(int threads, double* result) const;

private:
    class Worker;

    void prepareGaps(std::vector<double> weights);
    void prepareTrend(const std::vector<double>& fixed);

    const KrigingPredictor::Parts& parts;
    const std::vector<double*>& columns;
    ProductGrid grid;
    std::size_t input = 0; ///< that varies, as an index of the parts
    bool isNowhereFinite = false;
    std::vector<double> cases; ///< scaled, ascending
    std::vector<double> gaps;  ///< in front of each case, and behind the last one
    double trend[3] = {};      ///< in powers of the centred coordinate
};
