#include <mirel_fitting/kriging/grid/SeparatedGrid.h>

#include <mirel_fitting/kriging/grid/AxisGroupRows.h>

#include "KrigingGridTestSupport.h"

using namespace gridtest;

namespace {

/** All rows of a group. */
AxisGroupRows rowsOf(const AxisGroup& group, const Model& model)
{
    AxisGroupRows rows(group, *model.fitted.correlation, group.size);
    rows.fill(0, group.size);
    return rows;
}

} // namespace

TEST(SeparatedGrid, GivesThePredictionsAsProductsOfRowsOfBothGroups)
{
    // Three inputs vary, the first axis fastest; the fourth is constant.
    const Model model(4);
    Columns columns =
        gridOf(5, {{3, evenly(3, 1.0, 5.5)}, {2, evenly(5, 0.0, 3.0)}, {0, evenly(4, -1.5, 1.5)}});
    const std::vector<double*> pointers = pointersTo(columns);
    const ProductGrid grid = wholeGrid(pointers, 60);
    const std::vector<double> expected = scattered(model, columns);

    for (const std::vector<std::size_t>& fastAxes :
         {std::vector<std::size_t>{0}, {0, 1}, {0, 1, 2}}) {
        const SeparatedGrid separated(model.fitted, pointers, grid, fastAxes);
        const AxisGroupRows fast = rowsOf(separated.fast, model);
        const AxisGroupRows slow = rowsOf(separated.slow, model);

        ASSERT_FALSE(separated.isNowhereFinite);
        ASSERT_EQ(fast.columns(), slow.columns());
        for (std::size_t i = 0; i < 60; ++i) {
            const double* a = fast.data() + i % separated.fast.size * fast.stride();
            const double* b = slow.data() + i / separated.fast.size * slow.stride();
            double sum = 0.0;
            for (std::size_t c = 0; c < fast.columns(); ++c) {
                sum += a[c] * b[c];
            }
            ASSERT_NEAR(model.fitted.offset + model.fitted.scale * sum, expected[i], 1e-11) << i;
        }
    }
}

TEST(SeparatedGrid, IsNowhereFiniteBesideAConstantThatIsNot)
{
    const Model model(2);
    Columns columns = gridOf(3, {{0, evenly(5, -1.0, 1.0)}, {2, evenly(4, 0.0, 3.0)}});
    columns[1].assign(20, infinity); // no input, and counts too
    const std::vector<double*> pointers = pointersTo(columns);

    EXPECT_TRUE(
        SeparatedGrid(model.fitted, pointers, wholeGrid(pointers, 20), {0}).isNowhereFinite);
}
