#include <mirel_fitting/numerics/BlockedLeastSquares.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>

using namespace fittingtest;

namespace {

constexpr std::size_t rowsPerBlock = BlockedLeastSquares::rowsPerBlock;

using Columns = std::vector<BlockedLeastSquares::Column>;

BlockedLeastSquares::Solution solve(const std::vector<Column>& design,
                                    const std::vector<Column>& outputs, const Columns& columns)
{
    BlockedLeastSquares leastSquares(design.size(), outputs.size());
    const std::size_t rows = design[0].size();
    std::vector<double> designBlock(design.size() * rowsPerBlock);
    std::vector<double> outputBlock(outputs.size() * rowsPerBlock);
    for (std::size_t start = 0; start < rows; start += rowsPerBlock) {
        const std::size_t count = std::min(rowsPerBlock, rows - start);
        for (std::size_t column = 0; column < design.size(); ++column) {
            std::copy_n(&design[column][start], count, &designBlock[column * rowsPerBlock]);
        }
        for (std::size_t output = 0; output < outputs.size(); ++output) {
            std::copy_n(&outputs[output][start], count, &outputBlock[output * rowsPerBlock]);
        }
        leastSquares.addRows(designBlock.data(), outputBlock.data(), count);
    }
    return leastSquares.solve(columns);
}

BlockedLeastSquares::Solution solve(const std::vector<Column>& design,
                                    const std::vector<Column>& outputs)
{
    return solve(design, outputs, Columns(design.size()));
}

/** A constant column and random ones. */
std::vector<Column> randomDesign(std::size_t columns, std::size_t rows)
{
    Random random(21);
    std::vector<Column> design{Column(rows, 1.0)};
    while (design.size() < columns) {
        design.push_back(random.column(rows, -1.0, 1.0));
    }
    return design;
}

/** The sum of the columns, each times its number from 1. */
Column weightedSum(const std::vector<Column>& design)
{
    Column sum(design[0].size(), 0.0);
    for (std::size_t column = 0; column < design.size(); ++column) {
        for (std::size_t row = 0; row < sum.size(); ++row) {
            sum[row] += static_cast<double>(column + 1) * design[column][row];
        }
    }
    return sum;
}

} // namespace

TEST(BlockedLeastSquares, FindsTheCoefficientsAcrossBlocks)
{
    for (const std::size_t rows : {5u, 511u, 513u, 1300u}) {
        const std::vector<Column> design = randomDesign(5, rows);
        const BlockedLeastSquares::Solution solution =
            solve(design, {weightedSum(design), design[2]});

        EXPECT_EQ(solution.kept, (std::vector<std::size_t>{0, 1, 2, 3, 4}));
        for (std::size_t k = 0; k < 5; ++k) {
            EXPECT_NEAR(solution.coefficients[k], static_cast<double>(k + 1), 1e-12);
            EXPECT_NEAR(solution.coefficients[5 + k], k == 2 ? 1.0 : 0.0, 1e-12);
        }
    }
}

TEST(BlockedLeastSquares, MergesPartsIntoTheFitOfAllRows)
{
    const std::vector<Column> design = randomDesign(5, 300);
    const Column output = Random(4).column(300, 0.0, 1.0);
    BlockedLeastSquares total(5, 1);
    for (std::size_t start = 0; start < 300; start += 100) {
        BlockedLeastSquares part(5, 1);
        std::vector<double> designBlock(5 * rowsPerBlock);
        std::vector<double> outputBlock(rowsPerBlock);
        for (std::size_t column = 0; column < 5; ++column) {
            std::copy_n(&design[column][start], 100, &designBlock[column * rowsPerBlock]);
        }
        std::copy_n(&output[start], 100, outputBlock.data());
        part.addRows(designBlock.data(), outputBlock.data(), 100);
        total.merge(std::move(part));
    }
    const BlockedLeastSquares::Solution merged = total.solve(Columns(5));
    const BlockedLeastSquares::Solution whole = solve(design, {output});

    EXPECT_LT(largestDifference(merged.coefficients, whole.coefficients), 1e-14);
}

TEST(BlockedLeastSquares, FactorIsThatOfTheNormalEquations)
{
    const std::vector<Column> design = randomDesign(4, 700);
    const BlockedLeastSquares::Solution solution = solve(design, {});

    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t j = 0; j < 4; ++j) {
            double expected = 0.0;
            for (std::size_t row = 0; row < 700; ++row) {
                expected += design[i][row] * design[j][row];
            }
            double product = 0.0;
            for (std::size_t k = 0; k <= std::min(i, j); ++k) {
                product += solution.factor[i * 4 + k] * solution.factor[j * 4 + k];
            }
            EXPECT_NEAR(product, expected, 1e-11);
        }
    }
}

TEST(BlockedLeastSquares, DropsWhatEarlierColumnsExplain)
{
    std::vector<Column> design = randomDesign(7, 600);
    design[2].assign(600, 3.0);
    design[4] = weightedSum({design[0], design[1], design[3]});
    const Column output = weightedSum({design[0], design[1], design[3], design[5], design[6]});
    const BlockedLeastSquares::Solution solution = solve(design, {output});

    EXPECT_EQ(solution.kept, (std::vector<std::size_t>{0, 1, 3, 5, 6}));
    for (std::size_t k = 0; k < 5; ++k) {
        EXPECT_NEAR(solution.coefficients[k], static_cast<double>(k + 1), 1e-12);
    }
}

TEST(BlockedLeastSquares, DropsAColumnOfZerosAndOneWhoseParentIsDropped)
{
    std::vector<Column> design = randomDesign(3, 20);
    design[1].assign(20, 0.0);
    EXPECT_EQ(solve(design, {}).kept, (std::vector<std::size_t>{0, 2}));

    std::vector<Column> four = randomDesign(4, 50);
    four[1].assign(50, 2.0);
    Columns columns(4);
    columns[3].parents[0] = 1;
    EXPECT_EQ(solve(four, {}, columns).kept, (std::vector<std::size_t>{0, 2}));
}

TEST(BlockedLeastSquares, DropsWhatTheRoundingOfTheDataCanMake)
{
    std::vector<Column> design = randomDesign(3, 100);
    for (std::size_t row = 0; row < 100; ++row) {
        design[2][row] = design[1][row] + 1e-7 * design[2][row];
    }
    Columns exact(3);
    Columns rounded(3);
    rounded[1].rounding = 1e-7;

    EXPECT_EQ(solve(design, {}, exact).kept, (std::vector<std::size_t>{0, 1, 2}));
    EXPECT_EQ(solve(design, {}, rounded).kept, (std::vector<std::size_t>{0, 1}));
}
