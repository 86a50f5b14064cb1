#include <mirel_fitting/kriging/correlation/MaternKernels.h>

namespace {

using Vector = double __attribute__((vector_size(16), may_alias));
using VectorBits = long long __attribute__((vector_size(16), may_alias));
using VectorWords = unsigned short __attribute__((vector_size(16), may_alias));

constexpr bool isFused = false;
constexpr std::size_t casesAtOnce = 16;

inline Vector multiplyAdd(Vector a, Vector b, Vector c)
{
    return a * b + c;
}

inline Vector larger(Vector a, Vector b)
{
    return a > b ? a : b;
}

} // namespace

#include <mirel_fitting/kriging/correlation/MaternKernelsTemplate.h>

const MaternKernels maternKernelsBaseline = {&addWeightedSums, &correlate, &addWeightedGradients,
                                             &addProducts};
