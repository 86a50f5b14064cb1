#include <mirel_fitting/cases/WeightedBlocks.h>

#include <mirel_fitting/SurrogateModelInterface.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

std::string refusalOf(const CaseDesign& design)
{
    try {
        WeightedBlocks(design, 3);
    } catch (const SurrogateModelInterface::Error& error) {
        return error.what();
    }
    return "";
}

} // namespace

TEST(WeightedBlocks, HasRootsOfWeightsWhoseMeanIsOne)
{
    const WeightedBlocks rows({{2.0, 8.0, 14.0}, {}}, 3);
    double values[] = {2.0, 3.0};

    rows.weigh(1, 2, values);

    EXPECT_DOUBLE_EQ(values[0], 2.0);
    EXPECT_DOUBLE_EQ(values[1], 3.0 * std::sqrt(14.0 / 8.0));
    EXPECT_DOUBLE_EQ(rows.weight(0), 0.25);
    EXPECT_DOUBLE_EQ(rows.logarithms(), std::log(0.25) + std::log(1.75));
}

TEST(WeightedBlocks, HasAColumnForEachBlockButTheLastWhereItIsMinusOne)
{
    const WeightedBlocks rows({{}, {7, 9, 7, 2, 9}}, 5);
    std::vector<double> first(5);
    std::vector<double> second(5);

    rows.evaluate(0, 0, 5, first.data());
    rows.evaluate(1, 0, 5, second.data());

    EXPECT_EQ(rows.columns(), 2u);
    EXPECT_EQ(rows.blocks(), (std::vector<std::size_t>{2, 7, 9}));
    EXPECT_EQ(first, (std::vector<double>{0, -1, 0, 1, -1}));
    EXPECT_EQ(second, (std::vector<double>{1, -1, 1, 0, -1}));
}

TEST(WeightedBlocks, RefusesWeightsAndBlocksThatDoNotFitTheCases)
{
    const char positive[] = "The weight of a case must be positive and finite.";

    EXPECT_EQ(refusalOf({{1.0, 0.0, 1.0}, {}}), positive);
    EXPECT_EQ(refusalOf({{1.0, std::nan(""), 1.0}, {}}), positive);
    EXPECT_EQ(refusalOf({{1.0, std::numeric_limits<double>::infinity(), 1.0}, {}}), positive);
    EXPECT_EQ(refusalOf({{1.0, 2.0}, {}}), "There are 2 weights for 3 cases; each case needs one.");
    EXPECT_EQ(refusalOf({{}, {0, 1}}), "There are 2 blocks for 3 cases; each case needs one.");
}
