#pragma once

#include <mirel_fitting/kriging/correlation/MaternKernels.h>
#include <mirel_fitting/kriging/grid/AxisFactors.h>
#include <mirel_fitting/machine/AlignedBuffer.h>

#include <cstddef>
#include <vector>

/**
 * Sums over the cases j of a_fj c_vj b_sj for all f, v and s: rows a of the fast combinations of a
 * grid, correlations c of the values of one axis between, and rows b of the slow combinations. With
 * AxisFactors for c: first the sums of a_fj caseFactor_kj b_sj, which are fewer operations than
 * those of all values, then their products with the value factors. Each result is the same whatever
 * others there are.
 */
class CondensedProduct
{
public:
    /** @param fastRows `fastCount` rows of one number per case, `stride` apart; copied. */
    CondensedProduct(const AxisFactors& factors, const double* fastRows, std::size_t stride,
                     std::size_t fastCount);

    /** Slow rows are best added by multiples of this number. */
    static constexpr std::size_t rowsAtATime = MaternKernels::packedColumns;

    /** Numbers of workspace for each slow row at a time. */
    std::size_t workspacePerRow() const;

    /**
     * result[(s * values + v) * fastCount + f] += the sum, for `count` slow rows.
     * @param workspace aligned, workspacePerRow() numbers for each, `count` being rounded up to
     *                  a multiple of rowsAtATime; whatever they are.
     */
    void add(const double* slowRows, std::size_t stride, std::size_t count, double* workspace,
             double* result) const;

private:
    struct Group // of cases
    {
        std::size_t firstCase;
        std::size_t cases;
        std::size_t firstColumn;
        std::size_t columns;
        std::size_t position; // within what belongs to a panel
    };

    std::size_t cases() const { return groups.back().firstCase + groups.back().cases; }
    void arrange(const AxisFactors& factors, const double* fastRows, std::size_t stride);

    std::size_t fastCount;
    std::size_t columnCount; // of factors
    std::size_t panels; // of fast combinations, `lanes` each, the last one filled up with zeros
    std::size_t values;
    std::size_t perPanel = 0;
    std::vector<Group> groups;
    AlignedBuffer rows; // of a panel, times each column of case factors: case by case
    std::vector<double> valueFactors;
};
