#include <mirel_fitting/cases/SpaceFillingSubset.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

KrigingData dataAt(const Columns& columns)
{
    return *dataOf(columns, columns.front());
}

double smallestDistance(const KrigingData& data, const std::vector<std::size_t>& indices)
{
    double smallest = std::numeric_limits<double>::infinity();
    for (const std::size_t a : indices) {
        for (const std::size_t b : indices) {
            double squares = 0.0;
            for (std::size_t k = 0; k < data.inputs; ++k) {
                const double* column = data.coordinates.data() + k * data.cases;
                squares += (column[a] - column[b]) * (column[a] - column[b]);
            }
            smallest = a < b ? std::min(smallest, std::sqrt(squares)) : smallest;
        }
    }
    return smallest;
}

bool ascends(const std::vector<std::size_t>& indices)
{
    return std::adjacent_find(indices.begin(), indices.end(), std::greater_equal<std::size_t>()) ==
           indices.end();
}

} // namespace

TEST(SpaceFillingSubset, KeepsItsCasesFartherApartThanChanceDoes)
{
    const KrigingData data = dataAt(latinHypercube(2000, 2, 3));

    const std::vector<std::size_t> spread = spaceFillingSubset(data, 100);

    EXPECT_EQ(spread.size(), 100u);
    EXPECT_TRUE(ascends(spread));
    EXPECT_GT(smallestDistance(data, spread),
              10.0 * smallestDistance(data, randomSubset(2000, 100)));
}

TEST(SpaceFillingSubset, IsAllCasesWhereTheyAreNoMore)
{
    const KrigingData data = dataAt(latinHypercube(5, 2, 3));
    const std::vector<std::size_t> all = {0, 1, 2, 3, 4};

    EXPECT_EQ(spaceFillingSubset(data, 5), all);
    EXPECT_EQ(spaceFillingSubset(data, 9), all);
}

TEST(SpaceFillingSubset, TakesEveryCaseOnceEvenWhereCoordinatesCoincide)
{
    const KrigingData data = dataAt({std::vector<double>(50, 0.25)});

    const std::vector<std::size_t> spread = spaceFillingSubset(data, 20);

    EXPECT_EQ(spread.size(), 20u);
    EXPECT_TRUE(ascends(spread));
}

TEST(SpaceFillingSubsetRandom, IsTheSameForTheSameNumbers)
{
    EXPECT_EQ(randomSubset(1000, 30), randomSubset(1000, 30));
    EXPECT_TRUE(ascends(randomSubset(1000, 30)));
    EXPECT_EQ(randomSubset(3, 7).size(), 3u);
}

TEST(SpaceFillingSubsetStratified, HasOneRowOfEachStretchOrAll)
{
    const std::vector<std::size_t> rows = stratifiedRows(1003, 100);

    ASSERT_EQ(rows.size(), 100u);
    for (std::size_t k = 0; k < rows.size(); ++k) {
        EXPECT_GE(rows[k], k * 1003 / 100);
        EXPECT_LT(rows[k], (k + 1) * 1003 / 100);
    }
    EXPECT_EQ(stratifiedRows(1003, 100), rows);
    EXPECT_EQ(stratifiedRows(3, 7), (std::vector<std::size_t>{0, 1, 2}));
    EXPECT_TRUE(stratifiedRows(0, 7).empty());
}
