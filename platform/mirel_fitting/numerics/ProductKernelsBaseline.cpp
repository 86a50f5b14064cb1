#include <mirel_fitting/numerics/ProductKernels.h>

namespace {

using Vector = double __attribute__((vector_size(16), may_alias));

constexpr std::size_t tileRows = 2;

inline Vector multiplyAdd(Vector a, Vector b, Vector c)
{
    return a * b + c;
}

} // namespace

#include <mirel_fitting/numerics/ProductKernelsTemplate.h>

const ProductKernels productKernelsBaseline = {&addProducts, &addForm};
