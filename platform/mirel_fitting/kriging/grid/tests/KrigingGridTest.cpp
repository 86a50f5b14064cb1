#include <mirel_fitting/kriging/grid/KrigingGrid.h>

#include <mirel_fitting/ThreadCount.h>
#include <mirel_fitting/kriging/fit/KrigingFitter.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <string>
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
            fitted.inputs.push_back(k == 0 ? 0 : k + 1);
            fitted.minimum.push_back(static_cast<double>(k) - 1.0);
            fitted.range.push_back(2.0 + static_cast<double>(k));
            lengths.push_back(0.3 + 0.4 * static_cast<double>(k));
        }
        columnCount = inputs + 1;
        const auto trend =
            std::make_shared<KrigingTrend>(cases, inputs, coordinates, trendOrder, 0);
        UniformNumbers numbers(2);
        for (std::size_t t = 0; t < trend->size(); ++t) {
            fitted.coefficients.push_back(numbers.next() - 0.5);
        }
        for (std::size_t j = 0; j < cases; ++j) {
            fitted.weights.push_back(100.0 * (numbers.next() - 0.5));
        }
        fitted.trend = trend;
        auto correlation = std::make_shared<MaternCorrelation>(cases, inputs, coordinates.data());
        correlation->setLengths(lengths);
        fitted.correlation = correlation;
        fitted.offset = 10.0;
        fitted.scale = 3.0;
    }

    FittedKriging fitted;
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
    KrigingPredictor(model.fitted).predict(pointersTo(columns), 0, result.size(), result.data());
    return result;
}

ProductGrid wholeGrid(const std::vector<double*>& columns, std::size_t count)
{
    const std::vector<ProductGrid> grids = ProductGrid::split(columns, count);
    EXPECT_EQ(grids.size(), 1u);
    return grids.front();
}

/** The matrix product, and the sums along each axis that they can run along. */
std::vector<GridMethod> possibleMethods(const Model& model, const ProductGrid& grid)
{
    std::vector<GridMethod> methods = {GridMethod::matrixProduct(model.fitted, grid)};
    for (std::size_t axis = 0; axis < grid.axes().size(); ++axis) {
        methods.push_back(GridMethod::axisSums(model.fitted, grid, axis));
    }
    methods.erase(
        std::remove_if(methods.begin(), methods.end(),
                       [](const GridMethod& method) { return !std::isfinite(method.cost); }),
        methods.end());
    return methods;
}

using Check = std::function<void(const std::vector<double>& predictions)>;

/** Predictions over the grid by each method that is possible for it. */
void forEachMethod(const Model& model, Columns columns, const Check& check)
{
    const std::vector<double*> pointers = pointersTo(columns);
    const ProductGrid grid = wholeGrid(pointers, columns[0].size());
    const std::vector<GridMethod> methods = possibleMethods(model, grid);
    ASSERT_FALSE(methods.empty());
    const KrigingPredictor predictor(model.fitted);
    for (const GridMethod& method : methods) {
        SCOPED_TRACE(method.kind == GridMethod::Kind::MatrixProduct
                         ? "matrix product"
                         : "sums along axis " + std::to_string(method.axis));
        std::vector<double> result(columns[0].size(), -77.0);
        predictGrid(predictor, pointers, grid, method, result.data());
        check(result);
    }
}

/** 4 eps sum |w_j c_j| and 1e-12 of the standard deviation. */
std::vector<double> tolerances(Model model, const Columns& columns)
{
    model.fitted.coefficients.assign(model.fitted.coefficients.size(), 0.0);
    model.fitted.offset = 0.0;
    for (double& weight : model.fitted.weights) {
        weight = std::fabs(weight);
    }
    std::vector<double> result = scattered(model, columns);
    for (double& value : result) {
        value = 4.0 * epsilon * value + 1e-12 * model.fitted.scale;
    }
    return result;
}

/** By each method: the scattered predictions, and NaN where a column is not finite. */
void expectTheScatteredPredictions(const Model& model, const Columns& columns)
{
    const std::vector<double> expected = scattered(model, columns);
    const std::vector<double> tolerance = tolerances(model, columns);
    forEachMethod(model, columns, [&](const std::vector<double>& found) {
        for (std::size_t i = 0; i < found.size(); ++i) {
            const bool isFinite =
                std::all_of(columns.begin(), columns.end(),
                            [i](const auto& column) { return std::isfinite(column[i]); });
            ASSERT_EQ(std::isnan(found[i]), !isFinite) << "row " << i;
            if (isFinite) {
                ASSERT_NEAR(found[i], expected[i], tolerance[i]) << "row " << i;
            }
        }
    });
}

/** By each method. */
void expectTheSameBitsForAnyNumberOfThreads(const Model& model, const Columns& columns)
{
    std::vector<std::vector<double>> byOne;
    std::vector<std::vector<double>> byThree;
    setThreadCount(1);
    forEachMethod(model, columns, [&](const auto& found) { byOne.push_back(found); });
    setThreadCount(3);
    forEachMethod(model, columns, [&](const auto& found) { byThree.push_back(found); });
    setThreadCount(0);

    EXPECT_EQ(byOne, byThree);
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
    expectTheScatteredPredictions(model, columns);
}

TEST(KrigingGrid, GivesNaNWhereAColumnThatIsNoInputIsNotFinite)
{
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

TEST(KrigingGrid, TakesFourAxesForEveryTrend)
{
    for (const int trendOrder : {0, 1, 2}) {
        const Model model(4, trendOrder, 200);
        expectTheScatteredPredictions(model, gridOf(5, {{0, evenly(10, -1.0, 1.0)},
                                                        {3, evenly(9, 0.5, 5.0)},
                                                        {2, evenly(11, -0.5, 3.5)},
                                                        {4, evenly(8, 2.0, 9.0)}}));
    }
}

TEST(KrigingGrid, TakesAxesBetweenInputsThatDoNotVary)
{
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
        expectTheScatteredPredictions(model, columns);
    }
}

TEST(KrigingGrid, GivesNaNAlongALineWithoutAFiniteValue)
{
    std::vector<double> values(700, notANumber);
    values[3] = infinity;
    expectTheScatteredPredictions(Model(2, 1, 25), gridOf(3, {{2, values}}));
}

TEST(KrigingGrid, SumsAlongALineBesideAColumnThatIsNoInput)
{
    const Model model(2, 1, 25);
    Columns columns = gridOf(3, {{2, evenly(800, -1.0, 4.0)}});
    columns[1] = columns[2];
    expectTheScatteredPredictions(model, columns);

    columns[1][5] = notANumber;
    expectTheScatteredPredictions(model, columns);
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
