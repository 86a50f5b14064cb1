#include <mirel_fitting/KrigingLikelihood.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

const std::vector<double> someLengths = {0.4, 1.5};
constexpr double someNugget = 1e-3;

/** Cases with a linear trend. */
std::shared_ptr<KrigingData> someData(std::size_t cases)
{
    UniformNumbers numbers(11);
    auto data = std::make_shared<KrigingData>();
    data->cases = cases;
    data->inputs = 2;
    data->terms = 3;
    data->coordinates = numbers.next(2 * cases);
    data->trend.assign(cases, 1.0);
    data->trend.insert(data->trend.end(), data->coordinates.begin(), data->coordinates.end());
    for (std::size_t i = 0; i < cases; ++i) {
        const double x = data->coordinates[i];
        data->output.push_back(std::sin(7.0 * x) + data->coordinates[cases + i]);
    }
    data->rows.assign(cases, 1.0);
    data->scatter.assign(cases, 0.0);
    return data;
}

/** The same cases row by row, without those in `left`. */
DirectKriging direct(const KrigingData& data, const std::vector<double>& lengths, double nugget,
                     std::size_t left = static_cast<std::size_t>(-1))
{
    DirectKriging::Matrix points;
    DirectKriging::Matrix trend;
    DirectKriging::Vector output;
    for (std::size_t i = 0; i < data.cases; ++i) {
        if (i == left) {
            continue;
        }
        points.emplace_back();
        trend.emplace_back();
        for (std::size_t k = 0; k < data.inputs; ++k) {
            points.back().push_back(data.coordinates[k * data.cases + i]);
        }
        for (std::size_t t = 0; t < data.terms; ++t) {
            trend.back().push_back(data.trend[t * data.cases + i]);
        }
        output.push_back(data.output[i]);
    }
    return DirectKriging(points, trend, output, lengths, nugget);
}

/** Every third case stands for two or three rows; `all` gets the rows one by one. */
std::shared_ptr<KrigingData> repeatedData(KrigingData& all)
{
    auto data = someData(12);
    std::vector<std::size_t> indices;
    std::vector<double> outputs;
    for (std::size_t i = 0; i < data->cases; ++i) {
        const std::size_t rows = i % 3 == 0 ? 2 + i % 2 : 1;
        double mean = 0.0;
        double squares = 0.0;
        std::vector<double> values;
        for (std::size_t row = 0; row < rows; ++row) {
            values.push_back(data->output[i] + 0.1 * static_cast<double>(row));
            mean += values.back() / static_cast<double>(rows);
        }
        for (const double value : values) {
            indices.push_back(i);
            outputs.push_back(value);
            squares += (value - mean) * (value - mean);
        }
        data->output[i] = mean;
        data->rows[i] = static_cast<double>(rows);
        data->scatter[i] = squares;
    }
    all = data->subset(indices);
    all.output = outputs;
    return data;
}

void expectGradientOfDifferences(const std::shared_ptr<KrigingData>& data)
{
    KrigingLikelihood likelihood(data);
    std::vector<double> gradient;
    likelihood.evaluate(someLengths, someNugget);
    likelihood.gradient(gradient);

    ASSERT_EQ(gradient.size(), 3u);
    for (std::size_t k = 0; k < 3; ++k) {
        const double step = 1e-4;
        double values[2];
        for (const int sign : {-1, 1}) {
            std::vector<double> lengths = someLengths;
            double nugget = someNugget;
            (k < 2 ? lengths[k] : nugget) *= std::exp(sign * step);
            values[(sign + 1) / 2] = likelihood.evaluate(lengths, nugget);
        }
        // A central difference is good to the square of its step, and to the rounding of the
        // values over the step.
        EXPECT_NEAR(gradient[k], (values[1] - values[0]) / (2.0 * step),
                    1e-6 * (1.0 + std::fabs(gradient[k])))
            << k;
    }
}

} // namespace

TEST(KrigingLikelihood, EqualsItsDefinitionComputedInExtendedPrecision)
{
    const auto data = someData(30);
    KrigingLikelihood likelihood(data);

    const double value = likelihood.evaluate(someLengths, someNugget);

    const DirectKriging expected = direct(*data, someLengths, someNugget);
    EXPECT_NEAR(value, static_cast<double>(expected.logLikelihood), 1e-9);
    EXPECT_NEAR(likelihood.processVariance(), static_cast<double>(expected.variance), 1e-10);
    for (std::size_t t = 0; t < 3; ++t) {
        EXPECT_NEAR(likelihood.coefficients()[t], static_cast<double>(expected.coefficients[t]),
                    1e-9);
    }
    for (std::size_t i = 0; i < 30; ++i) {
        EXPECT_NEAR(likelihood.weights()[i], static_cast<double>(expected.weights[i]), 1e-7);
    }
}

TEST(KrigingLikelihood, SumsUpRepeatedRowsWithoutLoss)
{
    KrigingData all;
    const auto data = repeatedData(all);
    KrigingLikelihood likelihood(data);

    const double value = likelihood.evaluate(someLengths, someNugget);

    const DirectKriging expected = direct(all, someLengths, someNugget);
    EXPECT_NEAR(value, static_cast<double>(expected.logLikelihood), 1e-9);
    EXPECT_NEAR(likelihood.processVariance(), static_cast<double>(expected.variance), 1e-9);
}

TEST(KrigingLikelihood, DifferentiatesByLengthsAndNugget)
{
    expectGradientOfDifferences(someData(30));
}

TEST(KrigingLikelihood, DifferentiatesWithRepeatedRowsToo)
{
    KrigingData all;
    expectGradientOfDifferences(repeatedData(all));
}

TEST(KrigingLikelihood, HasNoGradientAlongAnInputOfInfiniteLength)
{
    KrigingLikelihood likelihood(someData(20));
    std::vector<double> gradient;

    likelihood.evaluate({0.4, std::numeric_limits<double>::infinity()}, someNugget);
    likelihood.gradient(gradient);

    EXPECT_EQ(gradient[1], 0.0);
}

TEST(KrigingLikelihood, LeavesOutEachCaseLikeARefitWithoutIt)
{
    const auto data = someData(15);
    KrigingLikelihood likelihood(data);
    likelihood.evaluate(someLengths, someNugget);

    const std::vector<double> residuals = likelihood.leaveOneOutResiduals();

    for (std::size_t i = 0; i < data->cases; ++i) {
        const DirectKriging others = direct(*data, someLengths, someNugget, i);
        const DirectKriging::Vector point = {data->coordinates[i],
                                             data->coordinates[data->cases + i]};
        const DirectKriging::Real expected =
            data->output[i] - others.predict(point, {1.0L, point[0], point[1]});
        EXPECT_NEAR(residuals[i], static_cast<double>(expected), 1e-9) << i;
    }
}

TEST(KrigingLikelihood, LeavesOutNoCaseThatTheTrendCannotDoWithout)
{
    // Only the last case has another second coordinate: without it the slope is unknown.
    const auto data = someData(8);
    for (std::size_t i = 0; i < 8; ++i) {
        data->coordinates[8 + i] = data->trend[16 + i] = i == 7 ? 1.0 : 0.0;
    }
    KrigingLikelihood likelihood(data);
    likelihood.evaluate(someLengths, someNugget);

    const std::vector<double> residuals = likelihood.leaveOneOutResiduals();

    EXPECT_TRUE(std::isfinite(residuals[0]));
    EXPECT_TRUE(std::isnan(residuals[7]));
}

TEST(KrigingLikelihood, IsImpossibleWhereTheMatrixCannotBeFactorised)
{
    const auto data = someData(10);
    data->coordinates[1] = data->coordinates[0];
    data->coordinates[11] = data->coordinates[10];

    EXPECT_EQ(KrigingLikelihood(data).evaluate(someLengths, 0.0),
              -std::numeric_limits<double>::infinity());
}
