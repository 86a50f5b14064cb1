#include <mirel_fitting/numerics/BlockedCholesky.h>

#include <mirel_fitting/machine/SingleThreadedBlas.h>

#include "KrigingTestSupport.h"
#include "RecordedWork.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

namespace {

// Split into blocks, the last of which is not full.
constexpr std::size_t large = BlockedCholesky::smallestToSplit + 77;
// One for each way of computing.
constexpr std::size_t small = 90;
constexpr std::size_t medium = 200;

/** Element of a matrix of correlations that fall off exponentially, plus a nugget. */
double element(std::size_t i, std::size_t j)
{
    const double distance = std::fabs(static_cast<double>(i) - static_cast<double>(j));
    return std::exp(-0.05 * distance) + (i == j ? 0.1 : 0.0);
}

BlockedCholesky factorised(std::size_t order, int threads)
{
    BlockedCholesky cholesky(order, threads);
    for (std::size_t j = 0; j < order; ++j) {
        for (std::size_t i = j; i < order; ++i) {
            cholesky.values()[j * order + i] = element(i, j);
        }
    }
    const SingleThreadedBlas singleThreaded;
    EXPECT_TRUE(cholesky.factorise());
    return cholesky;
}

std::vector<double> lowerTriangle(const BlockedCholesky& cholesky)
{
    std::vector<double> result;
    for (std::size_t j = 0; j < cholesky.order(); ++j) {
        const double* column = cholesky.values() + j * cholesky.order();
        result.insert(result.end(), column + j, column + cholesky.order());
    }
    return result;
}

/** Writes the lower triangle of the inverse into a whole matrix. */
class Collector : public BlockedCholesky::Visitor
{
public:
    Collector(std::size_t order, std::vector<double>& inverse) : order(order), inverse(inverse) {}

    void visit(std::size_t first, std::size_t columns, const double* block,
               std::size_t stride) override
    {
        for (std::size_t j = 0; j < columns; ++j) {
            for (std::size_t i = j; first + i < order; ++i) {
                inverse[(first + j) * order + first + i] = block[j * stride + i];
            }
        }
        last = first;
    }
    void handOver() override { handedOver.push_back(last); }

    std::size_t order;
    std::size_t last = 0;
    std::vector<double>& inverse;
    static std::vector<std::size_t> handedOver;
};

std::vector<std::size_t> Collector::handedOver;

std::vector<double> inverseOf(BlockedCholesky& cholesky)
{
    const SingleThreadedBlas singleThreaded;
    std::vector<double> inverse(cholesky.order() * cholesky.order(), 0.0);
    Collector::handedOver.clear();
    cholesky.visitInverse([&] { return std::make_unique<Collector>(cholesky.order(), inverse); });
    return inverse;
}

} // namespace

class BlockedCholeskyOfOrder : public testing::TestWithParam<std::size_t>
{};

TEST_P(BlockedCholeskyOfOrder, MultipliesBackToTheMatrix)
{
    const std::size_t n = GetParam();
    const BlockedCholesky cholesky = factorised(n, 2);

    for (std::size_t i = 0; i < n; i += 13) {
        for (std::size_t j = 0; j <= i; j += 7) {
            double product = 0.0;
            for (std::size_t k = 0; k <= j; ++k) {
                product += cholesky.values()[k * n + i] * cholesky.values()[k * n + j];
            }
            EXPECT_NEAR(product, element(i, j), 1e-13) << i << ", " << j;
        }
    }
}

TEST_P(BlockedCholeskyOfOrder, ShowsTheInverseInTheOrderOfItsColumns)
{
    const std::size_t n = GetParam();
    BlockedCholesky cholesky = factorised(n, 2);

    const std::vector<double> inverse = inverseOf(cholesky);

    EXPECT_TRUE(std::is_sorted(Collector::handedOver.begin(), Collector::handedOver.end()));
    const auto inverseAt = [&](std::size_t i, std::size_t j) {
        return i >= j ? inverse[j * n + i] : inverse[i * n + j];
    };
    for (std::size_t i = 0; i < n; i += 31) {
        for (std::size_t j = 0; j < n; j += 29) {
            double product = 0.0;
            for (std::size_t k = 0; k < n; ++k) {
                product += element(i, k) * inverseAt(k, j);
            }
            // The condition of the matrix is about 400.
            EXPECT_NEAR(product, i == j ? 1.0 : 0.0, 1e-12) << i << ", " << j;
        }
    }
}

TEST_P(BlockedCholeskyOfOrder, KeepsTheFactorWhenTheInverseIsShown)
{
    BlockedCholesky cholesky = factorised(GetParam(), 1);
    const std::vector<double> before = lowerTriangle(cholesky);

    inverseOf(cholesky);

    EXPECT_EQ(lowerTriangle(cholesky), before);
}

TEST_P(BlockedCholeskyOfOrder, RefusesAnIndefiniteMatrix)
{
    const std::size_t n = GetParam();
    BlockedCholesky cholesky(n, 2);
    std::fill_n(cholesky.values(), n * n, 0.0);
    for (std::size_t j = 0; j < n; ++j) {
        cholesky.values()[j * n + j] = j + 1 < n ? 1.0 : -1.0;
    }
    const SingleThreadedBlas singleThreaded;

    EXPECT_FALSE(cholesky.factorise());
}

TEST_P(BlockedCholeskyOfOrder, SolvesWithTheFactorAndItsTranspose)
{
    const std::size_t n = GetParam();
    const BlockedCholesky cholesky = factorised(n, 1);
    const SingleThreadedBlas singleThreaded;
    for (const std::size_t count : {1, 3}) {
        std::vector<double> expected;
        for (std::size_t i = 0; i < n * count; ++i) {
            expected.push_back(static_cast<double>((7 * i) % 13) - 6.0);
        }
        std::vector<double> columns(n * count, 0.0); // the matrix times them
        for (std::size_t c = 0; c < count; ++c) {
            for (std::size_t i = 0; i < n; ++i) {
                for (std::size_t j = 0; j < n; ++j) {
                    columns[c * n + i] += element(i, j) * expected[c * n + j];
                }
            }
        }

        cholesky.solveLower(columns.data(), count);
        cholesky.solveTransposed(columns.data(), count);

        for (std::size_t i = 0; i < n * count; ++i) {
            // The condition of the matrix is about 400.
            EXPECT_NEAR(columns[i], expected[i], 1e-10) << count << ", " << i;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Orders, BlockedCholeskyOfOrder, testing::Values(small, medium, large));

TEST(BlockedCholesky, GivesTheSameBitsOnAnyNumberOfThreads)
{
    BlockedCholesky one = factorised(large, 1);
    BlockedCholesky three = factorised(large, 3);

    EXPECT_EQ(lowerTriangle(one), lowerTriangle(three));
    EXPECT_EQ(inverseOf(one), inverseOf(three));
}

TEST(BlockedCholesky, StartsNoThreadForASmallMatrix)
{
    EXPECT_EQ(BlockedCholesky(small, 8).threads(), 1);
    EXPECT_EQ(BlockedCholesky(large, 8).threads(), 8);
}

TEST(BlockedCholesky, ReportsWhileItWorks)
{
    const double cube = std::pow(static_cast<double>(large), 3.0);
    const RecordedWork recorded(cube);
    BlockedCholesky cholesky = factorised(large, 1);
    const int reports = recorded.reports();
    const double work = recorded.work();

    // A sixth of the cube; whole blocks on the diagonal make it more.
    EXPECT_GT(reports, 5);
    EXPECT_NEAR(work, 1.0 / 6.0, 0.1);

    inverseOf(cholesky);

    EXPECT_GT(recorded.reports(), reports + 5);
    EXPECT_NEAR(recorded.work() - work, 1.0 / 3.0, 0.1);
}

TEST(BlockedCholesky, ReportsWhileItSolves)
{
    const BlockedCholesky cholesky = factorised(large, 1);
    const SingleThreadedBlas singleThreaded;
    std::vector<double> column(large, 1.0);
    const RecordedWork recorded;

    cholesky.solveLower(column.data(), 1);
    EXPECT_GE(recorded.reports(), 2);
    cholesky.solveTransposed(column.data(), 1);
    EXPECT_GE(recorded.reports(), 4);
}

TEST(BlockedCholesky, EndsInTheMiddleWhenTheReportThrows)
{
    BlockedCholesky cholesky(large, 1);
    std::fill_n(cholesky.values(), large * large, 0.0);
    for (std::size_t j = 0; j < large; ++j) {
        cholesky.values()[j * large + j] = 1.0;
    }
    const SingleThreadedBlas singleThreaded;
    const RecordedWork recorded(1.0, 3);

    EXPECT_THROW(cholesky.factorise(), std::runtime_error);
    EXPECT_EQ(recorded.reports(), 3);
}

TEST(BlockedCholesky, CoversAllColumnsInRanges)
{
    BlockedCholesky cholesky(large, 3);
    std::vector<int> times(large, 0);

    cholesky.forColumns(1.0, [&](std::size_t first, std::size_t last) {
        for (std::size_t j = first; j < last; ++j) {
            ++times[j];
        }
    });

    EXPECT_EQ(times, std::vector<int>(large, 1));
}
