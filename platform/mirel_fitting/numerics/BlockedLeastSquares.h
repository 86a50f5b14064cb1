#pragma once

#include <cstddef>
#include <vector>

/**
 * Least squares for a design matrix that is never held as a whole. Rows arrive in blocks; each
 * block is rotated into one triangular factor by Householder reflections, so that memory does not
 * grow with the number of rows and no accuracy is lost to normal equations.
 * Golub, Van Loan: Matrix Computations, 4th ed., Johns Hopkins 2013, 5.2 and 12.5 (updating);
 * Demmel, Grigori, Hoemmen, Langou: Communication-optimal parallel and sequential QR and LU
 * factorizations, SIAM J. Sci. Comput. 34 (2012).
 *
 * Matrices are column-major. The first column of the design must be the constant 1.
 */
class BlockedLeastSquares
{
public:
    /** Fixed, so that results do not depend on the machine. A block of 45 columns takes 184 KB and
     *  stays in a second-level cache. */
    static constexpr std::size_t rowsPerBlock = 512;

    /** The properties of a column of the design that decide whether it is kept. */
    struct Column
    {
        static constexpr std::size_t noParent = static_cast<std::size_t>(-1);

        /** Constant up to rounding: the column is dropped. */
        bool isConstant = false;
        /** Rounding error of the column's values, from the data they are computed from. */
        double rounding = 0.0;
        /** Earlier columns without which this one is dropped, too. */
        std::size_t parents[2] = {noParent, noParent};
    };

    /** Dependences that are listed: more would cost as much as the factorisation. */
    static constexpr std::size_t maxDependences = 300;

    /** A column that was dropped for being a combination of those kept before it. */
    struct Dependence
    {
        std::size_t column;
        std::vector<double> combination; ///< one coefficient per entry of Solution::kept before it
    };

    struct Solution
    {
        /** The columns that the rows can separate, ascending. The others have no coefficient. */
        std::vector<std::size_t> kept;
        /** Upper triangular, kept.size() squared: the kept columns are an orthonormal matrix times
         *  this one. */
        std::vector<double> factor;
        /** kept.size() coefficients per output, in the order of `kept`. */
        std::vector<double> coefficients;
        /** The first maxDependences; without columns that are constant or whose parents are
         *  dropped. */
        std::vector<Dependence> dependences;
    };

    BlockedLeastSquares(std::size_t columns, std::size_t outputs);

    /**
     * @param design  `rows` rows of all columns, at most rowsPerBlock; overwritten.
     * @param outputs as many rows of all outputs; overwritten.
     * Column c of either starts at c * rowsPerBlock.
     */
    void addRows(double* design, double* outputs, std::size_t rows);

    /** Adds the rows that `other` has been given, with the same columns and outputs. */
    void merge(BlockedLeastSquares&& other);

    /**
     * Decides, from the first column to the last, which columns to keep, and solves for those. A
     * column is dropped if its part orthogonal to the kept ones is shorter than separableFraction
     * of the column, or than the rounding of the data may make it.
     */
    Solution solve(const std::vector<Column>& descriptions) const;

    /** Far above the rounding of the factorisation, which leaves about 1e-14 of a dependent column;
     *  small enough to keep every column whose coefficient still has six digits. */
    static constexpr double separableFraction = 1e-10;

private:
    std::size_t columnCount;
    std::size_t outputCount;
    std::size_t rowCount = 0;
    std::vector<double> triangle;       // columnCount squared
    std::vector<double> rotatedOutputs; // columnCount rows of all outputs
    std::vector<double> reflectorBlock;
    std::vector<double> workspace;
};
