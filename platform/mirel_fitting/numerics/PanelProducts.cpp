#include <mirel_fitting/numerics/PanelProducts.h>

namespace {

template <std::size_t columns>
SURROGATE_LANE_OPERATION addTo(const PanelProduct* products, std::size_t productCount,
                               const double* start, std::size_t startStride, double* result,
                               std::size_t stride, std::size_t firstColumn)
{
    Lanes total[columns];
    for (std::size_t i = 0; i < columns; ++i) {
        loadLanes(start + (firstColumn + i) * startStride, total[i]);
    }
    for (std::size_t p = 0; p < productCount; ++p) {
        const PanelProduct& product = products[p];
        const double* right = product.right + firstColumn * product.rightStride;
        for (std::size_t k = 0; k < product.count; ++k) {
            Lanes left;
            loadLanes(product.left + k * product.leftStride, left);
            for (std::size_t i = 0; i < columns; ++i) {
                total[i] += left * right[i * product.rightStride + k];
            }
        }
    }
    for (std::size_t i = 0; i < columns; ++i) {
        storeLanes(total[i], result + (firstColumn + i) * stride);
    }
}

SURROGATE_SIMD void addAll(const PanelProduct* products, std::size_t productCount,
                           const double* start, std::size_t startStride, std::size_t columns,
                           double* result, std::size_t stride)
{
    // Eight sums hide the latency of an addition.
    constexpr std::size_t columnsAtOnce = 8;
    std::size_t i = 0;
    for (; i + columnsAtOnce <= columns; i += columnsAtOnce) {
        addTo<columnsAtOnce>(products, productCount, start, startStride, result, stride, i);
    }
    for (; i < columns; ++i) {
        addTo<1>(products, productCount, start, startStride, result, stride, i);
    }
}

} // namespace

void addPanelProducts(const PanelProduct* products, std::size_t productCount, const double* start,
                      std::size_t startStride, std::size_t columns, double* result,
                      std::size_t stride)
{
    addAll(products, productCount, start, startStride, columns, result, stride);
}
