#pragma once

#include <mirel_fitting/kriging/grid/GridAxis.h>

#include <cstddef>
#include <vector>

/**
 * Some axes of a product grid. Each combination of their values has a row of numbers (see
 * AxisGroupRows): the correlations with the cases, then one value per trend polynomial.
 */
class AxisGroup
{
public:
    /** @param chosen positions among the axes of the grid, ascending. */
    AxisGroup(const FittedKriging& model, const std::vector<double*>& columns,
              const ProductGrid& grid, const std::vector<std::size_t>& chosen);

    AxisGroup(const AxisGroup&) = delete; // inputs point to its axes
    AxisGroup& operator=(const AxisGroup&) = delete;

    /** An input that varies along an axis. */
    struct Input
    {
        const GridAxis* axis; ///< null: it does not vary in this group
        std::size_t index;    ///< among the inputs of the axis
        double centred(std::size_t combination) const;
    };
    Input find(std::size_t input) const;

    bool isFinite(std::size_t combination) const;

    /** Some terms of the trend, reduced to their factors in this group. */
    struct Polynomial
    {
        struct Term
        {
            double coefficient;
            std::vector<Input> factors;
        };
        std::vector<Term> terms;

        double at(std::size_t combination) const;
        /** At all `values` of the only axis of a group. */
        std::vector<double> along(std::size_t values) const;
    };

    std::vector<GridAxis> axes; ///< from the fastest
    std::size_t size = 1;       ///< number of combinations
    /** One factor per case for the correlations of every row; empty: 1. */
    std::vector<double> factors;
    std::vector<Polynomial> trend;
};
