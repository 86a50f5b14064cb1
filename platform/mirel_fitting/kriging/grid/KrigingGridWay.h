#pragma once

#include <mirel_fitting/grid/ProductGrid.h>
#include <mirel_fitting/kriging/prediction/KrigingPredictor.h>

#include <cstddef>
#include <vector>

/** The way that predictions over a grid take, of those that KrigingGrid knows, and what it costs in
 *  multiplications of eight pairs of numbers: estimates. */
struct KrigingGridWay
{
    enum class Method
    {
        Line,
        Product,
        Sums,
        Condensing
    };

    /** The fastest. */
    static KrigingGridWay best(const KrigingPredictor::Parts& parts, const ProductGrid& grid);

    /** Point by point. */
    static double costOfPoints(const KrigingPredictor::Parts& parts, const ProductGrid& grid);

    /** How many of the axes, from the fastest, form the fast group of a product: both groups have
     *  as few combinations as possible, since each is a row of correlations to be computed.
     *  @param axes two at least. */
    static std::size_t bestSplit(const std::vector<ProductGrid::Axis>& axes, std::size_t rows);

    double cost;
    Method method;
    std::size_t axis; ///< that is summed along, or condensed
};
