#include <mirel_fitting/numerics/ProductKernels.h>

const ProductKernels& ProductKernels::best()
{
#ifdef SURROGATE_X86_KERNELS
    switch (instructionSet()) {
    case InstructionSet::Avx512:
        return productKernelsAvx512;
    case InstructionSet::Avx2:
        return productKernelsAvx2;
    case InstructionSet::Baseline:
        break;
    }
#endif
    return productKernelsBaseline;
}
