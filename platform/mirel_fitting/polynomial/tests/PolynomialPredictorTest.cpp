#include <mirel_fitting/polynomial/PolynomialPredictor.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace fittingtest;

namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

using Columns = std::vector<Column>;

/** Two outputs with random coefficients. */
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

Columns randomPoints(std::size_t inputs, std::size_t count)
{
    Random random(count);
    Columns columns;
    for (std::size_t k = 0; k < inputs; ++k) {
        columns.push_back(random.column(count, -1.0, 1.0));
    }
    return columns;
}

Column predict(const PolynomialPredictor& predictor, Columns columns, std::size_t output = 0)
{
    Column result(columns[0].size(), -99.0);
    predictor.predict(pointersTo(columns), {output}, {result.data()}, result.size());
    return result;
}

struct Exact
{
    long double value = 0.0L;
    double magnitude = 0.0; ///< the sum of the magnitudes of the terms
};

/** Term by term, in higher precision. */
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
                // The rounding of the difference is part of the definition.
                term *= (columns[input][row] - scale.centre) / scale.unit;
            }
        }
        sum.value += term;
        sum.magnitude += static_cast<double>(std::fabs(term));
    }
    return sum;
}

} // namespace

TEST(PolynomialPredictor, IsTheSumOfTheTermsOfScaledInputs)
{
    // z1 = (5 - 1) / 2 = 2, z2 = (3 + 1) / 4 = 1.
    const PolynomialPredictor predictor(QuadraticBasis(2, 2), {{1.0, 2.0}, {-1.0, 4.0}},
                                        {{10.0, {777.0, 1.0, 20.0, 300.0, 4000.0, 50000.0}}});

    // 10 + 1 * 2 + 20 * 1 + 300 * 4 + 4000 * 2 * 1 + 50000 * 1; the term 1 has no coefficient.
    EXPECT_EQ(predict(predictor, {{5.0}, {3.0}}), Column{59232.0});
}

TEST(PolynomialPredictor, RoundsLittleComparedWithItsTerms)
{
    for (const int order : {0, 1, 2}) {
        for (const std::size_t inputs : {1, 3, 8}) {
            const PolynomialPredictor predictor = predictorOf(inputs, order);
            const Columns columns = randomPoints(inputs, 700);
            const Column found = predict(predictor, columns);
            for (std::size_t row = 0; row < found.size(); ++row) {
                const Exact expected = exact(predictor, columns, row);
                EXPECT_LE(std::fabs(found[row] - expected.value),
                          4.0 * epsilon * expected.magnitude);
            }
        }
    }
}

TEST(PolynomialPredictor, GivesAPointTheSameBitsAloneAndAmongOthers)
{
    // Blocks of points that are full, and not.
    const PolynomialPredictor predictor = predictorOf(4);
    const Columns columns = randomPoints(4, 1300);
    const Column together = predict(predictor, columns);
    for (std::size_t row = 0; row < together.size(); ++row) {
        Columns point;
        for (const Column& column : columns) {
            point.push_back({column[row]});
        }
        ASSERT_EQ(predict(predictor, point)[0], together[row]) << row;
    }
}

TEST(PolynomialPredictor, GivesEveryOutputItsOwnValues)
{
    const PolynomialPredictor predictor = predictorOf(2);
    Columns columns = randomPoints(2, 600);
    Column first(600, -99.0);
    Column second(600, -99.0);

    predictor.predict(pointersTo(columns), {1, 0}, {second.data(), first.data()}, 600);

    EXPECT_EQ(first, predict(predictor, columns, 0));
    EXPECT_EQ(second, predict(predictor, columns, 1));
    EXPECT_NE(first, second);
}

TEST(PolynomialPredictor, IsNanWhereACoordinateIsNotFinite)
{
    const PolynomialPredictor predictor = predictorOf(3);
    for (const double value : {notANumber, infinity, -infinity}) {
        for (const std::size_t input : {0, 1, 2}) {
            Columns columns = randomPoints(3, 600);
            columns[input][17] = value;
            columns[input][599] = value;

            const Column found = predict(predictor, columns);

            for (std::size_t row = 0; row < found.size(); ++row) {
                EXPECT_EQ(std::isnan(found[row]), row == 17 || row == 599) << row;
            }
        }
    }

    const PolynomialPredictor constant = predictorOf(2, 0);

    const Column ofConstant = predict(constant, {{1.0, 1.0, infinity}, {1.0, notANumber, 1.0}});

    EXPECT_EQ(ofConstant[0], 3.0);
    EXPECT_TRUE(std::isnan(ofConstant[1]));
    EXPECT_TRUE(std::isnan(ofConstant[2]));
}

TEST(PolynomialPredictor, HasNothingToDoWithoutPoints)
{
    EXPECT_NO_THROW(predictorOf(2).predict({nullptr, nullptr}, {0}, {nullptr}, 0));
}
