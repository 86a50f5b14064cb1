#include <mirel_fitting/numerics/PanelProducts.h>

#include <mirel_fitting/machine/AlignedBuffer.h>

#include <gtest/gtest.h>

#include <vector>

TEST(PanelProducts, AddProductsOfSmallMatrices)
{
    // Small integers: every order of the additions gives the same.
    constexpr std::size_t columns = 13;
    constexpr std::size_t maxRows = 5;
    AlignedBuffer left(maxRows * 2 * laneCount);
    std::vector<double> right(columns * 7);
    AlignedBuffer result(columns * 2 * laneCount);
    for (std::size_t i = 0; i < maxRows * 2 * laneCount; ++i) {
        left.data()[i] = static_cast<double>(i % 11) - 4.0;
    }
    for (std::size_t i = 0; i < right.size(); ++i) {
        right[i] = static_cast<double>(i % 13) - 6.0;
    }
    const PanelProduct products[] = {{left.data(), 2 * laneCount, right.data(), 7, 5},
                                     {left.data() + laneCount, laneCount, right.data() + 1, 7, 2}};
    for (std::size_t i = 0; i < columns * 2 * laneCount; ++i) {
        result.data()[i] = static_cast<double>(i);
    }

    addPanelProducts(products, 2, result.data(), 2 * laneCount, columns, result.data(),
                     2 * laneCount);

    for (std::size_t i = 0; i < columns; ++i) {
        for (std::size_t r = 0; r < 2 * laneCount; ++r) {
            auto expected = static_cast<double>(i * 2 * laneCount + r);
            for (std::size_t k = 0; r < laneCount && k < 5; ++k) {
                expected += left.data()[k * 2 * laneCount + r] * right[i * 7 + k];
            }
            for (std::size_t k = 0; r < laneCount && k < 2; ++k) {
                expected += left.data()[laneCount + k * laneCount + r] * right[i * 7 + 1 + k];
            }
            EXPECT_EQ(result.data()[i * 2 * laneCount + r], expected) << i << ", " << r;
        }
    }
}
