#include <mirel_fitting/polynomial/PolynomialGrid.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

using namespace fittingtest;

namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

using Columns = std::vector<Column>;

/** Made-up coefficients of two outputs. */
PolynomialPredictor predictorOf(std::size_t inputs, int order = 2)
{
    Random random(5);
    const QuadraticBasis basis(inputs, order);
    std::vector<PolynomialPredictor::Scale> scales;
    for (std::size_t k = 0; k < inputs; ++k) {
        scales.push_back({0.3 * static_cast<double>(k), k % 2 == 0 ? 0.5 : 4.0});
    }
    std::vector<PolynomialPredictor::Output> outputs(2);
    for (PolynomialPredictor::Output& output : outputs) {
        output.constant = 3.0;
        output.coefficients = random.column(basis.size(), -1.0, 1.0);
    }
    return {basis, scales, outputs};
}

/** The axes from the slowest to the fastest, each with the values of the inputs that vary along it;
 *  inputs without values stay at 0.7. */
Columns gridOf(std::size_t inputs,
               const std::vector<std::pair<std::vector<std::size_t>, Columns>>& axes)
{
    std::size_t count = 1;
    for (const auto& axis : axes) {
        count *= axis.second[0].size();
    }
    Columns columns(inputs, Column(count, 0.7));
    std::size_t repeats = count;
    for (const auto& [axisInputs, values] : axes) {
        const std::size_t size = values[0].size();
        repeats /= size;
        for (std::size_t k = 0; k < axisInputs.size(); ++k) {
            for (std::size_t row = 0; row < count; ++row) {
                columns[axisInputs[k]][row] = values[k][row / repeats % size];
            }
        }
    }
    return columns;
}

Columns valuesOf(std::size_t count, double to = 1.0)
{
    return {Random(count).column(count, -1.0, to)};
}

Column predict(const PolynomialPredictor& predictor, Columns columns, std::size_t output = 0)
{
    Column result(columns[0].size(), -99.0);
    predictor.predict(Cases::pointers(columns), {output}, {result.data()}, result.size());
    return result;
}

/** So few at a time that no grid is looked for. */
Column predictOneByOne(const PolynomialPredictor& predictor, Columns columns)
{
    Column result(columns[0].size(), -99.0);
    for (std::size_t row = 0; row < result.size(); ++row) {
        std::vector<double*> point;
        for (Column& column : columns) {
            point.push_back(column.data() + row);
        }
        predictor.predict(point, {0}, {result.data() + row}, 1);
    }
    return result;
}

struct Exact
{
    long double value = 0.0L;
    double magnitude = 0.0; ///< the sum of the magnitudes of the terms
};

Exact exact(const PolynomialPredictor& predictor, const Columns& columns, std::size_t row)
{
    const PolynomialPredictor::Output& output = predictor.outputs()[0];
    Exact sum{output.constant, std::fabs(output.constant)};
    for (std::size_t t = 1; t < predictor.basis().size(); ++t) {
        long double term = output.coefficients[t];
        const QuadraticBasis::Term& inputs = predictor.basis().terms()[t];
        for (const std::size_t input : {inputs.first, inputs.second}) {
            if (input != QuadraticBasis::noInput) {
                const PolynomialPredictor::Scale& scale = predictor.inputScales()[input];
                // The difference is rounded alike in every way of evaluation.
                term *= (columns[input][row] - scale.centre) / scale.unit;
            }
        }
        sum.value += term;
        sum.magnitude += static_cast<double>(std::fabs(term));
    }
    return sum;
}

/** Whether what predict() gives for the columns is the polynomial but for rounding. */
void expectPolynomial(const PolynomialPredictor& predictor, const Columns& columns)
{
    const Column found = predict(predictor, columns);
    const Column single = predictOneByOne(predictor, columns);
    double largest = 0.0;
    double largestDifference = 0.0;
    for (std::size_t row = 0; row < found.size(); ++row) {
        const Exact expected = exact(predictor, columns, row);
        const double unit = epsilon * expected.magnitude;
        const auto error = static_cast<double>(std::fabs(found[row] - expected.value));
        largest = std::max(largest, error / unit);
        largestDifference = std::max(largestDifference, std::fabs(found[row] - single[row]) / unit);
    }
    EXPECT_LE(largest, 4.0);
    EXPECT_LE(largestDifference, 8.0);
}

/** The numbers of rows of the parts, which have to follow one another. */
std::vector<std::size_t> rowsOfParts(Columns columns, std::size_t most)
{
    const std::vector<ProductGrid> grids =
        ProductGrid::split(Cases::pointers(columns), columns[0].size());
    std::vector<std::size_t> rows;
    std::size_t next = 0;
    for (const ProductGrid& part : PolynomialGrid::cut(grids[0], most)) {
        EXPECT_EQ(part.firstRow(), next);
        next += part.rowCount();
        rows.push_back(part.rowCount());
    }
    EXPECT_EQ(next, columns[0].size());
    return rows;
}

bool isRecognised(const PolynomialPredictor& predictor, Columns columns)
{
    const std::vector<ProductGrid> grids =
        ProductGrid::split(Cases::pointers(columns), columns[0].size());
    return PolynomialGrid::isWorthwhile(grids[0], predictor.inputScales().size());
}

} // namespace

TEST(PolynomialGrid, IsThePolynomialOfEachPoint)
{
    for (const int order : {0, 1, 2}) {
        const PolynomialPredictor predictor = predictorOf(3, order);
        const Columns columns =
            gridOf(3, {{{0}, valuesOf(9)}, {{1}, valuesOf(11)}, {{2}, valuesOf(100)}});

        EXPECT_TRUE(isRecognised(predictor, columns));
        expectPolynomial(predictor, columns);
    }
}

TEST(PolynomialGrid, TakesShortAxesTogether)
{
    const Columns columns = gridOf(
        5, {{{4}, valuesOf(6)}, {{1}, valuesOf(5)}, {{3}, valuesOf(7)}, {{0}, valuesOf(11)}});
    EXPECT_TRUE(isRecognised(predictorOf(5), columns));
    expectPolynomial(predictorOf(5), columns);

    std::vector<std::pair<std::vector<std::size_t>, Columns>> axes;
    for (std::size_t input = 0; input < 8; ++input) {
        axes.push_back({{input}, valuesOf(3)});
    }
    EXPECT_TRUE(isRecognised(predictorOf(8), gridOf(8, axes)));
    expectPolynomial(predictorOf(8), gridOf(8, axes));
}

TEST(PolynomialGrid, MayHaveSeveralInputsOnAnAxis)
{
    const PolynomialPredictor predictor = predictorOf(4);
    Columns pair = valuesOf(70);
    pair.push_back(valuesOf(70, 2.0)[0]);
    const Columns columns = gridOf(4, {{{0}, valuesOf(20)}, {{1, 3}, pair}});

    EXPECT_TRUE(isRecognised(predictor, columns));
    expectPolynomial(predictor, columns);
}

TEST(PolynomialGrid, IsASweepOfOneInputToo)
{
    const PolynomialPredictor predictor = predictorOf(4);
    const Columns columns = gridOf(4, {{{2}, valuesOf(5000)}});

    EXPECT_TRUE(isRecognised(predictor, columns));
    expectPolynomial(predictor, columns);
}

TEST(PolynomialGrid, HoldsForAnAxisThatIsTakenInParts)
{
    // One more than what is held of an axis, so that a single value is left over.
    const PolynomialPredictor predictor = predictorOf(2);

    expectPolynomial(predictor, gridOf(2, {{{1}, valuesOf(2)}, {{0}, valuesOf(131073)}}));
    expectPolynomial(predictor, gridOf(2, {{{0}, valuesOf(131073)}, {{1}, valuesOf(2)}}));
}

TEST(PolynomialGrid, IsCutWhereItHasManyRuns)
{
    const Columns columns = gridOf(
        4, {{{3}, valuesOf(20)}, {{2}, valuesOf(10)}, {{1}, valuesOf(16)}, {{0}, valuesOf(8)}});

    EXPECT_EQ(rowsOfParts(columns, 200), std::vector<std::size_t>{200 * 128});
    EXPECT_EQ(rowsOfParts(columns, 130), (std::vector<std::size_t>{130 * 128, 70 * 128}));
}

TEST(PolynomialGrid, IsCutWhereARunIsLong)
{
    const Columns columns =
        gridOf(3, {{{2}, valuesOf(2)}, {{1}, valuesOf(100)}, {{0}, valuesOf(8)}});

    EXPECT_EQ(rowsOfParts(columns, 800), std::vector<std::size_t>{1600});
    EXPECT_EQ(rowsOfParts(columns, 400), (std::vector<std::size_t>{400, 400, 400, 400}));
}

TEST(PolynomialGrid, HoldsForEachOfItsParts)
{
    const PolynomialPredictor predictor = predictorOf(4);
    Columns columns = gridOf(
        4, {{{3}, valuesOf(7)}, {{2}, valuesOf(10)}, {{1}, valuesOf(16)}, {{0}, valuesOf(8)}});
    const std::vector<double*> pointers = Cases::pointers(columns);
    const Column single = predictOneByOne(predictor, columns);
    Column found(single.size(), -99.0);
    const ProductGrid whole = ProductGrid::split(pointers, found.size())[0];

    for (const std::size_t most : {20, 33, 200}) {
        for (const ProductGrid& part : PolynomialGrid::cut(whole, most)) {
            PolynomialGrid(predictor, pointers, part)
                .predict(predictor.outputs()[0], found.data() + part.firstRow());
        }
        for (std::size_t row = 0; row < found.size(); ++row) {
            const double magnitude = exact(predictor, columns, row).magnitude;
            ASSERT_NEAR(found[row], single[row], 8.0 * epsilon * magnitude);
        }
    }
}

TEST(PolynomialGrid, LeavesPointsAloneThatAreNoGrid)
{
    const PolynomialPredictor predictor = predictorOf(2);
    const Columns columns = {valuesOf(2000)[0], valuesOf(2000, 3.0)[0]};

    EXPECT_FALSE(isRecognised(predictor, columns));
    EXPECT_EQ(predict(predictor, columns), predictOneByOne(predictor, columns));
}

TEST(PolynomialGrid, GivesEveryOutputItsOwn)
{
    const PolynomialPredictor predictor = predictorOf(2);
    Columns columns = gridOf(2, {{{0}, valuesOf(40)}, {{1}, valuesOf(100)}});
    Column first(4000, -99.0);
    Column second(4000, -99.0);

    predictor.predict(Cases::pointers(columns), {1, 0}, {second.data(), first.data()}, 4000);

    EXPECT_EQ(first, predict(predictor, columns, 0));
    EXPECT_EQ(second, predict(predictor, columns, 1));
    EXPECT_NE(first, second);
}

TEST(PolynomialGrid, IsNanWhereAPointIsNotFinite)
{
    const PolynomialPredictor predictor = predictorOf(3);
    for (const double value : {notANumber, infinity}) {
        for (const std::size_t input : {0, 1, 2}) {
            // One of its values, in every row; and one cell alone, which hides the grid.
            Columns ofAxis = valuesOf(40);
            ofAxis[0][3] = value;
            std::vector<std::pair<std::vector<std::size_t>, Columns>> axes = {
                {{0}, valuesOf(40)}, {{1}, valuesOf(40)}, {{2}, valuesOf(40)}};
            axes[input].second = ofAxis;
            Columns columns = gridOf(3, axes);
            columns[input][17] = value;

            const Column found = predict(predictor, columns);

            for (std::size_t row = 0; row < found.size(); ++row) {
                EXPECT_EQ(std::isnan(found[row]), !std::isfinite(columns[input][row])) << row;
            }
        }
    }
}

TEST(PolynomialGrid, CountsAnInputWithoutInfluence)
{
    PolynomialPredictor linear = predictorOf(2, 0);
    Columns columns = gridOf(2, {{{0}, valuesOf(40)}, {{1}, valuesOf(100)}});
    columns[1][2] = notANumber;
    columns[0].assign(4000, infinity);

    for (const double value : predict(linear, columns)) {
        EXPECT_TRUE(std::isnan(value));
    }
}
