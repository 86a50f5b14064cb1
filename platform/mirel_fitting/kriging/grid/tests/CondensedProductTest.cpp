#include <mirel_fitting/kriging/grid/CondensedProduct.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace {

TEST(CondensedProduct, AddsTheSumsOverAllCases)
{
    const std::size_t cases = 45;
    const std::size_t fastCount = 7;
    const std::size_t slowCount = 21;
    const std::size_t stride = cases + 3;
    UniformNumbers numbers(3);
    std::vector<double> z = numbers.next(cases);
    std::sort(z.begin(), z.end());
    const std::vector<double> values = {0.0, 0.9, 0.1, 0.4, 0.3, 0.8, 1.2, 0.6};
    std::vector<double> fastRows = numbers.next(fastCount * stride);
    std::vector<double> slowRows = numbers.next(slowCount * stride);
    for (double& weight : slowRows) {
        weight -= 0.5;
    }
    const AxisFactors factors(values, std::vector<char>(values.size(), 1), z);
    const CondensedProduct product(factors, fastRows.data(), stride, fastCount);

    const std::size_t paddedCount = 32;
    AlignedBuffer workspace(paddedCount * product.workspacePerRow());
    std::fill_n(workspace.data(), paddedCount * product.workspacePerRow(),
                std::numeric_limits<double>::quiet_NaN());
    std::vector<double> result(slowCount * values.size() * fastCount, 100.0);
    product.add(slowRows.data(), stride, slowCount, workspace.data(), result.data());

    for (std::size_t s = 0; s < slowCount; ++s) {
        for (std::size_t v = 0; v < values.size(); ++v) {
            for (std::size_t f = 0; f < fastCount; ++f) {
                long double expected = 100.0L;
                for (std::size_t j = 0; j < cases; ++j) {
                    const long double u = std::fabs(static_cast<long double>(values[v]) - z[j]);
                    expected += fastRows[f * stride + j] * (1.0L + u + u * u / 3.0L) *
                                std::exp(-u) * slowRows[s * stride + j];
                }
                ASSERT_NEAR(result[(s * values.size() + v) * fastCount + f],
                            static_cast<double>(expected), 1e-13);
            }
        }
    }
}

} // namespace
