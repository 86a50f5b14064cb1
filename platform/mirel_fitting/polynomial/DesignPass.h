#pragma once

#include <mirel_fitting/cases/ColumnScale.h>
#include <mirel_fitting/cases/WeightedBlocks.h>
#include <mirel_fitting/machine/AlignedBuffer.h>
#include <mirel_fitting/machine/OrderedChunks.h>
#include <mirel_fitting/numerics/BlockedLeastSquares.h>
#include <mirel_fitting/polynomial/QuadraticBasis.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

/** The columns that a polynomial is fitted to, and how they are scaled. All is borrowed. */
struct FitColumns
{
    const QuadraticBasis& basis;
    const std::vector<double*>& inputs;
    const std::vector<double*>& outputs;
    std::size_t cases;
    const std::vector<ColumnScale>& inputScales;
    const std::vector<ColumnScale>& outputScales;
    const WeightedBlocks& weightedBlocks;
};

/**
 * One thread's part of a pass over the cases: evaluates terms of the scaled inputs at one block of
 * rows after the other, so that the design matrix is never held as a whole. Derived classes process
 * the blocks.
 *
 * Both are multiplied by the roots of the cases' weights. The columns of the cases' blocks are
 * numbered after the terms of the basis.
 */
class DesignPass : public OrderedChunks::Worker
{
public:
    static constexpr std::size_t rowsPerBlock = BlockedLeastSquares::rowsPerBlock;

    /**
     * Passes over all cases with the threads that setThreadCount() allows.
     * @param from, to what FitProgress reports at the start and the end, from 0 to 1.
     * @throw SurrogateModelInterface::Error if a FitProgress cancels.
     */
    static void run(const FitColumns& columns,
                    const std::function<std::unique_ptr<DesignPass>()>& makePass, double from,
                    double to);

    void compute(std::size_t chunk) final;

protected:
    /** @param columns, terms are borrowed for life. @param terms the columns of the design. */
    DesignPass(const FitColumns& columns, const std::vector<std::size_t>& terms);

    /** Before the blocks of a chunk. */
    virtual void begin() = 0;

    /** `design` and `outputs` hold `rows` rows, of the cases from `firstRow` on; both may be
     *  overwritten. Column c of either starts at c * rowsPerBlock. */
    virtual void addBlock(std::size_t firstRow, std::size_t rows) = 0;

    const FitColumns& columns;
    const std::vector<std::size_t>& terms;
    AlignedBuffer design;
    AlignedBuffer outputs;

private:
    void evaluate(std::size_t firstRow, std::size_t rows);

    AlignedBuffer scaledInputs;
    std::vector<const double*> scaledInputColumns;
};
