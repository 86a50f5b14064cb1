#pragma once

#include <mirel_fitting/kriging/grid/GridAxis.h>

#include <cstddef>
#include <vector>

/**
 * A group of axes of a product grid. Each of its combinations is a row: correlations with the
 * cases, then what the trend takes from the group.
 */
class GridSide
{
public:
    /** @param chosen positions among the axes of the grid, ascending. */
    GridSide(const KrigingPredictor::Parts& parts, const std::vector<double*>& columns,
             const ProductGrid& grid, const std::vector<std::size_t>& chosen);

    struct Place
    {
        const GridAxis* axis;
        std::size_t index; ///< of the input on its axis
        double centred(std::size_t combination) const;
    };
    /** Where the input varies; no axis if it does not vary on this side. */
    Place placeOf(std::size_t input) const;

    bool isFinite(std::size_t combination) const;

    /** The sum of some terms of the trend, of which only factors on this side remain. */
    struct Polynomial
    {
        struct Term
        {
            double coefficient;
            std::vector<Place> factors;
        };
        std::vector<Term> terms;

        double at(std::size_t combination) const;
        /** At all `values` of the only axis of a side. */
        std::vector<double> along(std::size_t values) const;
    };

    std::vector<GridAxis> axes; ///< from the fastest; never moved, as places point to them
    std::size_t size = 1;       ///< number of combinations
    /** What every row of correlations is multiplied with; empty: nothing. */
    std::vector<double> factors;
    /** What follows the correlations in a row. */
    std::vector<Polynomial> trend;
};
