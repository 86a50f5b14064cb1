#include <mirel_fitting/kriging/grid/KrigingLine.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace {

const double epsilon = std::numeric_limits<double>::epsilon();
const double notANumber = std::numeric_limits<double>::quiet_NaN();

using Numbers = std::vector<double>;

/** y = 10 + 3 (0.3 + 0.5 c_0 - 0.2 c_1 + 0.7 c_0^2 + 0.1 c_0 c_1 + sum of w_j c(x, x_j)), with
 *  coordinates from 0 to 1. */
PredictorDescription description(const Numbers& first, const Numbers& second,
                                 const Numbers& weights)
{
    constexpr std::size_t none = QuadraticBasis::noInput;
    PredictorDescription result;
    result.kind = PredictorDescription::Kind::Kriging;
    result.coordinates = {{0, 0.0, 1.0}, {1, 0.0, 1.0}};
    result.terms = {{none, none, 0.3}, {0, none, 0.5}, {1, none, -0.2}, {0, 0, 0.7}, {0, 1, 0.1}};
    result.offset = 10.0;
    result.scale = 3.0;
    result.lengths = {0.4, 0.9};
    result.cases = first;
    result.cases.insert(result.cases.end(), second.begin(), second.end());
    result.weights = weights;
    return result;
}

PredictorDescription randomDescription(std::size_t cases)
{
    UniformNumbers numbers(9);
    const Numbers first = numbers.next(cases);
    const Numbers second = numbers.next(cases);
    Numbers weights = numbers.next(cases);
    for (double& weight : weights) {
        weight = 20.0 * (weight - 0.5);
    }
    return description(first, second, weights);
}

/** Along the first input, the second one at 0.25. */
Numbers alongLine(const PredictorDescription& model, Numbers values, int threads = 1)
{
    const KrigingPredictor::Parts parts = KrigingPredictor::Parts::of(model);
    Numbers fixed(values.size(), 0.25);
    const std::vector<double*> columns = {values.data(), fixed.data()};
    const std::vector<ProductGrid> grids = ProductGrid::split(columns, values.size());
    EXPECT_EQ(grids.size(), 1u);
    Numbers result(values.size(), -77.0);
    KrigingLine(parts, columns, grids.front()).predict(threads, result.data());
    return result;
}

/** The predictions by definition, in extended precision. */
void expectPredictions(const PredictorDescription& model, const Numbers& values)
{
    const Numbers found = alongLine(model, values);
    const std::size_t cases = model.weights.size();
    const auto correlation = [&](std::size_t k, long double x, std::size_t j) {
        const long double z =
            std::sqrt(5.0L) * std::fabs(x - model.cases[k * cases + j]) / model.lengths[k];
        return (1.0L + z + z * z / 3.0L) * std::exp(-z);
    };
    for (std::size_t i = 0; i < values.size(); ++i) {
        const long double c0 = KrigingTrend::centred(values[i]);
        const long double c1 = KrigingTrend::centred(0.25);
        long double sum = 0.3L + 0.5L * c0 - 0.2L * c1 + 0.7L * c0 * c0 + 0.1L * c0 * c1;
        long double magnitude = 0.0L;
        for (std::size_t j = 0; j < cases; ++j) {
            const long double term =
                model.weights[j] * correlation(0, values[i], j) * correlation(1, 0.25L, j);
            sum += term;
            magnitude += std::fabs(term);
        }
        const auto tolerance = static_cast<double>(
            3.0L * (4.0L * epsilon * magnitude + 4.0L * epsilon * (5.0L + std::fabs(c0 * c0))));
        ASSERT_NEAR(found[i], static_cast<double>(10.0L + 3.0L * sum), tolerance + 10.0 * epsilon)
            << "value " << values[i];
    }
}

Numbers evenly(std::size_t count, double from, double to)
{
    Numbers values;
    for (std::size_t i = 0; i < count; ++i) {
        values.push_back(from +
                         (to - from) * static_cast<double>(i) / static_cast<double>(count - 1));
    }
    return values;
}

TEST(KrigingLine, SumsBetweenTheCasesAndBeyondThem)
{
    for (const std::size_t count : {2u, 7u, 8u, 9u, 40u, 1023u, 1025u, 9000u}) {
        expectPredictions(randomDescription(60), evenly(count, -0.5, 1.6));
    }
}

TEST(KrigingLine, TakesValuesInAnyOrder)
{
    Numbers values = UniformNumbers(4).next(3000);
    expectPredictions(randomDescription(60), values);
    std::sort(values.rbegin(), values.rend());
    expectPredictions(randomDescription(60), values);
}

TEST(KrigingLine, TakesValuesAtTheCasesAndCasesThatCoincide)
{
    const Numbers first = {0.5, 0.1, 0.5, 0.9, 0.1};
    const Numbers second = {0.1, 0.2, 0.3, 0.4, 0.5};
    expectPredictions(description(first, second, {3.0, -2.0, 5.0, 1.0, -4.0}),
                      {0.1, 0.5, 0.9, 0.5, 0.1, 0.0, 1.0, 0.3, 0.7});
}

TEST(KrigingLine, TakesASingleCase)
{
    expectPredictions(description({0.5}, {0.5}, {2.0}), evenly(20, 0.0, 1.0));
}

TEST(KrigingLine, TendsToTheTrendFarAway)
{
    // The correlation is 0 there, and nothing of the polynomials overflows.
    const Numbers found = alongLine(randomDescription(60), {-1e6, 1e6, 1e9});
    for (const double value : found) {
        EXPECT_TRUE(std::isfinite(value));
    }
    expectPredictions(randomDescription(60), {-300.0, 300.0, 2e4});
}

TEST(KrigingLine, GivesNaNForTheValuesThatAreNotFiniteOnly)
{
    Numbers values = evenly(50, 0.0, 1.0);
    const Numbers expected = alongLine(randomDescription(60), values);
    values[3] = notANumber;
    values[49] = std::numeric_limits<double>::infinity();

    const Numbers found = alongLine(randomDescription(60), values);

    for (std::size_t i = 0; i < values.size(); ++i) {
        if (std::isfinite(values[i])) {
            EXPECT_EQ(found[i], expected[i]) << i;
        } else {
            EXPECT_TRUE(std::isnan(found[i])) << i;
        }
    }
}

TEST(KrigingLine, GivesTheSameBitsForAnyNumberOfThreads)
{
    const Numbers values = evenly(50000, -0.2, 1.2);

    EXPECT_EQ(alongLine(randomDescription(60), values, 3),
              alongLine(randomDescription(60), values, 1));
}

TEST(KrigingLine, GivesAValueTheSameBitsWhateverOthersThereAre)
{
    const Numbers values = evenly(999, -0.2, 1.2);
    const Numbers all = alongLine(randomDescription(60), values);

    const Numbers some = alongLine(randomDescription(60), {values[5], values[700], values[6]});

    EXPECT_EQ(some, (Numbers{all[5], all[700], all[6]}));
}

} // namespace
