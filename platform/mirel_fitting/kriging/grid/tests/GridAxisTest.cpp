#include <mirel_fitting/kriging/grid/GridAxis.h>

#include "KrigingGridTestSupport.h"

using namespace gridtest;

namespace {

/** The only axis of a grid over some columns. */
GridAxis axisOf(const Model& model, Columns columns)
{
    const std::vector<double*> pointers = pointersTo(columns);
    return {model.fitted, pointers, 0, wholeGrid(pointers, columns[0].size()).axes().front(), 1};
}

} // namespace

TEST(GridAxis, ScalesTheFiniteValuesOfItsInputs)
{
    // The second input: minimum 0, range 3.
    const GridAxis axis = axisOf(Model(2), gridOf(3, {{2, {0.0, infinity, 1.5, 6.0}}}));

    EXPECT_EQ(axis.inputs, std::vector<std::size_t>{1});
    EXPECT_EQ(axis.isFinite, (std::vector<char>{1, 0, 1, 1}));
    EXPECT_EQ(axis.coordinates[0], (std::vector<double>{0.0, 0.0, 0.5, 2.0}));

    const GridAxis other = axisOf(Model(2), gridOf(3, {{1, {1.0, notANumber}}}));

    EXPECT_TRUE(other.inputs.empty());
    EXPECT_EQ(other.isFinite, (std::vector<char>{1, 0}));
}

TEST(GridAxis, MultipliesTheCorrelationsOfInputsThatVaryTogether)
{
    const Model model(2);
    const MaternCorrelation& correlation = *model.fitted.correlation;
    Columns diagonal = gridOf(3, {{0, evenly(70, -1.0, 1.0)}});
    diagonal[2] = evenly(70, 0.0, 3.0);
    const GridAxis axis = axisOf(model, diagonal);

    const std::size_t stride = correlation.correlationStride();
    AlignedBuffer found(70 * stride);
    axis.correlate(correlation, 0, 70, found.data());

    AlignedBuffer expected(70 * stride);
    correlation.correlate({axis.coordinates[0].data(), axis.coordinates[1].data()}, 70,
                          expected.data());
    for (std::size_t i = 0; i < 70 * stride; ++i) {
        ASSERT_NEAR(found.data()[i], expected.data()[i], 1e-15) << i;
    }
}
