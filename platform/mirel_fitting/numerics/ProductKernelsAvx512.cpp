#include <mirel_fitting/numerics/ProductKernels.h>

#include <immintrin.h>

namespace {

using Vector = double __attribute__((vector_size(64), may_alias));

constexpr std::size_t tileRows = 4;

inline Vector multiplyAdd(Vector a, Vector b, Vector c)
{
    return _mm512_fmadd_pd(a, b, c);
}

} // namespace

#include <mirel_fitting/numerics/ProductKernelsTemplate.h>

const ProductKernels productKernelsAvx512 = {&addProducts, &addForm};
