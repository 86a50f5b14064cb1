#include <mirel_fitting/kriging/grid/KrigingGrid.h>

#include <mirel_fitting/ThreadCount.h>
#include <mirel_fitting/kriging/fit/KrigingFit.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>

namespace {

const double epsilon = std::numeric_limits<double>::epsilon();
const double notANumber = std::numeric_limits<double>::quiet_NaN();
const double infinity = std::numeric_limits<double>::infinity();

/** Made-up cases, weights and coefficients; one more column, the second, is no input. */
struct Model
{
    explicit Model(std::size_t inputs, int trendOrder = 2, std::size_t cases = 60)
    {
        const std::vector<double> coordinates = UniformNumbers(1).next(cases * inputs);
        std::vector<double> lengths;
        for (std::size_t k = 0; k < inputs; ++k) {
            parts.inputs.push_back(k == 0 ? 0 : k + 1);
            parts.minimum.push_back(static_cast<double>(k) - 1.0);
            parts.range.push_back(2.0 + static_cast<double>(k));
            lengths.push_back(0.3 + 0.4 * static_cast<double>(k));
        }
        columnCount = inputs + 1;
        const auto trend =
            std::make_shared<KrigingTrend>(cases, inputs, coordinates, trendOrder, 0);
        UniformNumbers numbers(2);
        for (std::size_t t = 0; t < trend->size(); ++t) {
            parts.coefficients.push_back(numbers.next() - 0.5);
        }
        for (std::size_t j = 0; j < cases; ++j) {
            parts.weights.push_back(100.0 * (numbers.next() - 0.5));
        }
        parts.trend = trend;
        auto correlation = std::make_shared<MaternCorrelation>(cases, inputs, coordinates.data());
        correlation->setLengths(lengths);
        parts.correlation = correlation;
        parts.offset = 10.0;
        parts.scale = 3.0;
    }

    KrigingPredictor::Parts parts;
    std::size_t columnCount;
};

/** `axes` name the columns in the order of their nesting, the slowest first; the others are 0.5. */
Columns gridOf(std::size_t columnCount,
               const std::vector<std::pair<std::size_t, std::vector<double>>>& axes)
{
    std::size_t count = 1;
    for (const auto& axis : axes) {
        count *= axis.second.size();
    }
    Columns columns(columnCount, std::vector<double>(count, 0.5));
    std::size_t stride = count;
    for (const auto& axis : axes) {
        stride /= axis.second.size();
        for (std::size_t i = 0; i < count; ++i) {
            columns[axis.first][i] = axis.second[i / stride % axis.second.size()];
        }
    }
    return columns;
}

std::vector<double> evenly(std::size_t count, double from, double to)
{
    std::vector<double> result;
    for (std::size_t i = 0; i < count; ++i) {
        result.push_back(from +
                         (to - from) * static_cast<double>(i) / static_cast<double>(count - 1));
    }
    return result;
}

std::vector<double> scattered(const Model& model, Columns columns)
{
    std::vector<double> result(columns[0].size());
    KrigingPredictor(model.parts)
        .predictScattered(pointersTo(columns), 0, result.size(), result.data());
    return result;
}

/** Through the grid, which has to be recognised. */
std::vector<double> overGrid(const Model& model, Columns columns)
{
    std::vector<double> result(columns[0].size(), -77.0);
    const std::vector<double*> pointers = pointersTo(columns);
    const std::vector<ProductGrid> grids = ProductGrid::split(pointers, result.size());
    EXPECT_EQ(grids.size(), 1u);
    EXPECT_TRUE(KrigingGrid::isWorthwhile(model.parts, grids[0]));
    KrigingGrid(model.parts, pointers, grids[0]).predict(result.data());
    return result;
}

/** 4 eps sum |w_j c_j| and 1e-12 of the standard deviation. */
std::vector<double> tolerances(Model model, const Columns& columns)
{
    model.parts.coefficients.assign(model.parts.coefficients.size(), 0.0);
    model.parts.offset = 0.0;
    for (double& weight : model.parts.weights) {
        weight = std::fabs(weight);
    }
    std::vector<double> result = scattered(model, columns);
    for (double& value : result) {
        value = 4.0 * epsilon * value + 1e-12 * model.parts.scale;
    }
    return result;
}

/** Of three inputs, the first and the last of which may not be finite: NaN there only. */
void expectPredictionsWhereFinite(const Model& model, const Columns& columns)
{
    const std::vector<double> expected = scattered(model, columns);
    const std::vector<double> tolerance = tolerances(model, columns);

    const std::vector<double> found = overGrid(model, columns);

    for (std::size_t i = 0; i < found.size(); ++i) {
        const bool isFinite = std::isfinite(columns[0][i]) && std::isfinite(columns[2][i]);
        ASSERT_EQ(std::isnan(found[i]), !isFinite) << i;
        if (isFinite) {
            ASSERT_NEAR(found[i], expected[i], tolerance[i]) << i;
        }
    }
}

void expectTheScatteredPredictions(const Model& model, const Columns& columns)
{
    const std::vector<double> expected = scattered(model, columns);
    const std::vector<double> tolerance = tolerances(model, columns);
    const std::vector<double> found = overGrid(model, columns);
    for (std::size_t i = 0; i < expected.size(); ++i) {
        ASSERT_NEAR(found[i], expected[i], tolerance[i]) << "row " << i;
    }
}

} // namespace

TEST(KrigingGrid, EqualsTheScatteredPredictionForEveryOrderOfNesting)
{
    const Model model(3);
    std::vector<std::pair<std::size_t, std::vector<double>>> axes = {
        {0, evenly(7, -1.5, 1.5)}, {2, evenly(5, 0.0, 3.0)}, {3, evenly(6, 1.0, 5.5)}};
    do {
        expectTheScatteredPredictions(model, gridOf(4, axes));
    } while (std::next_permutation(axes.begin(), axes.end()));
}

TEST(KrigingGrid, EqualsTheScatteredPredictionForEveryTrend)
{
    for (const int order : {0, 1, 2}) {
        expectTheScatteredPredictions(
            Model(2, order), gridOf(3, {{0, evenly(9, -1.5, 1.5)}, {2, evenly(8, 0.0, 3.0)}}));
    }
}

TEST(KrigingGrid, TakesFiveInputs)
{
    expectTheScatteredPredictions(Model(5), gridOf(6, {{0, evenly(3, -1.5, 1.5)},
                                                       {2, evenly(4, 0.0, 3.0)},
                                                       {3, evenly(5, 1.0, 5.5)},
                                                       {4, evenly(3, 2.0, 7.0)},
                                                       {5, evenly(4, 3.0, 9.0)}}));
}

TEST(KrigingGrid, TakesAGridOverSomeInputsOnly)
{
    expectTheScatteredPredictions(
        Model(4), gridOf(5, {{4, evenly(12, 2.0, 7.0)}, {0, evenly(11, -1.5, 1.5)}}));
}

TEST(KrigingGrid, TakesAnAxisOfAColumnThatIsNoInput)
{
    expectTheScatteredPredictions(Model(2), gridOf(3, {{0, evenly(9, -1.5, 1.5)},
                                                       {1, {1.0, 2.0, 3.0, 4.0, 5.0}},
                                                       {2, evenly(8, 0.0, 3.0)}}));
}

TEST(KrigingGrid, TakesInputsThatVaryTogether)
{
    Columns columns = gridOf(4, {{0, evenly(20, -1.5, 1.5)}, {3, evenly(6, 1.0, 5.5)}});
    for (std::size_t i = 0; i < columns[0].size(); ++i) {
        columns[2][i] = std::sin(5.0 * columns[0][i]);
    }
    expectTheScatteredPredictions(Model(3), columns);
}

TEST(KrigingGrid, TakesMoreCombinationsThanATileHas)
{
    expectTheScatteredPredictions(
        Model(2, 1, 20), gridOf(3, {{0, evenly(701, -1.5, 1.5)}, {2, evenly(530, 0.0, 3.0)}}));
}

TEST(KrigingGrid, TakesAxesThatAreTooLongForATable)
{
    // 16 MiB hold the correlations of 1165 values with 1800 cases.
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

TEST(KrigingGrid, MeetsTheToleranceFarOutsideTheCases)
{
    expectTheScatteredPredictions(
        Model(2, 0), gridOf(3, {{0, evenly(9, -1e6, 1e6)}, {2, {-1e300, -50.0, 0.0, 70.0}}}));
}

TEST(KrigingGrid, GivesNaNForTheValuesThatAreNotFiniteOnly)
{
    const Model model(2);
    Columns columns =
        gridOf(3, {{0, {-1.0, notANumber, 0.0, 1.0}}, {2, {0.0, 1.0, 2.0, infinity, 3.0}}});
    expectPredictionsWhereFinite(model, columns);
}

TEST(KrigingGrid, CountsAColumnThatIsNoInput)
{
    Columns axis =
        gridOf(3, {{1, {1.0, notANumber, 2.0}}, {0, evenly(5, -1, 1)}, {2, evenly(4, 0, 3)}});
    Columns constant = gridOf(3, {{0, evenly(5, -1, 1)}, {2, evenly(4, 0, 3)}});
    constant[1].assign(20, infinity);

    const std::vector<double> some = overGrid(Model(2), axis);
    const std::vector<double> none = overGrid(Model(2), constant);

    for (std::size_t i = 0; i < 60; ++i) {
        EXPECT_EQ(std::isnan(some[i]), i / 20 == 1) << i;
    }
    for (const double value : none) {
        EXPECT_TRUE(std::isnan(value));
    }
}

TEST(KrigingGrid, GivesTheSameBitsForAnyNumberOfThreads)
{
    const Model model(3, 2, 200);
    const Columns columns = gridOf(
        4, {{0, evenly(40, -1.5, 1.5)}, {2, evenly(60, 0.0, 3.0)}, {3, evenly(50, 1.0, 5.5)}});
    setThreadCount(1);
    const std::vector<double> one = overGrid(model, columns);
    setThreadCount(3);
    const std::vector<double> three = overGrid(model, columns);
    setThreadCount(0);

    EXPECT_EQ(one, three);
}

TEST(KrigingGrid, CondensesMediumAxesForEveryTrend)
{
    for (const int trendOrder : {0, 1, 2}) {
        const Model model(4, trendOrder, 200);
        expectTheScatteredPredictions(model, gridOf(5, {{0, evenly(10, -1.0, 1.0)},
                                                        {3, evenly(9, 0.5, 5.0)},
                                                        {2, evenly(11, -0.5, 3.5)},
                                                        {4, evenly(8, 2.0, 9.0)}}));
    }
}

TEST(KrigingGrid, CondensesAxesBetweenInputsThatDoNotVary)
{
    const Model model(6, 2, 300);
    expectTheScatteredPredictions(model, gridOf(7, {{6, evenly(16, 4.0, 11.0)},
                                                    {2, evenly(16, -0.5, 3.5)},
                                                    {0, evenly(16, -1.0, 1.0)}}));
}

TEST(KrigingGrid, CondensesValuesInAnyOrderAndThoseThatAreNotFinite)
{
    const Model model(3, 2, 300);
    const std::vector<double> few = {notANumber, 0.3,  -0.9, 0.0, infinity,
                                     0.7,        -0.2, 0.9,  0.1, 0.4};
    const std::vector<double> mixed = {3.0, 0.2, 1.4, 2.2, 0.9, 1.4, 4.4, 2.9, 0.6, 5.1};
    for (const std::size_t first : {0u, 2u}) {
        // Not finite on the slow side, then on the condensed axis, then on the fast side.
        expectPredictionsWhereFinite(model,
                                     gridOf(4, {{first, few}, {3, mixed}, {2 - first, mixed}}));
        expectPredictionsWhereFinite(model,
                                     gridOf(4, {{3, mixed}, {first, few}, {2 - first, mixed}}));
        expectPredictionsWhereFinite(model,
                                     gridOf(4, {{3, mixed}, {2 - first, mixed}, {first, few}}));
    }
}

TEST(KrigingGrid, CondensesWithTheSameBitsForAnyNumberOfThreads)
{
    const Model model(6, 1, 300);
    const Columns columns = gridOf(7, {{6, evenly(16, 4.0, 11.0)},
                                       {2, evenly(16, -0.5, 3.5)},
                                       {3, evenly(16, 1.0, 5.0)},
                                       {0, evenly(16, -1.0, 1.0)}});

    setThreadCount(1);
    const std::vector<double> byOne = overGrid(model, columns);
    setThreadCount(3);
    const std::vector<double> byThree = overGrid(model, columns);
    setThreadCount(0);

    EXPECT_EQ(byOne, byThree);
}

TEST(KrigingGrid, SumsAlongALineForEveryInputAndTrend)
{
    for (const int order : {0, 1, 2}) {
        const Model model(3, order, 30);
        expectTheScatteredPredictions(model, gridOf(4, {{0, evenly(900, -1.5, 1.5)}}));
        expectTheScatteredPredictions(model, gridOf(4, {{2, evenly(1201, -1.0, 4.0)}}));
        expectTheScatteredPredictions(model, gridOf(4, {{3, evenly(5000, 1.0, 5.5)}}));
    }
}

TEST(KrigingGrid, SumsOverOneInputOnly)
{
    expectTheScatteredPredictions(Model(1, 1, 40), gridOf(2, {{0, evenly(1000, -1.5, 1.5)}}));
}

TEST(KrigingGrid, SumsAlongALongAxisWhereverItIsNested)
{
    const Model model(4, 2, 25);
    std::vector<std::pair<std::size_t, std::vector<double>>> axes = {
        {0, evenly(3, -1.5, 1.5)}, {2, evenly(211, -1.0, 4.0)}, {4, evenly(4, 1.0, 5.5)}};
    do {
        expectTheScatteredPredictions(model, gridOf(5, axes));
    } while (std::next_permutation(axes.begin(), axes.end()));
}

TEST(KrigingGrid, SumsOverValuesInAnyOrder)
{
    const Model model(2, 2, 25);
    UniformNumbers numbers(4);
    std::vector<double> shuffled = evenly(600, -1.0, 4.0);
    for (std::size_t i = shuffled.size(); i-- > 1;) {
        std::swap(shuffled[i], shuffled[numbers.generator() % (i + 1)]);
    }
    std::vector<double> repeated = shuffled;
    for (std::size_t i = 0; i < repeated.size(); ++i) {
        repeated[i] = repeated[i % 170];
    }
    for (const auto& values : {evenly(600, 4.0, -1.0), shuffled, repeated}) {
        expectTheScatteredPredictions(model, gridOf(3, {{2, values}}));
        expectTheScatteredPredictions(model, gridOf(3, {{0, evenly(5, -1.0, 1.0)}, {2, values}}));
        expectTheScatteredPredictions(model, gridOf(3, {{2, values}, {0, evenly(5, -1.0, 1.0)}}));
    }
}

TEST(KrigingGrid, SumsOverTheFiniteValuesOfALine)
{
    const Model model(2, 1, 25);
    std::vector<double> values = evenly(800, -1.0, 4.0);
    for (const std::size_t v : {0, 1, 17, 400, 799}) {
        values[v] = v == 400 ? infinity : notANumber;
    }
    for (const bool isLine : {true, false}) {
        Columns columns = isLine ? gridOf(3, {{2, values}})
                                 : gridOf(3, {{2, values}, {0, {-1.0, notANumber, 1.0}}});
        expectPredictionsWhereFinite(model, columns);
    }
}

TEST(KrigingGrid, GivesNaNAlongALineWithoutAFiniteValue)
{
    std::vector<double> values(700, notANumber);
    values[3] = infinity;
    for (const double value : overGrid(Model(2, 1, 25), gridOf(3, {{2, values}}))) {
        ASSERT_TRUE(std::isnan(value));
    }
}

TEST(KrigingGrid, SumsAlongALineBesideAColumnThatIsNoInput)
{
    const Model model(2, 1, 25);
    Columns columns = gridOf(3, {{2, evenly(800, -1.0, 4.0)}});
    columns[1] = columns[2];
    expectTheScatteredPredictions(model, columns);

    columns[1][5] = notANumber;
    EXPECT_TRUE(std::isnan(overGrid(model, columns)[5]));
}

/** Weights that cancel: what sums have in common with each other is rounding of them alone. */
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
        model.parts = fit.predictor.model();
        const std::vector<double> tolerance = tolerances(model, columns);
        EXPECT_GT(tolerance[450], 1e-11 * model.parts.scale) << "nothing cancels";

        expectTheScatteredPredictions(model, columns);
    }
}

TEST(KrigingGrid, SumsWithTheSameBitsForAnyNumberOfThreads)
{
    const Model model(3, 2, 200);
    const Columns grid = gridOf(
        4, {{0, evenly(11, -1.5, 1.5)}, {2, evenly(30, 0.0, 3.0)}, {3, evenly(1501, 1.0, 5.5)}});
    const Columns line = gridOf(4, {{3, evenly(300000, 1.0, 5.5)}});
    for (const Columns& columns : {grid, line}) {
        setThreadCount(1);
        const std::vector<double> one = overGrid(model, columns);
        setThreadCount(3);
        const std::vector<double> three = overGrid(model, columns);
        setThreadCount(0);

        EXPECT_EQ(one, three);
    }
}

/** One value more than a part may have. */
TEST(KrigingGrid, TakesALineThatIsCut)
{
    const Model model(2, 1, 3);
    Columns columns = gridOf(3, {{2, evenly(131073, -1.0, 4.0)}});
    const std::vector<double> expected = scattered(model, columns);
    std::vector<double> found(131073);

    KrigingPredictor(model.parts).predict(pointersTo(columns), 131073, found.data());

    for (std::size_t i = 0; i < found.size(); ++i) {
        ASSERT_NEAR(found[i], expected[i], 1e-12) << i;
    }
}

TEST(KrigingGrid, IsNotWorthItWithoutRepetition)
{
    const Model model(2);
    Columns line = gridOf(3, {{0, evenly(50, -1.0, 1.0)}});
    Columns small = gridOf(3, {{0, evenly(2, -1.0, 1.0)}, {2, evenly(2, 0.0, 3.0)}});
    KrigingPredictor::Parts trendAlone = model.parts;
    trendAlone.correlation = nullptr;
    Columns large = gridOf(3, {{0, evenly(20, -1.0, 1.0)}, {2, evenly(20, 0.0, 3.0)}});
    Columns longLine = gridOf(3, {{0, evenly(5000, -1.0, 1.0)}});
    Columns diagonal = longLine;
    diagonal[2] = diagonal[0];

    const auto gridFor = [](Columns& columns) {
        return ProductGrid::split(pointersTo(columns), columns[0].size())[0];
    };
    EXPECT_FALSE(KrigingGrid::isWorthwhile(model.parts, gridFor(line)));
    EXPECT_FALSE(KrigingGrid::isWorthwhile(model.parts, gridFor(small)));
    EXPECT_FALSE(KrigingGrid::isWorthwhile(trendAlone, gridFor(large)));
    EXPECT_FALSE(KrigingGrid::isWorthwhile(model.parts, gridFor(diagonal)));
    EXPECT_TRUE(KrigingGrid::isWorthwhile(model.parts, gridFor(large)));
    EXPECT_TRUE(KrigingGrid::isWorthwhile(model.parts, gridFor(longLine)));
}
