#include <mirel_fitting/numerics/SmallCholesky.h>

#include <mirel_fitting/machine/SimdLanes.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr std::size_t tile = laneCount;

/** columns -= the products of earlier columns: eight rows of the eight columns from `first` on. */
SURROGATE_LANE_OPERATION subtractEarlier(const double* factor, std::size_t width, std::size_t first,
                                         std::size_t row, Lanes (&columns)[tile])
{
    for (std::size_t k = 0; k < first; ++k) {
        const double* column = factor + k * width;
        Lanes rows;
        loadLanes(column + row, rows);
#pragma GCC unroll 8
        for (std::size_t c = 0; c < tile; ++c) {
            columns[c] -= rows * column[first + c];
        }
    }
}

/** Forward substitution with the tile of the factor on the diagonal at `first`, for eight right
 *  sides at once: each vector is one unknown of the eight systems. */
SURROGATE_LANE_OPERATION solveTile(const double* factor, std::size_t width, std::size_t first,
                                   Lanes (&unknowns)[tile])
{
#pragma GCC unroll 8
    for (std::size_t c = 0; c < tile; ++c) {
        const double* corner = factor + (first + c) * width + first;
        unknowns[c] = unknowns[c] / corner[c];
#pragma GCC unroll 8
        for (std::size_t later = c + 1; later < tile; ++later) {
            unknowns[later] -= unknowns[c] * corner[later];
        }
    }
}

/** The factor of a tile on the diagonal; false if that is not positive definite. */
SURROGATE_SIMD bool factoriseDiagonal(double* factor, std::size_t width, std::size_t first)
{
    Lanes columns[tile];
    for (std::size_t c = 0; c < tile; ++c) {
        loadLanes(factor + (first + c) * width + first, columns[c]);
    }
    subtractEarlier(factor, width, first, first, columns);
    bool isDefinite = true;
#pragma GCC unroll 8
    for (std::size_t c = 0; c < tile; ++c) {
        const double pivot = columns[c][c];
        isDefinite = isDefinite && pivot > 0.0;
        columns[c] = columns[c] / std::sqrt(pivot);
#pragma GCC unroll 8
        for (std::size_t later = c + 1; later < tile; ++later) {
            columns[later] -= columns[c] * columns[c][later];
        }
    }
    for (std::size_t c = 0; c < tile; ++c) {
        double* column = factor + (first + c) * width + first;
        storeLanes(columns[c], column);
        std::fill(column, column + c, 0.0);
    }
    return isDefinite;
}

/** The rows of the factor below a tile on the diagonal. */
SURROGATE_SIMD void factoriseBelow(double* factor, std::size_t width, std::size_t first)
{
    for (std::size_t row = first + tile; row < width; row += tile) {
        Lanes columns[tile];
        for (std::size_t c = 0; c < tile; ++c) {
            loadLanes(factor + (first + c) * width + row, columns[c]);
        }
        subtractEarlier(factor, width, first, row, columns);
        solveTile(factor, width, first, columns);
        for (std::size_t c = 0; c < tile; ++c) {
            storeLanes(columns[c], factor + (first + c) * width + row);
        }
    }
}

/** The inverse of the factor, by rows: forward substitution of the columns of the identity. */
SURROGATE_SIMD void invertFactor(const double* factor, std::size_t width, double* result)
{
    for (std::size_t row = 0; row < width; row += tile) {
        for (std::size_t column = 0; column <= row; column += tile) {
            Lanes rows[tile];
            for (std::size_t r = 0; r < tile; ++r) {
                rows[r] = Lanes{};
                if (column == row) {
                    rows[r][r] = 1.0;
                }
            }
            for (std::size_t k = column; k < row; ++k) {
                const double* left = factor + k * width + row;
                Lanes above;
                loadLanes(result + k * width + column, above);
#pragma GCC unroll 8
                for (std::size_t r = 0; r < tile; ++r) {
                    rows[r] -= above * left[r];
                }
            }
            solveTile(factor, width, row, rows);
            for (std::size_t r = 0; r < tile; ++r) {
                storeLanes(rows[r], result + (row + r) * width + column);
            }
        }
    }
}

/** The lower triangle of X' X, X lower triangular by rows; whole tiles on the diagonal. */
SURROGATE_SIMD void multiplyByTranspose(const double* x, std::size_t width, double* result)
{
    for (std::size_t column = 0; column < width; column += tile) {
        for (std::size_t row = column; row < width; row += tile) {
            Lanes columns[tile] = {};
            for (std::size_t k = row; k < width; ++k) {
                const double* factors = x + k * width + column;
                Lanes rows;
                loadLanes(x + k * width + row, rows);
#pragma GCC unroll 8
                for (std::size_t c = 0; c < tile; ++c) {
                    columns[c] += rows * factors[c];
                }
            }
            for (std::size_t c = 0; c < tile; ++c) {
                storeLanes(columns[c], result + (column + c) * width + row);
            }
        }
    }
}

} // namespace

SmallCholesky::SmallCholesky(std::size_t order)
    : order(order), width(AlignedBuffer::padded(order)), factor(width * width),
      factorInverse(width * width), inverse(width * width)
{}

bool SmallCholesky::factorise(double* matrix)
{
    for (std::size_t j = 0; j < order; ++j) {
        // Tiles are processed whole: above the diagonal, where nothing is read, zeros keep NaN out.
        double* column = factor.data() + j * width;
        std::fill(column + j / tile * tile, column + j, 0.0);
        std::copy(matrix + j * order + j, matrix + (j + 1) * order, column + j);
        std::fill(column + order, column + width, 0.0);
    }
    for (std::size_t j = order; j < width; ++j) {
        double* column = factor.data() + j * width;
        std::fill(column + j / tile * tile, column + width, 0.0);
        column[j] = 1.0;
    }
    for (std::size_t first = 0; first < width; first += tile) {
        if (!factoriseDiagonal(factor.data(), width, first)) {
            return false;
        }
        factoriseBelow(factor.data(), width, first);
    }
    for (std::size_t j = 0; j < order; ++j) {
        const double* column = factor.data() + j * width;
        std::copy(column + j, column + order, matrix + j * order + j);
    }
    return true;
}

const double* SmallCholesky::invert()
{
    invertFactor(factor.data(), width, factorInverse.data());
    multiplyByTranspose(factorInverse.data(), width, inverse.data());
    return inverse.data();
}
