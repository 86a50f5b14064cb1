#include <mirel_fitting/kriging/grid/CondensedProduct.h>

#include <algorithm>

namespace {

constexpr std::size_t lanes = MaternKernels::lanes;

/** Block by block of `rowsAtATime` rows, case by case, with zeros in place of rows that lack. */
void pack(const double* rows, std::size_t stride, std::size_t count, std::size_t cases,
          double* packed)
{
    constexpr std::size_t rowsAtATime = CondensedProduct::rowsAtATime;
    for (std::size_t first = 0; first < count; first += rowsAtATime) {
        double* block = packed + first * cases;
        const std::size_t rowCount = std::min(rowsAtATime, count - first);
        if (rowCount < rowsAtATime) {
            std::fill_n(block, rowsAtATime * cases, 0.0);
        }
        for (std::size_t j = 0; j < cases; ++j) {
            for (std::size_t s = 0; s < rowCount; ++s) {
                block[j * rowsAtATime + s] = rows[(first + s) * stride + j];
            }
        }
    }
}

} // namespace

CondensedProduct::CondensedProduct(const AxisFactors& factors, const double* fastRows,
                                   std::size_t stride, std::size_t fastCount)
    : fastCount(fastCount), columnCount(factors.columns()), panels((fastCount + lanes - 1) / lanes),
      values(factors.valueFactors().size() / factors.columns()),
      valueFactors(factors.valueFactors())
{
    for (const AxisFactors::Group& group : factors.groups()) {
        const std::size_t cases = group.lastCase - group.firstCase;
        groups.push_back({group.firstCase, cases, group.firstColumn, group.columns, perPanel});
        perPanel += group.columns * cases * lanes;
    }
    rows = AlignedBuffer::uninitialised(panels * perPanel);
    arrange(factors, fastRows, stride);
}

void CondensedProduct::arrange(const AxisFactors& factors, const double* fastRows,
                               std::size_t stride)
{
    const std::size_t cases = factors.groups().back().lastCase;
    AlignedBuffer byCase(cases * lanes);
    for (std::size_t p = 0; p < panels; ++p) {
        for (std::size_t r = 0; r < lanes; ++r) {
            const std::size_t f = p * lanes + r;
            for (std::size_t j = 0; j < cases; ++j) {
                byCase.data()[j * lanes + r] = f < fastCount ? fastRows[f * stride + j] : 0.0;
            }
        }
        double* target = rows.data() + p * perPanel;
        for (const AxisFactors::Group& group : factors.groups()) {
            const double* source = byCase.data() + group.firstCase * lanes;
            for (const double factor : group.caseFactors) { // column by column
                for (std::size_t r = 0; r < lanes; ++r) {
                    target[r] = source[r] * factor;
                }
                target += lanes;
                source += lanes;
                if (source == byCase.data() + group.lastCase * lanes) {
                    source = byCase.data() + group.firstCase * lanes;
                }
            }
        }
    }
}

std::size_t CondensedProduct::workspacePerRow() const
{
    return cases() + (columnCount + values) * lanes;
}

void CondensedProduct::add(const double* slowRows, std::size_t stride, std::size_t count,
                           double* workspace, double* result) const
{
    const MaternKernels& kernels = MaternKernels::best();
    const AlignedBuffer zeros(lanes);
    const std::size_t paddedCount = (count + rowsAtATime - 1) / rowsAtATime * rowsAtATime;
    const std::size_t sumsPerRow = columnCount * lanes;
    double* const packed = workspace;
    double* const sums = packed + paddedCount * cases();
    double* const results = sums + paddedCount * sumsPerRow;
    pack(slowRows, stride, count, cases(), packed);

    for (std::size_t p = 0; p < panels; ++p) {
        for (const Group& group : groups) {
            const double* left = rows.data() + p * perPanel + group.position;
            // So few slow rows that they stay in the first-level cache for all columns.
            for (std::size_t s = 0; s < count; s += rowsAtATime) {
                const double* right = packed + s * cases() + group.firstCase * rowsAtATime;
                double* target = sums + s * sumsPerRow + group.firstColumn * lanes;
                for (std::size_t k = 0; k < group.columns; ++k) {
                    kernels.multiplyPacked(left + k * group.cases * lanes, right, group.cases,
                                           target + k * lanes, sumsPerRow);
                }
            }
        }
        const std::size_t first = p * lanes;
        const std::size_t used = std::min(lanes, fastCount - first);
        for (std::size_t s = 0; s < count; ++s) {
            const MaternKernels::Product product = {sums + s * sumsPerRow, lanes,
                                                    valueFactors.data(), columnCount, columnCount};
            kernels.addProducts(&product, 1, zeros.data(), 0, values, results, lanes);
            double* target = result + s * values * fastCount + first;
            for (std::size_t v = 0; v < values; ++v) {
                for (std::size_t r = 0; r < used; ++r) {
                    target[v * fastCount + r] += results[v * lanes + r];
                }
            }
        }
    }
}
