#include <mirel_fitting/grid/ProductGrid.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

/** Columns of which each takes values in turn, `stride` rows each. */
struct Column
{
    std::size_t stride;
    std::vector<double> values;
};

Columns columnsOf(std::size_t count, const std::vector<Column>& pattern)
{
    Columns columns;
    for (const Column& column : pattern) {
        columns.emplace_back();
        for (std::size_t i = 0; i < count; ++i) {
            columns.back().push_back(column.values[i / column.stride % column.values.size()]);
        }
    }
    return columns;
}

std::vector<ProductGrid> split(Columns columns)
{
    return ProductGrid::split(pointersTo(columns), columns.front().size());
}

/** "rows: stride x size of columns, ...; constant columns", the grids one after the other. */
std::string describe(const std::vector<ProductGrid>& grids)
{
    std::string text;
    for (const ProductGrid& grid : grids) {
        text += (text.empty() ? "" : " | ") + std::to_string(grid.rowCount()) + ":";
        for (const ProductGrid::Axis& axis : grid.axes()) {
            text += " " + std::to_string(axis.stride) + "x" + std::to_string(axis.size) + "(";
            for (const std::size_t column : axis.columns) {
                text += std::to_string(column);
            }
            text += ")";
        }
        for (const std::size_t column : grid.constantColumns()) {
            text += " =" + std::to_string(column);
        }
    }
    return text;
}

const double notANumber = std::numeric_limits<double>::quiet_NaN();

struct Row
{
    const char* name;
    Columns columns;
    const char* expected;
};

const Row rows[] = {
    {"LastInputFastest", columnsOf(24, {{6, {1, 2, 3, 4}}, {2, {5, 6, 7}}, {1, {8, 9}}}),
     "24: 1x2(2) 2x3(1) 6x4(0)"},
    {"FirstInputFastest", columnsOf(24, {{1, {1, 2, 3, 4}}, {4, {5, 6, 7}}, {12, {8, 9}}}),
     "24: 1x4(0) 4x3(1) 12x2(2)"},
    {"AnyOrder", columnsOf(24, {{2, {1, 2, 3, 4}}, {8, {5, 6, 7}}, {1, {8, 9}}}),
     "24: 1x2(2) 2x4(0) 8x3(1)"},
    {"OneInput", columnsOf(3, {{1, {3, 1, 2}}}), "3: 1x3(0)"},
    {"ConstantInputs", columnsOf(6, {{1, {7}}, {2, {1, 2, 3}}, {1, {0}}, {1, {4, 5}}}),
     "6: 1x2(3) 2x3(1) =0 =2"},
    {"TiedInputs", columnsOf(6, {{2, {1, 2, 3}}, {1, {4, 5}}, {2, {9, 9, 8}}}),
     "6: 1x2(1) 2x3(02)"},
    {"ScatteredTimesAxis", columnsOf(10, {{2, {1, 5, 2, 4, 3}}, {2, {2, 2, 7, 1, 0}}, {1, {4, 5}}}),
     "10: 1x2(2) 2x5(01)"},
    {"AxisTimesScattered", columnsOf(10, {{5, {4, 5}}, {1, {1, 5, 2, 4, 3}}, {1, {2, 2, 7, 1, 0}}}),
     "10: 1x5(12) 5x2(0)"},
    {"EqualNeighboursOnAnAxis", columnsOf(12, {{4, {1, 1, 2}}, {1, {3, 3, 3, 4}}}),
     "12: 1x4(1) 4x3(0)"},
    {"FirstValueAgainOnAnAxis", columnsOf(12, {{4, {1, 2, 1}}, {1, {3, 4, 3, 5}}}),
     "12: 1x4(1) 4x3(0)"},
    {"RepeatedRows", columnsOf(12, {{6, {1, 2}}, {2, {3, 4, 5}}}), "12: 1x2() 2x3(1) 6x2(0)"},
    {"RepeatedGrid", columnsOf(12, {{3, {1, 2}}, {1, {3, 4, 5}}}), "12: 1x3(1) 3x4(0)"},
    {"NaNOnAnAxis", columnsOf(6, {{2, {1, notANumber, 3}}, {1, {4, 5}}}), "6: 1x2(1) 2x3(0)"},
    {"LastValueLacksRows", columnsOf(11, {{4, {1, 2, 3}}, {2, {4, 5}}, {1, {6, 7}}}),
     "8: 1x2(2) 2x2(1) 4x2(0) | 2: 1x2(2) =0 =1 | 1: =0 =1 =2"},
    {"AllRowsEqual", columnsOf(5, {{1, {1}}, {1, {2}}}), "5: =0 =1"},
    {"OneRow", columnsOf(1, {{1, {1}}, {1, {2}}}), "1: =0 =1"},
    {"NoGrid", {{1, 2, 3, 4, 5, 6}, {3, 1, 4, 1, 5, 9}}, "6: 1x6(01)"},
    {"NoCommonRuns", {{1, 1, 2, 2, 3, 3}, {1, 1, 1, 2, 2, 2}}, "6: 1x6(01)"},
    {"PositiveAndNegativeZero", {{0.0, 1.0, -0.0, 1.0}, {2, 2, 3, 3}}, "4: 1x4(01)"},
};

} // namespace

TEST(ProductGrid, FindsTheAxes)
{
    for (const auto& [name, columns, expected] : rows) {
        EXPECT_EQ(describe(split(columns)), expected) << name;
    }
}

TEST(ProductGrid, IsCutAlongItsSlowestAxis)
{
    const ProductGrid grid =
        split(columnsOf(21, {{3, {1, 2, 3, 4, 5, 6, 7}}, {1, {8, 9, 7}}, {1, {0}}}))[0];

    EXPECT_EQ(describe(grid.cut(7)), "21: 1x3(1) 3x7(0) =2");
    EXPECT_EQ(describe(grid.cut(3)),
              "6: 1x3(1) 3x2(0) =2 | 6: 1x3(1) 3x2(0) =2 | 9: 1x3(1) 3x3(0) =2");
    std::size_t next = 0;
    for (const ProductGrid& part : grid.cut(3)) {
        EXPECT_EQ(part.firstRow(), next);
        next += part.rowCount();
    }
}

TEST(ProductGrid, IsCutIntoLinesWhereAFasterAxisIsLong)
{
    const ProductGrid grid = split(columnsOf(10, {{5, {1, 2}}, {1, {4, 5, 6, 7, 8}}}))[0];

    EXPECT_EQ(describe(grid.cut(3)), "2: 1x2(1) =0 | 3: 1x3(1) =0 | 2: 1x2(1) =0 | 3: 1x3(1) =0");
    EXPECT_EQ(grid.cut(3)[3].firstRow(), 7u);
}

TEST(ProductGrid, OfNoRowsIsNoneAndOfNoColumnsRepeatsItsRow)
{
    EXPECT_TRUE(ProductGrid::split({nullptr, nullptr}, 0).empty());
    EXPECT_EQ(describe(ProductGrid::split({}, 7)), "7:");
}

TEST(ProductGrid, IsExactToTheLastBit)
{
    const Columns grid = columnsOf(60, {{12, {1, 2, 3, 4, 5}}, {4, {6, 7, 8}}, {1, {1, 2, 3, 4}}});
    ASSERT_EQ(describe(split(grid)), "60: 1x4(2) 4x3(1) 12x5(0)");

    for (std::size_t k = 0; k < 3; ++k) {
        for (std::size_t i = 0; i < 60; ++i) {
            Columns almost = grid;
            almost[k][i] = std::nextafter(almost[k][i], 10.0);

            // Whatever is found has to describe the rows.
            std::vector<double*> pointers = pointersTo(almost);
            for (const ProductGrid& piece : ProductGrid::split(pointers, 60)) {
                ASSERT_NE(describe({piece}), "60: 1x4(2) 4x3(1) 12x5(0)") << k << ", " << i;
                for (const ProductGrid::Axis& axis : piece.axes()) {
                    for (const std::size_t column : axis.columns) {
                        const double* x = pointers[column] + piece.firstRow();
                        for (std::size_t row = 0; row < piece.rowCount(); ++row) {
                            const std::size_t value = row / axis.stride % axis.size;
                            ASSERT_EQ(x[row], x[value * axis.stride]) << k << ", " << i;
                        }
                    }
                }
            }
        }
    }
}

TEST(ProductGrid, DescribesWhateverRowsThereAre)
{
    // Few distinct values make coincidences of all kinds.
    UniformNumbers numbers(3);
    for (int round = 0; round < 3000; ++round) {
        const std::size_t count = 1 + numbers.generator() % 24;
        std::vector<Column> pattern;
        for (std::size_t k = 0; k < 3; ++k) {
            Column column{1 + numbers.generator() % 4, {}};
            const std::size_t size = 1 + numbers.generator() % 5;
            for (std::size_t v = 0; v < size; ++v) {
                column.values.push_back(static_cast<double>(numbers.generator() % 3));
            }
            pattern.push_back(column);
        }
        Columns columns = columnsOf(count, pattern);

        std::size_t next = 0;
        for (const ProductGrid& piece : ProductGrid::split(pointersTo(columns), count)) {
            ASSERT_EQ(piece.firstRow(), next);
            next += piece.rowCount();
            std::size_t stride = 1;
            std::size_t described = piece.constantColumns().size();
            for (const ProductGrid::Axis& axis : piece.axes()) {
                ASSERT_EQ(axis.stride, stride);
                ASSERT_GE(axis.size, 2u);
                stride *= axis.size;
                described += axis.columns.size();
                for (const std::size_t column : axis.columns) {
                    const double* x = columns[column].data() + piece.firstRow();
                    for (std::size_t row = 0; row < piece.rowCount(); ++row) {
                        ASSERT_EQ(x[row], x[row / axis.stride % axis.size * axis.stride]);
                    }
                }
            }
            ASSERT_EQ(described, 3u);
            ASSERT_TRUE(piece.axes().empty() || stride == piece.rowCount());
            for (const std::size_t column : piece.constantColumns()) {
                const double* x = columns[column].data() + piece.firstRow();
                for (std::size_t row = 0; row < piece.rowCount(); ++row) {
                    ASSERT_EQ(x[row], x[0]);
                }
            }
        }
        ASSERT_EQ(next, count);
    }
}
