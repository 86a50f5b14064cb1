#include <mirel_fitting/grid/GridPoints.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

namespace {

const double notANumber = std::numeric_limits<double>::quiet_NaN();
const double infinity = std::numeric_limits<double>::infinity();

/** 5 x 4 x 6 values, the last column fastest. */
Columns grid()
{
    Columns columns(3);
    for (int i = 0; i < 120; ++i) {
        columns[0].push_back(i / 24);
        columns[1].push_back(10.0 + i / 6 % 4);
        columns[2].push_back(20.0 + i % 6);
    }
    return columns;
}

struct Cell
{
    std::size_t column;
    std::size_t row;
};

/** Whether all rows are one grid of these sizes, from the fastest axis. */
void expectGrid(const GridPoints& points, const std::vector<std::size_t>& sizes)
{
    ASSERT_EQ(points.grids().size(), 1u);
    std::vector<std::size_t> found;
    for (const ProductGrid::Axis& axis : points.grids()[0].axes()) {
        found.push_back(axis.size);
    }
    EXPECT_EQ(found, sizes);
}

std::vector<std::size_t> markedRows(const GridPoints& points)
{
    std::vector<double> result(points.count(), 1.0);
    points.markFilled(result.data());
    std::vector<std::size_t> rows;
    for (std::size_t i = 0; i < result.size(); ++i) {
        if (std::isnan(result[i])) {
            rows.push_back(i);
        }
    }
    return rows;
}

} // namespace

TEST(GridPoints, TakesAGridAsItIs)
{
    Columns columns = grid();
    const std::vector<double*> pointers = pointersTo(columns);

    const GridPoints points(pointers, 120);

    expectGrid(points, {6, 4, 5});
    EXPECT_EQ(points.columns(), pointers);
    EXPECT_TRUE(markedRows(points).empty());
}

TEST(GridPoints, FindsTheGridBehindAnyMissingCell)
{
    for (std::size_t column = 0; column < 3; ++column) {
        for (std::size_t row = 0; row < 120; ++row) {
            for (const double value : {notANumber, infinity}) {
                Columns columns = grid();
                columns[column][row] = value;

                const GridPoints points(pointersTo(columns), 120);

                expectGrid(points, {6, 4, 5});
                EXPECT_EQ(points.columns()[column][row], grid()[column][row]);
                EXPECT_EQ(markedRows(points), std::vector<std::size_t>{row});
            }
        }
    }
}

TEST(GridPoints, FindsTheGridBehindManyMissingCells)
{
    Columns columns = grid();
    for (const Cell& cell : {Cell{0, 0}, {0, 1}, {1, 0}, {2, 0}, {2, 6}, {1, 77}, {0, 119}}) {
        columns[cell.column][cell.row] = notANumber;
    }

    const GridPoints points(pointersTo(columns), 120);

    expectGrid(points, {6, 4, 5});
    EXPECT_EQ(markedRows(points), (std::vector<std::size_t>{0, 1, 6, 77, 119}));
}

TEST(GridPoints, KeepsTheValueOfAnAxisThatIsMissingThroughout)
{
    Columns columns = grid();
    for (std::size_t i = 0; i < 120; ++i) {
        if (columns[1][i] == 12.0) {
            columns[1][i] = i % 2 == 0 ? notANumber : infinity;
        }
    }
    columns[2][3] = notANumber;

    const GridPoints points(pointersTo(columns), 120);

    expectGrid(points, {6, 4, 5});
    const std::vector<std::size_t> marked = markedRows(points);
    EXPECT_EQ(marked.size(), 31u);
    for (const std::size_t row : marked) {
        EXPECT_TRUE(row == 3 || grid()[1][row] == 12.0) << row;
    }
}

TEST(GridPoints, FindsTheLineBehindAMissingConstant)
{
    Columns columns = {std::vector<double>(50, 7.0), {}};
    for (int i = 0; i < 50; ++i) {
        columns[1].push_back(i * i);
    }
    columns[0][20] = notANumber;

    const GridPoints points(pointersTo(columns), 50);

    expectGrid(points, {50});
    EXPECT_EQ(points.grids()[0].constantColumns(), std::vector<std::size_t>{0});
    EXPECT_EQ(markedRows(points), std::vector<std::size_t>{20});
}

TEST(GridPoints, LeavesScatteredPointsScattered)
{
    UniformNumbers numbers(1);
    Columns columns = {numbers.next(60), numbers.next(60)};
    columns[1][7] = notANumber;

    const GridPoints points(pointersTo(columns), 60);

    expectGrid(points, {60});
    EXPECT_EQ(markedRows(points), std::vector<std::size_t>{7});
}

TEST(GridPoints, ChangesNoCallersColumn)
{
    Columns columns = grid();
    columns[2][3] = notANumber;
    columns[0][50] = infinity;
    const Columns before = columns;

    const GridPoints points(pointersTo(columns), 120);

    for (std::size_t k = 0; k < 3; ++k) {
        EXPECT_EQ(std::memcmp(columns[k].data(), before[k].data(), 120 * sizeof(double)), 0);
    }
}

TEST(GridPoints, OfNoRowsHaveNoGrids)
{
    EXPECT_TRUE(GridPoints({nullptr, nullptr}, 0).grids().empty());
}
