#include <mirel_fitting/kriging/grid/AxisGroupRows.h>

#include "KrigingGridTestSupport.h"

using namespace gridtest;

namespace {

/** A group of all axes of a grid, with one trend polynomial, 1. */
struct Grid
{
    Model model{3};
    Columns columns = gridOf(
        4, {{0, {-1.0, notANumber, 1.0}}, {2, evenly(5, 0.0, 3.0)}, {3, evenly(4, 1.0, 5.0)}});
    std::vector<double*> pointers = pointersTo(columns);
    AxisGroup group{model.fitted, pointers, wholeGrid(pointers, 60), {0, 1, 2}};

    Grid() { group.trend = {{{{1.0, {}}}}}; }
};

/** Of `count` combinations from `first` on: row by row, without the ends of the rows. */
std::vector<double> filled(AxisGroupRows& rows, std::size_t first, std::size_t count)
{
    rows.fill(first, count);
    std::vector<double> result;
    for (std::size_t i = 0; i < count; ++i) {
        const double* row = rows.data() + i * rows.stride();
        result.insert(result.end(), row, row + rows.columns());
    }
    return result;
}

} // namespace

TEST(AxisGroupRows, HoldTheFactorsTimesTheCorrelationsAndTheTrend)
{
    Grid grid;
    grid.group.factors.assign(60, 2.0); // one per case
    const MaternCorrelation& correlation = *grid.model.fitted.correlation;
    AxisGroupRows rows(grid.group, correlation, 60);

    const std::vector<double> found = filled(rows, 0, 60);

    ASSERT_EQ(rows.columns(), correlation.cases() + 1);
    AlignedBuffer expected(correlation.correlationStride());
    for (const std::size_t combination : {0u, 13u, 59u}) {
        std::vector<double> point;
        for (const std::size_t input : {0u, 1u, 2u}) {
            const AxisGroup::Input on = grid.group.find(input);
            point.push_back(on.axis->coordinates[0][on.axis->valueAt(combination)]);
        }
        correlation.correlate({&point[0], &point[1], &point[2]}, 1, expected.data());
        const double* row = found.data() + combination * rows.columns();
        for (std::size_t j = 0; j < correlation.cases(); ++j) {
            EXPECT_NEAR(row[j], 2.0 * expected.data()[j], 1e-15);
        }
        EXPECT_EQ(row[correlation.cases()], 1.0);
    }
}

TEST(AxisGroupRows, MarkCombinationsThatAreNotFiniteInTheTrend)
{
    const Grid grid;
    AxisGroupRows rows(grid.group, *grid.model.fitted.correlation, 60);
    rows.fill(0, 60);

    for (std::size_t combination = 0; combination < 60; ++combination) {
        const double* row = rows.data() + combination * rows.stride();
        EXPECT_EQ(std::isnan(row[rows.columns() - 1]), combination / 20 == 1) << combination;
    }
}

TEST(AxisGroupRows, AreTheSameBitsForAnyPartAndNumberOfRows)
{
    // Of all values of the axes, and of those in three combinations.
    const Grid grid;
    const MaternCorrelation& correlation = *grid.model.fitted.correlation;
    AxisGroupRows rows(grid.group, correlation, 20);
    AxisGroupRows few(grid.group, correlation, 1);
    const std::vector<double> whole = filled(rows, 0, 20);

    for (AxisGroupRows* some : {&rows, &few}) {
        const std::size_t most = some == &rows ? 3 : 1;
        std::vector<double> inParts;
        for (std::size_t first = 0; first < 20; first += most) {
            const std::vector<double> part =
                filled(*some, first, std::min<std::size_t>(most, 20 - first));
            inParts.insert(inParts.end(), part.begin(), part.end());
        }
        EXPECT_EQ(inParts, whole) << most;
    }
}
