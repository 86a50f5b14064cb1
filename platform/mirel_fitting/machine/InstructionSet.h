#pragma once

#include <mirel_fitting/Export.h>

/**
 * The instruction sets that Kriging predictions are compiled for. Their results differ by rounding:
 * Avx2 and Avx512 fuse multiplications with additions; both give the same bits.
 */
enum class InstructionSet
{
    Baseline, ///< what every processor of the architecture has
    Avx2,     ///< x86-64 with AVX2 and FMA
    Avx512    ///< x86-64 with AVX-512F and AVX-512DQ
};

/**
 * Limits the instruction sets that predictions may use, for the whole process. Avx512, the default,
 * means no limit. Fits use BLAS, which chooses for itself: their last digits depend on the
 * processor.
 */
MIREL_FITTING_EXPORT void setInstructionSetLimit(InstructionSet limit);

/** The one in force: the best that limit, build and processor allow. */
MIREL_FITTING_EXPORT InstructionSet instructionSet();
