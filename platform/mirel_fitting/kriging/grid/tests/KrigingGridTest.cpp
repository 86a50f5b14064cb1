#include <mirel_fitting/kriging/grid/KrigingGrid.h>

#include <mirel_fitting/kriging/fit/KrigingFitter.h>

#include "KrigingGridTestSupport.h"

using namespace gridtest;

TEST(KrigingGrid, EqualsTheScatteredPredictionForEveryOrderOfNesting)
{
    const Model model(3);
    std::vector<std::pair<std::size_t, std::vector<double>>> axes = {
        {0, evenly(7, -1.5, 1.5)}, {2, evenly(5, 0.0, 3.0)}, {3, evenly(6, 1.0, 5.5)}};
    do {
        expectTheScatteredPredictions(model, gridOf(4, axes));
    } while (std::next_permutation(axes.begin(), axes.end()));
}

TEST(KrigingGrid, TakesAxesOfSomeInputsAndOfOtherColumns)
{
    expectTheScatteredPredictions(
        Model(4), gridOf(5, {{4, evenly(12, 2.0, 7.0)}, {0, evenly(11, -1.5, 1.5)}}));
    expectTheScatteredPredictions(Model(2), gridOf(3, {{0, evenly(9, -1.5, 1.5)},
                                                       {1, {1.0, 2.0, 3.0, 4.0, 5.0}},
                                                       {2, evenly(8, 0.0, 3.0)}}));
    expectTheScatteredPredictions(
        Model(2, 0), gridOf(3, {{0, evenly(9, -1e6, 1e6)}, {2, {-1e300, -50.0, 0.0, 70.0}}}));
}

TEST(KrigingGrid, TakesInputsThatVaryTogether)
{
    Columns columns = gridOf(4, {{0, evenly(20, -1.5, 1.5)}, {3, evenly(6, 1.0, 5.5)}});
    for (std::size_t i = 0; i < columns[0].size(); ++i) {
        columns[2][i] = std::sin(5.0 * columns[0][i]);
    }
    expectTheScatteredPredictions(Model(3), columns);
}

TEST(KrigingGrid, TakesAxesThatAreLongerThanATile)
{
    // A tile holds the correlations of 291 combinations with 1800 cases.
    const Model model(3, 1, 1800);
    expectTheScatteredPredictions(
        model, gridOf(4, {{0, evenly(3, -1.5, 1.5)}, {2, evenly(1300, 0.0, 3.0)}}));
    expectTheScatteredPredictions(
        model, gridOf(4, {{2, evenly(1300, 0.0, 3.0)}, {0, evenly(3, -1.5, 1.5)}}));
    Columns both = gridOf(4, {{3, {1.0, 2.0}}, {0, evenly(1300, -1.5, 1.5)}, {1, {1.0, 2.0}}});
    for (std::size_t i = 0; i < both[0].size(); ++i) {
        both[2][i] = std::cos(both[0][i]);
    }
    expectTheScatteredPredictions(model, both);
}

TEST(KrigingGrid, GivesNaNForTheValuesThatAreNotFiniteOnly)
{
    const Model model(2);
    Columns columns =
        gridOf(3, {{0, {-1.0, notANumber, 0.0, 1.0}}, {2, {0.0, 1.0, 2.0, infinity, 3.0}}});
    expectTheScatteredPredictions(model, columns);

    const Columns axis =
        gridOf(3, {{1, {1.0, notANumber, 2.0}}, {0, evenly(5, -1, 1)}, {2, evenly(4, 0, 3)}});
    Columns constant = gridOf(3, {{0, evenly(5, -1, 1)}, {2, evenly(4, 0, 3)}});
    constant[1].assign(20, infinity);

    expectTheScatteredPredictions(Model(2), axis);
    expectTheScatteredPredictions(Model(2), constant);
}

TEST(KrigingGrid, GivesTheSameBitsForAnyNumberOfThreads)
{
    const Model model(3, 2, 200);
    const Columns even = gridOf(
        4, {{0, evenly(40, -1.5, 1.5)}, {2, evenly(60, 0.0, 3.0)}, {3, evenly(50, 1.0, 5.5)}});
    const Columns oneLongAxis = gridOf(
        4, {{0, evenly(11, -1.5, 1.5)}, {2, evenly(30, 0.0, 3.0)}, {3, evenly(1501, 1.0, 5.5)}});
    const Columns line = gridOf(4, {{3, evenly(300000, 1.0, 5.5)}});

    expectTheSameBitsForAnyNumberOfThreads(model, even);
    expectTheSameBitsForAnyNumberOfThreads(model, oneLongAxis);
    expectTheSameBitsForAnyNumberOfThreads(model, line);
}

TEST(KrigingGrid, EqualsTheScatteredPredictionForEveryTrend)
{
    for (const int trendOrder : {0, 1, 2}) {
        const Model model(4, trendOrder, 200);
        expectTheScatteredPredictions(model, gridOf(5, {{0, evenly(10, -1.0, 1.0)},
                                                        {3, evenly(9, 0.5, 5.0)},
                                                        {2, evenly(11, -0.5, 3.5)},
                                                        {4, evenly(8, 2.0, 9.0)}}));
    }

    const Model model(6, 2, 300);
    expectTheScatteredPredictions(model, gridOf(7, {{6, evenly(16, 4.0, 11.0)},
                                                    {2, evenly(16, -0.5, 3.5)},
                                                    {0, evenly(16, -1.0, 1.0)}}));
}

TEST(KrigingGrid, TakesUnsortedValuesAndThoseThatAreNotFinite)
{
    const Model model(3, 2, 300);
    const std::vector<double> few = {notANumber, 0.3,  -0.9, 0.0, infinity,
                                     0.7,        -0.2, 0.9,  0.1, 0.4};
    const std::vector<double> mixed = {3.0, 0.2, 1.4, 2.2, 0.9, 1.4, 4.4, 2.9, 0.6, 5.1};
    for (const std::size_t first : {0u, 2u}) {
        expectTheScatteredPredictions(model,
                                      gridOf(4, {{first, few}, {3, mixed}, {2 - first, mixed}}));
        expectTheScatteredPredictions(model,
                                      gridOf(4, {{3, mixed}, {first, few}, {2 - first, mixed}}));
        expectTheScatteredPredictions(model,
                                      gridOf(4, {{3, mixed}, {2 - first, mixed}, {first, few}}));
    }
}

/** Weights of both signs that nearly cancel: the sum is much smaller than its terms. */
TEST(KrigingGrid, KeepsTheDigitsOfIllConditionedModels)
{
    const auto wave = [](const std::vector<double>& x) {
        return std::sin(3.0 * x[0]) + (x.size() > 1 ? std::cos(2.0 * x[0] + x[1]) : 0.0);
    };
    for (const std::size_t inputs : {1u, 2u}) {
        const Columns cases = latinHypercube(inputs == 1 ? 60 : 250, inputs, 5);
        Columns casesCopy = cases;
        KrigingFitOptions options;
        options.trendOrder = 1;
        options.correlationLengths.assign(inputs, 3.0);
        options.nuggetMode = KrigingOptions::NuggetMode::Fixed;
        const KrigingFit fit = fitKriging(KrigingCases(pointersTo(casesCopy), cases[0].size()),
                                          valuesOf(wave, cases), options);
        Columns columns(inputs);
        for (std::size_t i = 0; i < 900; ++i) {
            columns[0].push_back(-0.1 + 1.2 * static_cast<double>(i / (inputs == 1 ? 1 : 3)) /
                                            (inputs == 1 ? 899.0 : 299.0));
            if (inputs > 1) {
                columns[1].push_back(0.4 * static_cast<double>(i % 3));
            }
        }
        Model model(inputs);
        model.fitted = fit.predictor.model();
        const std::vector<double> tolerance = tolerances(model, columns);
        EXPECT_GT(tolerance[450], 1e-11 * model.fitted.scale) << "nothing cancels";

        expectTheScatteredPredictions(model, columns);
    }
}

TEST(KrigingGrid, GivesNaNForThePointOfAMissingCellOnly)
{
    const Model model(3, 1, 40);
    Columns columns = gridOf(
        4, {{0, evenly(10, -1.0, 1.0)}, {2, evenly(5, 0.0, 3.0)}, {3, evenly(60, 1.0, 5.5)}});
    const std::vector<double> whole = scattered(model, columns);
    const std::vector<double> tolerance = tolerances(model, columns);
    columns[2][1234] = notANumber;
    const std::vector<double*> pointers = pointersTo(columns);
    std::vector<double> found(3000);

    predictGrids(KrigingPredictor(model.fitted), pointers, ProductGrid::split(pointers, 3000),
                 found.data());

    for (std::size_t i = 0; i < found.size(); ++i) {
        ASSERT_EQ(std::isnan(found[i]), i == 1234) << i;
        ASSERT_TRUE(i == 1234 || std::fabs(found[i] - whole[i]) <= tolerance[i]) << i;
    }
}

TEST(KrigingGrid, CutsLongLinesAndTakesSeveralGrids)
{
    const Model model(2, 1, 3);
    // One value more than a part may have, then another grid.
    Columns columns = gridOf(3, {{2, evenly(131073, -1.0, 4.0)}});
    const Columns second = gridOf(3, {{0, evenly(20, -1.0, 1.0)}, {2, evenly(30, 0.0, 3.0)}});
    for (std::size_t k = 0; k < columns.size(); ++k) {
        columns[k].insert(columns[k].end(), second[k].begin(), second[k].end());
    }
    const std::vector<double> expected = scattered(model, columns);
    const std::vector<double*> pointers = pointersTo(columns);
    const std::size_t count = columns[0].size();
    std::vector<double> found(count);

    predictGrids(KrigingPredictor(model.fitted), pointers, ProductGrid::split(pointers, count),
                 found.data());

    for (std::size_t i = 0; i < count; ++i) {
        ASSERT_NEAR(found[i], expected[i], 1e-12) << i;
    }
}
