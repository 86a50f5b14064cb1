#pragma once

#include <mirel_fitting/machine/InstructionSet.h>

#include <cstddef>

/**
 * The inner loops of least squares by normal equations: sums of products of columns, and of columns
 * with coefficients. Columns are aligned to `lanes` doubles, and padded with zeros to a multiple of
 * `step` values.
 */
struct ProductKernels
{
    static constexpr std::size_t lanes = 8;
    static constexpr std::size_t step = 32;

    /** Columns at regular distances. */
    struct Columns
    {
        const double* values;
        std::size_t stride; ///< from column to column, a multiple of `lanes`
        std::size_t count;
    };

    /**
     * sums[(r * columns.count + c) * lanes + any of the lanes] += sum over k of rows[r][k] times
     * column c at k: the sum is that of the lanes. `sums` is aligned.
     * @param values a multiple of `step`.
     */
    void (*addProducts)(const double* const* rows, std::size_t rowCount, const Columns& columns,
                        std::size_t values, double* sums);

    /**
     * result[k] += sum over r of rows[r][k] times the sum over c of
     * coefficients[r * columns.count + c] times column c at k. `result` is aligned and padded.
     */
    void (*addForm)(const double* const* rows, std::size_t rowCount, const Columns& columns,
                    const double* coefficients, std::size_t values, double* result);

    /** Those of instructionSet(). */
    static const ProductKernels& best();
};

// One per source file, each compiled for its instruction set.
extern const ProductKernels productKernelsBaseline;
#ifdef SURROGATE_X86_KERNELS
extern const ProductKernels productKernelsAvx2;
extern const ProductKernels productKernelsAvx512;
#endif
