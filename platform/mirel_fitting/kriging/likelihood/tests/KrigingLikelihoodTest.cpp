#include <mirel_fitting/kriging/likelihood/KrigingLikelihood.h>

#include <mirel_fitting/ThreadCount.h>
#include <mirel_fitting/numerics/BlockedCholesky.h>

#include "KrigingLikelihoodTestSupport.h"
#include "RecordedWork.h"

#include <gtest/gtest.h>

#include <limits>
#include <numeric>
#include <stdexcept>

namespace {

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
        data->replicates[i] = static_cast<double>(rows);
        data->withinSquares[i] = squares;
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
        EXPECT_NEAR(likelihood.equations().coefficients()[t],
                    static_cast<double>(expected.coefficients[t]), 1e-9);
    }
    for (std::size_t i = 0; i < 30; ++i) {
        EXPECT_NEAR(likelihood.equations().weights()[i], static_cast<double>(expected.weights[i]),
                    1e-7);
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
    // Above the order from which the work is split, against differences.
    expectGradientOfDifferences(someData(BlockedCholesky::smallestToSplit + 20));
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

TEST(KrigingLikelihood, IsImpossibleWhereTheMatrixCannotBeFactorised)
{
    const auto data = someData(10);
    data->coordinates[1] = data->coordinates[0];
    data->coordinates[11] = data->coordinates[10];

    EXPECT_EQ(KrigingLikelihood(data).evaluate(someLengths, 0.0),
              -std::numeric_limits<double>::infinity());
}

TEST(KrigingLikelihood, KnowsTheAverageInformation)
{
    // u_k = (dR / d parameter k) alpha; the derivative of alpha = P y by parameter l is -P u_l:
    // both by central differences.
    const auto data = someData(14);
    const std::size_t n = data->cases;
    KrigingLikelihood likelihood(data);
    likelihood.evaluate(someLengths, someNugget);
    const std::vector<double> alpha = likelihood.equations().weights();
    const double variance = likelihood.processVariance();
    std::vector<double> information;
    likelihood.averageInformation(information);

    const double step = 1e-4;
    std::vector<std::vector<double>> changes(3, std::vector<double>(n, 0.0));
    std::vector<std::vector<double>> answers(3, std::vector<double>(n, 0.0));
    for (std::size_t k = 0; k < 3; ++k) {
        for (const int sign : {-1, 1}) {
            std::vector<double> lengths = someLengths;
            double nugget = someNugget;
            (k < 2 ? lengths[k] : nugget) *= std::exp(sign * step);
            likelihood.evaluate(lengths, nugget);
            const DirectKriging at = direct(*data, lengths, nugget);
            for (std::size_t i = 0; i < n; ++i) {
                answers[k][i] -= sign * likelihood.equations().weights()[i] / (2.0 * step);
                changes[k][i] += sign * nugget * alpha[i] / (2.0 * step);
                for (std::size_t j = 0; j < n; ++j) {
                    const auto correlation = static_cast<double>(
                        at.correlation({data->coordinates[i], data->coordinates[n + i]},
                                       {data->coordinates[j], data->coordinates[n + j]}));
                    changes[k][i] += sign * correlation * alpha[j] / (2.0 * step);
                }
            }
        }
    }
    const auto dot = [&](const std::vector<double>& a, const std::vector<double>& b) {
        return std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
    };
    ASSERT_EQ(information.size(), 9u);
    for (std::size_t k = 0; k < 3; ++k) {
        for (std::size_t l = 0; l < 3; ++l) {
            const double profiled = dot(alpha, changes[k]) * dot(alpha, changes[l]) /
                                    (variance * static_cast<double>(n - data->terms));
            const double expected = 0.5 * (dot(changes[k], answers[l]) - profiled) / variance;
            const double scale = std::sqrt(information[4 * k] * information[4 * l]);
            EXPECT_NEAR(information[3 * k + l], expected, 1e-6 * scale) << k << ", " << l;
        }
    }
}

TEST(KrigingLikelihood, KnowsTheSameInformationOfRowsSummedUp)
{
    KrigingData all;
    const auto data = repeatedData(all);
    KrigingLikelihood summed(data);
    std::vector<double> ofSums;
    std::vector<double> ofRows;
    summed.evaluate(someLengths, someNugget);
    summed.averageInformation(ofSums);
    std::fill(all.replicates.begin(), all.replicates.end(), 1.0);
    std::fill(all.withinSquares.begin(), all.withinSquares.end(), 0.0);
    KrigingLikelihood rows(std::make_shared<KrigingData>(all));
    rows.evaluate(someLengths, someNugget);
    rows.averageInformation(ofRows);

    for (std::size_t i = 0; i < 9; ++i) {
        EXPECT_NEAR(ofSums[i], ofRows[i], 1e-8 * (1.0 + std::fabs(ofRows[i]))) << i;
    }
}

TEST(KrigingLikelihood, GivesTheSameBitsOnAnyNumberOfThreads)
{
    const auto data = someData(BlockedCholesky::smallestToSplit + 60);
    struct
    {
        double value = 0.0;
        std::vector<double> gradient;
        std::vector<double> information;
        std::vector<double> leaveOneOut;
    } results[2];
    for (const int threads : {1, 3}) {
        setThreadCount(threads);
        KrigingLikelihood likelihood(data);
        auto& result = results[threads / 3];
        result.value = likelihood.evaluate(someLengths, someNugget);
        likelihood.gradient(result.gradient);
        likelihood.averageInformation(result.information);
        result.leaveOneOut = likelihood.equations().leaveOneOut(true).residuals;
    }
    setThreadCount(0);

    EXPECT_EQ(results[0].value, results[1].value);
    EXPECT_EQ(results[0].gradient, results[1].gradient);
    EXPECT_EQ(results[0].information, results[1].information);
    EXPECT_EQ(results[0].leaveOneOut, results[1].leaveOneOut);
}

TEST(KrigingLikelihood, CanBeStoppedInsideOneFactorisation)
{
    KrigingLikelihood likelihood(someData(1000));
    const RecordedWork recorded(1.0, 10);

    EXPECT_THROW(likelihood.evaluate(someLengths, someNugget), std::runtime_error);
    EXPECT_EQ(recorded.reports(), 10);
}
