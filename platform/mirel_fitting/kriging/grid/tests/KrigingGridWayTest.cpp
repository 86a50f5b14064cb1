#include <mirel_fitting/kriging/grid/KrigingGridWay.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

#include <functional>
#include <numeric>

namespace {

using Method = KrigingGridWay::Method;

KrigingPredictor::Parts partsOf(std::size_t inputs, std::size_t cases)
{
    KrigingPredictor::Parts parts;
    parts.inputs.resize(inputs);
    std::iota(parts.inputs.begin(), parts.inputs.end(), std::size_t{0});
    parts.weights.assign(cases, 1.0);
    return parts;
}

/** The first column is the fastest. */
ProductGrid gridOf(const std::vector<std::size_t>& sizes)
{
    const std::size_t rows =
        std::accumulate(sizes.begin(), sizes.end(), std::size_t{1}, std::multiplies<>());
    Columns columns;
    std::size_t stride = 1;
    for (const std::size_t size : sizes) {
        std::vector<double> column(rows);
        for (std::size_t i = 0; i < rows; ++i) {
            column[i] = static_cast<double>(i / stride % size);
        }
        columns.push_back(std::move(column));
        stride *= size;
    }
    return ProductGrid::split(pointersTo(columns), rows).front();
}

KrigingGridWay bestOf(const std::vector<std::size_t>& sizes, std::size_t cases)
{
    return KrigingGridWay::best(partsOf(sizes.size(), cases), gridOf(sizes));
}

} // namespace

TEST(KrigingGridWay, GoesAlongALine)
{
    EXPECT_EQ(bestOf({1000}, 200).method, Method::Line);
}

TEST(KrigingGridWay, SumsAlongTheLongAxis)
{
    const KrigingGridWay way = bestOf({6, 2000}, 200);

    EXPECT_EQ(way.method, Method::Sums);
    EXPECT_EQ(way.axis, 1u);
}

TEST(KrigingGridWay, MultipliesGroupsOfShortAxes)
{
    EXPECT_EQ(bestOf({3, 3, 3, 3, 3, 3}, 200).method, Method::Product);
}

TEST(KrigingGridWay, CondensesAnAxisBetweenTwoGroups)
{
    const KrigingGridWay way = bestOf({16, 16, 16}, 1000);

    EXPECT_EQ(way.method, Method::Condensing);
    EXPECT_EQ(way.axis, 1u);
}

TEST(KrigingGridWay, SplitsTheAxesIntoGroupsOfLikeSize)
{
    const ProductGrid grid = gridOf({4, 5, 20});

    EXPECT_EQ(KrigingGridWay::bestSplit(grid.axes(), grid.rowCount()), 2u); // 20 and 20
}

TEST(KrigingGridWay, CostsLessThanPointByPointWhereThereIsAGrid)
{
    for (const std::vector<std::size_t>& sizes :
         {std::vector<std::size_t>{1000}, {20, 20}, {10, 10, 10}}) {
        const ProductGrid grid = gridOf(sizes);
        const KrigingPredictor::Parts parts = partsOf(sizes.size(), 200);
        EXPECT_LT(KrigingGridWay::best(parts, grid).cost,
                  KrigingGridWay::costOfPoints(parts, grid));
    }
}
