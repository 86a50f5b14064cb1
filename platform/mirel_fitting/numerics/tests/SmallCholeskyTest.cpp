#include <mirel_fitting/numerics/SmallCholesky.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace {

/** Correlations that fall off exponentially, whose inverse has three diagonals: Rue, Held: Gaussian
 *  Markov Random Fields, Chapman and Hall 2005, 1.1. */
class SmallCholeskyOfCorrelations : public testing::TestWithParam<std::size_t>
{
protected:
    const std::size_t order = GetParam();
    const double correlation = 0.7;

    std::vector<double> matrix() const
    {
        // Elements above the diagonal must not be read.
        std::vector<double> result(order * order, std::numeric_limits<double>::quiet_NaN());
        for (std::size_t j = 0; j < order; ++j) {
            for (std::size_t i = j; i < order; ++i) {
                result[j * order + i] = std::pow(correlation, static_cast<double>(i - j));
            }
        }
        return result;
    }
};

TEST_P(SmallCholeskyOfCorrelations, FactorTimesItsTransposeIsTheMatrix)
{
    const std::vector<double> expected = matrix();
    std::vector<double> factor = expected;

    ASSERT_TRUE(SmallCholesky(order).factorise(factor.data()));

    for (std::size_t j = 0; j < order; ++j) {
        for (std::size_t i = j; i < order; ++i) {
            double product = 0.0;
            for (std::size_t k = 0; k <= j; ++k) {
                product += factor[k * order + i] * factor[k * order + j];
            }
            // A few roundings of sums of at most `order` terms below 1.
            EXPECT_NEAR(product, expected[j * order + i], 1e-14) << i << ", " << j;
        }
    }
}

TEST_P(SmallCholeskyOfCorrelations, InverseHasTheDiagonalsOfTheClosedForm)
{
    std::vector<double> factor = matrix();
    SmallCholesky cholesky(order);
    ASSERT_TRUE(cholesky.factorise(factor.data()));

    const double* inverse = cholesky.invert();

    const double innovation = 1.0 - correlation * correlation;
    for (std::size_t j = 0; j < order; ++j) {
        for (std::size_t i = j; i < order; ++i) {
            const bool isEnd = j == 0 || j + 1 == order;
            double expected = isEnd ? 1.0 : 1.0 + correlation * correlation;
            if (i != j) {
                expected = i == j + 1 ? -correlation : 0.0;
            }
            if (order == 1) {
                expected = innovation;
            }
            EXPECT_NEAR(inverse[j * cholesky.stride() + i], expected / innovation, 1e-13);
        }
    }
}

// Less than a tile, whole tiles, one more and one less, and the largest.
INSTANTIATE_TEST_SUITE_P(Orders, SmallCholeskyOfCorrelations,
                         testing::Values(1, 2, 7, 8, 9, 16, 50, 63, SmallCholesky::largestOrder));

TEST(SmallCholesky, RefusesWhatIsNotPositiveDefiniteAndLeavesItAlone)
{
    for (const std::size_t bad : {0, 5, 11}) {
        const std::size_t order = 12;
        std::vector<double> matrix(order * order, 0.0);
        for (std::size_t j = 0; j < order; ++j) {
            matrix[j * order + j] = j == bad ? -1.0 : 2.0;
        }
        const std::vector<double> before = matrix;

        EXPECT_FALSE(SmallCholesky(order).factorise(matrix.data())) << bad;
        EXPECT_EQ(matrix, before);
    }
}

TEST(SmallCholesky, RefusesWhatIsNotANumber)
{
    std::vector<double> matrix = {std::numeric_limits<double>::quiet_NaN()};

    EXPECT_FALSE(SmallCholesky(1).factorise(matrix.data()));
}

TEST(SmallCholesky, CanBeUsedAgain)
{
    SmallCholesky cholesky(2);
    std::vector<double> refused = {1.0, 2.0, 0.0, 1.0};
    EXPECT_FALSE(cholesky.factorise(refused.data()));
    std::vector<double> matrix = {4.0, 2.0, 0.0, 2.0};

    ASSERT_TRUE(cholesky.factorise(matrix.data()));

    EXPECT_EQ(matrix, (std::vector<double>{2.0, 1.0, 0.0, 1.0}));
    const double* inverse = cholesky.invert();
    EXPECT_DOUBLE_EQ(inverse[0], 0.5);
    EXPECT_DOUBLE_EQ(inverse[1], -0.5);
    EXPECT_DOUBLE_EQ(inverse[cholesky.stride() + 1], 1.0);
}

} // namespace
