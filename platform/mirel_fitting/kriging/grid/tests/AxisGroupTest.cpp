#include <mirel_fitting/kriging/grid/AxisGroup.h>

#include "KrigingGridTestSupport.h"

using namespace gridtest;

namespace {

/** Inputs 0, 1 and 2 in the columns 0, 2 and 3; the group has the axes of the inputs 2 and 0. */
struct Grid
{
    Model model{3};
    Columns columns =
        gridOf(4, {{0, {-1.0, notANumber, 1.0}}, {2, {0.0, 3.0}}, {3, {1.0, 2.0, 3.0, 5.0}}});
    std::vector<double*> pointers = pointersTo(columns);
    AxisGroup group{model.fitted, pointers, wholeGrid(pointers, 24), {0, 2}};
};

} // namespace

TEST(AxisGroup, CombinesTheValuesOfItsAxesTheFastestFirst)
{
    const Grid grid;

    ASSERT_EQ(grid.group.axes.size(), 2u);
    EXPECT_EQ(grid.group.size, 12u);
    EXPECT_EQ(grid.group.axes[0].valueAt(7), 3u);
    EXPECT_EQ(grid.group.axes[1].valueAt(7), 1u);

    EXPECT_EQ(grid.group.find(0).axis, &grid.group.axes[1]);
    EXPECT_EQ(grid.group.find(1).axis, nullptr);
    EXPECT_EQ(grid.group.find(2).axis, &grid.group.axes[0]);

    for (std::size_t combination = 0; combination < 12; ++combination) {
        EXPECT_EQ(grid.group.isFinite(combination), combination / 4 != 1) << combination;
    }
}

TEST(AxisGroup, EvaluatesPolynomialsAtItsCombinations)
{
    // The third input has minimum 1 and range 4: centred coordinates -1, -0.5, 0 and 1.
    const Grid grid;
    const AxisGroup::Input input = grid.group.find(2);
    const AxisGroup::Polynomial polynomial{{{5.0, {}}, {2.0, {input}}, {8.0, {input, input}}}};

    EXPECT_EQ(polynomial.along(4), (std::vector<double>{11.0, 6.0, 5.0, 15.0}));
    for (std::size_t combination = 0; combination < 12; ++combination) {
        EXPECT_EQ(polynomial.at(combination), polynomial.along(4)[combination % 4]);
    }
}
