#pragma once

#include <mirel_fitting/Export.h>

/**
 * The instruction sets that Kriging predictions and fits of response surfaces to many cases are
 * compiled for. Their results differ by rounding: Avx2 and Avx512 fuse multiplications with
 * additions. Predictions have the same bits by both; the fits sum in another order.
 */
enum class InstructionSet
{
    Baseline, ///< what every processor of the architecture has
    Avx2,     ///< x86-64 with AVX2 and FMA
    Avx512    ///< x86-64 with AVX-512F and AVX-512DQ
};

/**
 * Limits the instruction sets that these may use, for the whole process: for the same bits on
 * processors that differ. Avx512, the default, means no limit.
 */
MIREL_FITTING_EXPORT void setInstructionSetLimit(InstructionSet limit);

/** The one in force: the best that limit, build and processor allow. */
MIREL_FITTING_EXPORT InstructionSet instructionSet();
