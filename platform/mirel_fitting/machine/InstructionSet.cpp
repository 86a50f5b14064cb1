#include <mirel_fitting/machine/InstructionSet.h>

#include <algorithm>
#include <atomic>

namespace {

std::atomic<InstructionSet> limit{InstructionSet::Avx512};

InstructionSet bestOfProcessor()
{
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq")) {
        return InstructionSet::Avx512;
    }
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")) {
        return InstructionSet::Avx2;
    }
#endif
    return InstructionSet::Baseline;
}

} // namespace

void setInstructionSetLimit(InstructionSet newLimit)
{
    limit = newLimit;
}

InstructionSet instructionSet()
{
    static const InstructionSet best = bestOfProcessor();
    return std::min(best, limit.load());
}
