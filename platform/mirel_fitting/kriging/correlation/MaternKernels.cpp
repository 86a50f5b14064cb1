#include <mirel_fitting/kriging/correlation/MaternKernels.h>

const MaternKernels& MaternKernels::best()
{
#ifdef SURROGATE_X86_KERNELS
    switch (instructionSet()) {
    case InstructionSet::Avx512:
        return maternKernelsAvx512;
    case InstructionSet::Avx2:
        return maternKernelsAvx2;
    case InstructionSet::Baseline:
        break;
    }
#endif
    return maternKernelsBaseline;
}
