#pragma once

#include <mirel_fitting/grid/ProductGrid.h>
#include <mirel_fitting/polynomial/PolynomialPredictor.h>

#include <cstddef>
#include <vector>

/**
 * Fitted polynomials over a Cartesian grid. Rows are parted into runs in which only the fast inputs
 * vary, in each run alike. With the slow inputs held, a run is
 *
 *   y = a(fast) + b + sum over the fast inputs k of z_k l_k,
 *
 * a the terms of fast inputs alone, the same for all runs; b those of slow inputs alone; l_k what
 * the products of input k with slow inputs make of its slope. a costs as much as a run of single
 * points, b and l_k are needed once per run, and what is left are two operations per fast input.
 *
 * Where columns differ from a grid there is no gain, and isWorthwhile() is false.
 */
class PolynomialGrid
{
public:
    using Output = PolynomialPredictor::Output;

    /** Everything is borrowed. @param columns one per input of the predictor, of all rows. */
    PolynomialGrid(const PolynomialPredictor& predictor, const std::vector<double*>& columns,
                   const ProductGrid& grid);

    /** Whether it costs less than the same points one by one. */
    static bool isWorthwhile(const ProductGrid& grid, std::size_t inputs);

    /** The same rows as consecutive grids of at most so many runs, each of at most so many points:
     *  what is held grows with both. */
    static std::vector<ProductGrid> cut(const ProductGrid& grid, std::size_t most);

    /**
     * A point with a coordinate that is not finite gets NaN. From the polynomial of single points
     * it differs by rounding: both are within 4 epsilon of the sum of the magnitudes of the terms.
     * @param result receives rowCount() values of the grid.
     */
    void predict(const Output& output, double* result) const;

private:
    /** A group of inputs, and their scaled values at as many points as needed. */
    struct Side
    {
        std::vector<std::size_t> inputs;
        std::size_t points = 0;
        std::vector<double> coordinates; ///< of one input after the other
        std::vector<double> notFinite;   ///< NaN for a point that is not finite, else 0

        const double* values(std::size_t k) const { return coordinates.data() + k * points; }
    };

    static std::size_t runLength(const ProductGrid& grid);
    void read(const std::vector<double*>& columns, std::size_t first, std::size_t step,
              Side& side) const;
    std::vector<double> alone(const Output& output, const Side& side) const;
    std::vector<double> slopes(const Output& output) const;

    const PolynomialPredictor& predictor;
    Side fast;
    Side slow;
};
