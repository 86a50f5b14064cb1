#include <mirel_fitting/kriging/correlation/MaternKernels.h>

#include <immintrin.h>

namespace {

using Vector = double __attribute__((vector_size(32), may_alias));
using VectorBits = long long __attribute__((vector_size(32), may_alias));
using VectorWords = unsigned short __attribute__((vector_size(32), may_alias));

constexpr bool isFused = true;
constexpr std::size_t casesAtOnce = 16;

inline Vector multiplyAdd(Vector a, Vector b, Vector c)
{
    return _mm256_fmadd_pd(a, b, c);
}

inline Vector larger(Vector a, Vector b)
{
    return _mm256_max_pd(a, b);
}

} // namespace

#include <mirel_fitting/kriging/correlation/MaternKernelsTemplate.h>

const MaternKernels maternKernelsAvx2 = {&addWeightedSums, &correlate, &addWeightedGradients,
                                         &addProducts};
