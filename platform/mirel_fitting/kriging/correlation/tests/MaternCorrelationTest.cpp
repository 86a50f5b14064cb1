#include <mirel_fitting/kriging/correlation/MaternCorrelation.h>

#include "UniformNumbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

std::vector<double> uniformNumbers(std::size_t count)
{
    return UniformNumbers(7).next(count);
}

/** The defining formula, in extended precision. */
long double correlationOf(const std::vector<double>& a, const std::vector<double>& b,
                          const std::vector<double>& lengths)
{
    long double product = 1.0L;
    for (std::size_t k = 0; k < a.size(); ++k) {
        const long double z =
            std::sqrt(5.0L) * std::fabs(static_cast<long double>(a[k]) - b[k]) / lengths[k];
        product *= (1.0L + z + z * z / 3.0L) * std::exp(-z);
    }
    return product;
}

struct Cases
{
    std::size_t cases;
    std::size_t inputs;
    std::vector<double> coordinates = uniformNumbers(cases * inputs);

    std::vector<double> at(std::size_t i) const
    {
        std::vector<double> point;
        for (std::size_t k = 0; k < inputs; ++k) {
            point.push_back(coordinates[k * cases + i]);
        }
        return point;
    }
    MaternCorrelation correlation(const std::vector<double>& lengths) const
    {
        MaternCorrelation result(cases, inputs, coordinates.data());
        result.setLengths(lengths);
        return result;
    }
};

} // namespace

TEST(MaternCorrelation, FillsTheLowerTriangleWithTheProductFormula)
{
    // 19 cases: whole groups of eight and a rest.
    const Cases data{19, 3};
    const std::vector<double> lengths = {0.2, 1.0, 30.0};
    std::vector<double> matrix(std::size_t{19} * 19, -1.0);

    data.correlation(lengths).fillLower(0, 19, matrix.data());

    for (std::size_t j = 0; j < 19; ++j) {
        EXPECT_EQ(matrix[j * 19 + j], 1.0);
        for (std::size_t i = j + 1; i < 19; ++i) {
            const auto expected =
                static_cast<double>(correlationOf(data.at(i), data.at(j), lengths));
            EXPECT_NEAR(matrix[j * 19 + i], expected, 2e-14 * expected) << i << ", " << j;
        }
        for (std::size_t i = 0; i < j; ++i) {
            EXPECT_EQ(matrix[j * 19 + i], -1.0) << "the upper triangle is not ours";
        }
    }
}

TEST(MaternCorrelation, GivesAnInputOfInfiniteLengthNoInfluence)
{
    const Cases data{9, 2};
    const Cases first{9, 1, {data.coordinates.begin(), data.coordinates.begin() + 9}};
    std::vector<double> both(81);
    std::vector<double> one(81);

    data.correlation({0.5, std::numeric_limits<double>::infinity()}).fillLower(0, 9, both.data());
    first.correlation({0.5}).fillLower(0, 9, one.data());

    EXPECT_EQ(both, one);
}

TEST(MaternCorrelation, StaysFiniteForManyInputsAndForPointsFarApart)
{
    const Cases data{8, 100};
    std::vector<double> matrix(64);

    data.correlation(std::vector<double>(100, 1e-3)).fillLower(0, 8, matrix.data());

    for (std::size_t i = 1; i < 8; ++i) {
        EXPECT_GE(matrix[i], 0.0);
        EXPECT_LT(matrix[i], 1e-100);
    }

    const Cases few{9, 2};
    const MaternCorrelation correlation = few.correlation({0.5, 1e-100});
    const std::vector<double> weights(9, 1.0);
    const double far = 1e150;
    double sum = 0.0;
    double slope = 0.0;

    correlation.addWeightedSums({&far, &far}, 1, weights.data(), &sum);
    correlation.addWeightedGradients({&far, &far}, 1, weights.data(), {&slope, &slope});

    EXPECT_NEAR(sum, 0.0, 1e-100);
    EXPECT_NEAR(slope, 0.0, 1e-100);
}

TEST(MaternCorrelation, SumsWeightedCorrelationsAtPoints)
{
    const Cases data{37, 2};
    const Cases points{300, 2};
    const std::vector<double> lengths = {0.3, 0.7};
    const std::vector<double> weights = uniformNumbers(37);
    std::vector<double> result(300, 5.0);

    data.correlation(lengths).addWeightedSums(
        {points.coordinates.data(), points.coordinates.data() + 300}, 300, weights.data(),
        result.data());

    for (std::size_t i = 0; i < 300; ++i) {
        long double expected = 5.0L;
        for (std::size_t j = 0; j < 37; ++j) {
            expected += weights[j] * correlationOf(points.at(i), data.at(j), lengths);
        }
        EXPECT_NEAR(result[i], static_cast<double>(expected), 1e-13) << i;
    }
}

class MaternCorrelationDerivatives : public testing::TestWithParam<std::size_t>
{};

TEST_P(MaternCorrelationDerivatives, AreThoseByTheLogarithmsOfTheLengths)
{
    const std::size_t n = 21;
    const std::size_t inputs = GetParam();
    const Cases data{n, inputs};
    const std::vector<double> inverse = uniformNumbers(n * n);
    const double factor = 1.7;
    const double step = 1e-5;
    std::vector<double> lengths;
    for (std::size_t k = 0; k < inputs; ++k) {
        lengths.push_back(0.1 * std::pow(3.0, static_cast<double>((5 * k) % 7)));
    }
    std::vector<double> matrix(n * n);
    const MaternCorrelation correlation = data.correlation(lengths);
    correlation.fillLower(0, n, matrix.data());
    const std::size_t stride = correlation.productStride();
    std::vector<double> a = uniformNumbers(n);
    a.resize(stride, 0.0);
    std::vector<double> sums(inputs, 5.0);
    std::vector<double> products(inputs * stride, 7.0);

    // In two parts, as several threads do it.
    correlation.addDerivatives(0, 7, matrix.data(), inverse.data(), n, a.data(), factor,
                               sums.data(), products.data());
    correlation.addDerivatives(7, n, matrix.data(), inverse.data() + 7 * n + 7, n, a.data(), factor,
                               sums.data(), products.data());

    for (std::size_t k = 0; k < inputs; ++k) {
        const auto matrixAt = [&](double logarithmMoved) {
            std::vector<double> moved = lengths;
            moved[k] *= std::exp(logarithmMoved);
            std::vector<double> result(n * n);
            data.correlation(moved).fillLower(0, n, result.data());
            return result;
        };
        const std::vector<double> more = matrixAt(step);
        const std::vector<double> less = matrixAt(-step);
        double sum = 5.0;
        std::vector<double> product(n, 7.0);
        for (std::size_t j = 0; j < n; ++j) {
            for (std::size_t i = j + 1; i < n; ++i) {
                const double derivative = (more[j * n + i] - less[j * n + i]) / (2.0 * step);
                sum += (a[i] * a[j] * factor - inverse[j * n + i]) * derivative;
                product[i] += a[j] * derivative;
                product[j] += a[i] * derivative;
            }
        }
        // The central difference is good to the square of the step.
        EXPECT_NEAR(sums[k], sum, 1e-7) << k;
        for (std::size_t i = 0; i < n; ++i) {
            EXPECT_NEAR(products[k * stride + i], product[i], 1e-8) << k << ", " << i;
        }
    }
}

// Inputs are taken four at a time.
INSTANTIATE_TEST_SUITE_P(Inputs, MaternCorrelationDerivatives, testing::Values(1, 2, 3, 4, 5, 9));

TEST(MaternCorrelation, DifferentiatesWeightedSumsByThePoint)
{
    const Cases data{37, 2};
    const Cases points{300, 2};
    const std::vector<double> lengths = {0.3, 0.7};
    const std::vector<double> weights = uniformNumbers(37);
    const MaternCorrelation correlation = data.correlation(lengths);
    std::vector<double> first(300, 5.0);
    std::vector<double> second(300, 0.0);

    correlation.addWeightedGradients({points.coordinates.data(), points.coordinates.data() + 300},
                                     300, weights.data(), {first.data(), second.data()});

    const auto sumAt = [&](std::vector<double> point) {
        double sum = 0.0;
        correlation.addWeightedSums({&point[0], &point[1]}, 1, weights.data(), &sum);
        return sum;
    };
    const double step = 1e-5;
    for (const std::size_t i : {0u, 255u, 256u, 299u}) {
        const std::vector<double> x = points.at(i);
        // The central difference is good to the square of the step.
        EXPECT_NEAR(first[i] - 5.0,
                    (sumAt({x[0] + step, x[1]}) - sumAt({x[0] - step, x[1]})) / (2.0 * step), 1e-7);
        EXPECT_NEAR(second[i],
                    (sumAt({x[0], x[1] + step}) - sumAt({x[0], x[1] - step})) / (2.0 * step), 1e-7);
    }
}

TEST(MaternCorrelation, CorrelatesPointsWithAllCases)
{
    constexpr std::size_t stride = 24; // the 19 cases, filled up to whole registers
    const Cases data{19, 3};
    const Cases points{5, 3};
    const std::vector<double> lengths = {0.2, 1.0, 30.0};
    const MaternCorrelation correlation = data.correlation(lengths);
    ASSERT_EQ(correlation.correlationStride(), stride);
    AlignedBuffer whole(stride * 5);
    AlignedBuffer one(stride * 5);

    const double* coordinates = points.coordinates.data();
    correlation.correlate({coordinates, coordinates + 5, coordinates + 10}, 5, whole.data());
    correlation.correlateInput(1, coordinates + 5, 5, one.data());

    for (std::size_t i = 0; i < 5; ++i) {
        for (std::size_t j = 0; j < 19; ++j) {
            EXPECT_NEAR(whole.data()[i * stride + j],
                        static_cast<double>(correlationOf(points.at(i), data.at(j), lengths)),
                        2e-15);
            EXPECT_NEAR(one.data()[i * stride + j],
                        static_cast<double>(
                            correlationOf({points.at(i)[1]}, {data.at(j)[1]}, {lengths[1]})),
                        2e-15);
        }
    }
}
