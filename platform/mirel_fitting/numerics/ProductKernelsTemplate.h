// No include guard: what ProductKernels promises, for the vectors of the file that includes it.
// That file defines, in its unnamed namespace, Vector (so many doubles), multiplyAdd(a, b, c), and
// tileRows, at most 4: of so many rows by four columns the sums stay in registers. It includes
// nothing with inline functions of external linkage: a copy of such a function for a newer
// processor must not be the one that the linker keeps for all.
#include <mirel_fitting/numerics/ProductKernels.h>

#define SURROGATE_INLINE __attribute__((always_inline)) static inline

namespace {

using Columns = ProductKernels::Columns;

constexpr std::size_t width = sizeof(Vector) / sizeof(double);
constexpr std::size_t tileColumns = 4;

SURROGATE_INLINE Vector load(const double* from)
{
    return *reinterpret_cast<const Vector*>(from);
}

SURROGATE_INLINE void store(const Vector& value, double* to)
{
    *reinterpret_cast<Vector*>(to) = value;
}

/** Some rows by some columns, of the sums of a row that lie `sumStride` apart. */
template <std::size_t rowCount, std::size_t columnCount>
void addTile(const double* const* rows, const double* columns, std::size_t stride,
             std::size_t values, double* sums, std::size_t sumStride)
{
    constexpr std::size_t lanes = ProductKernels::lanes;
    Vector total[rowCount][columnCount];
    for (std::size_t r = 0; r < rowCount; ++r) {
        for (std::size_t c = 0; c < columnCount; ++c) {
            total[r][c] = load(sums + r * sumStride + c * lanes);
        }
    }
    for (std::size_t k = 0; k < values; k += width) {
        Vector column[columnCount];
        for (std::size_t c = 0; c < columnCount; ++c) {
            column[c] = load(columns + c * stride + k);
        }
        for (std::size_t r = 0; r < rowCount; ++r) {
            const Vector row = load(rows[r] + k);
            for (std::size_t c = 0; c < columnCount; ++c) {
                total[r][c] = multiplyAdd(row, column[c], total[r][c]);
            }
        }
    }
    for (std::size_t r = 0; r < rowCount; ++r) {
        for (std::size_t c = 0; c < columnCount; ++c) {
            store(total[r][c], sums + r * sumStride + c * lanes);
        }
    }
}

template <std::size_t rowCount>
void addRows(const double* const* rows, const Columns& columns, std::size_t values, double* sums)
{
    constexpr std::size_t lanes = ProductKernels::lanes;
    const std::size_t sumStride = columns.count * lanes;
    std::size_t c = 0;
    for (; c + tileColumns <= columns.count; c += tileColumns) {
        addTile<rowCount, tileColumns>(rows, columns.values + c * columns.stride, columns.stride,
                                       values, sums + c * lanes, sumStride);
    }
    for (; c < columns.count; ++c) {
        addTile<rowCount, 1>(rows, columns.values + c * columns.stride, columns.stride, values,
                             sums + c * lanes, sumStride);
    }
}

/** Calls action(first, count) for groups of rows, none larger than a tile and all about equal. */
template <typename Action>
SURROGATE_INLINE void inTiles(std::size_t rowCount, const Action& action)
{
    std::size_t tiles = (rowCount + tileRows - 1) / tileRows;
    for (std::size_t r = 0; r < rowCount;) {
        const std::size_t size = (rowCount - r + tiles - 1) / tiles;
        action(r, size);
        r += size;
        --tiles;
    }
}

void addProducts(const double* const* rows, std::size_t rowCount, const Columns& columns,
                 std::size_t values, double* sums)
{
    const std::size_t sumsPerRow = columns.count * ProductKernels::lanes;
    inTiles(rowCount, [&](std::size_t r, std::size_t size) {
        double* first = sums + r * sumsPerRow;
        switch (size) {
        case 1:
            return addRows<1>(rows + r, columns, values, first);
        case 2:
            return addRows<2>(rows + r, columns, values, first);
        case 3:
            return addRows<3>(rows + r, columns, values, first);
        default:
            return addRows<4>(rows + r, columns, values, first);
        }
    });
}

/** At so many values that their sums stay in registers. */
template <std::size_t rowCount>
void addFormOfRows(const double* const* rows, const Columns& columns, const double* coefficients,
                   std::size_t values, double* result)
{
    constexpr std::size_t vectors = 4;
    for (std::size_t k = 0; k < values; k += vectors * width) {
        Vector sums[rowCount][vectors] = {};
        for (std::size_t c = 0; c < columns.count; ++c) {
            Vector column[vectors];
            for (std::size_t v = 0; v < vectors; ++v) {
                column[v] = load(columns.values + c * columns.stride + k + v * width);
            }
            for (std::size_t r = 0; r < rowCount; ++r) {
                const Vector coefficient = Vector{} + coefficients[r * columns.count + c];
                for (std::size_t v = 0; v < vectors; ++v) {
                    sums[r][v] = multiplyAdd(coefficient, column[v], sums[r][v]);
                }
            }
        }
        for (std::size_t v = 0; v < vectors; ++v) {
            Vector total = load(result + k + v * width);
            for (std::size_t r = 0; r < rowCount; ++r) {
                total = multiplyAdd(load(rows[r] + k + v * width), sums[r][v], total);
            }
            store(total, result + k + v * width);
        }
    }
}

void addForm(const double* const* rows, std::size_t rowCount, const Columns& columns,
             const double* coefficients, std::size_t values, double* result)
{
    inTiles(rowCount, [&](std::size_t r, std::size_t size) {
        const double* first = coefficients + r * columns.count;
        switch (size) {
        case 1:
            return addFormOfRows<1>(rows + r, columns, first, values, result);
        case 2:
            return addFormOfRows<2>(rows + r, columns, first, values, result);
        case 3:
            return addFormOfRows<3>(rows + r, columns, first, values, result);
        default:
            return addFormOfRows<4>(rows + r, columns, first, values, result);
        }
    });
}

} // namespace
