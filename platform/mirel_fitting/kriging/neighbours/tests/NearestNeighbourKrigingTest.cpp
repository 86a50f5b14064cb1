#include <mirel_fitting/kriging/neighbours/NearestNeighbourKriging.h>

#include "KrigingTestSupport.h"

#include <mirel_fitting/ThreadCount.h>

#include <gtest/gtest.h>

#include <numeric>

namespace {

double wave(const std::vector<double>& x)
{
    return std::sin(6.0 * x[0]) + x[1] * x[1];
}

/** Kriging of a wave over two inputs. */
class Example
{
public:
    explicit Example(std::size_t cases, std::size_t neighbours)
        : columns(latinHypercube(cases, 2, 3)), values(valuesOf(wave, columns))
    {
        kriging = std::make_unique<NearestNeighbourKriging>(*dataOf(columns, values), values,
                                                            lengths, neighbours);
    }

    double at(double x, double y) const
    {
        double result = 0.0;
        kriging->add({&x, &y}, 1, &result);
        return result;
    }

    static inline const std::vector<double> lengths = {0.5, 0.8};
    Columns columns;
    std::vector<double> values;
    std::unique_ptr<NearestNeighbourKriging> kriging;
};

double correlation(double distance, double length)
{
    const double z = std::sqrt(5.0) * std::fabs(distance) / length;
    return (1.0 + z + z * z / 3.0) * std::exp(-z);
}

/** Two cases at 0 and 0.3 with the values 1 and 2. */
std::unique_ptr<NearestNeighbourKriging> pair(double nugget)
{
    const auto cases = dataOf({{0.0, 0.3}}, {1.0, 2.0});
    const std::vector<double> length = {0.5};
    auto kriging = std::make_unique<NearestNeighbourKriging>(*cases, cases->output, length, 5);
    kriging->setParameters({length, nugget});
    return kriging;
}

double at(const NearestNeighbourKriging& kriging, double x)
{
    double result = 0.0;
    kriging.add({&x}, 1, &result);
    return result;
}

} // namespace

TEST(NearestNeighbourKriging, EqualsKrigingByItsDefinitionWhereAllCasesAreNear)
{
    const double nugget = 0.1;
    const double between = correlation(0.3, 0.5);
    const double first = correlation(0.2, 0.5);
    const double second = correlation(0.1, 0.5);
    // The inverse of ((d, c), (c, d)) is ((d, -c), (-c, d)) / (d^2 - c^2).
    const double d = 1.0 + nugget;
    const double determinant = d * d - between * between;
    const double expected =
        (first * (d * 1.0 - between * 2.0) + second * (d * 2.0 - between)) / determinant;
    const double explained =
        (first * first * d + second * second * d - 2.0 * first * second * between) / determinant;

    const auto kriging = pair(nugget);

    EXPECT_NEAR(at(*kriging, 0.2), expected, 1e-14);
    const double x = 0.2;
    double variance = 0.0;
    kriging->variances({&x}, 1, kriging->parameters(), &variance);
    EXPECT_NEAR(variance, 1.0 - explained, 1e-14);
}

TEST(NearestNeighbourKriging, InterpolatesTheCasesAndPredictsBetweenThem)
{
    const Example example(300, 20);

    for (const std::size_t i : {std::size_t{0}, std::size_t{17}, std::size_t{299}}) {
        EXPECT_NEAR(example.at(example.columns[0][i], example.columns[1][i]), example.values[i],
                    1e-9);
    }

    EXPECT_NEAR(example.at(0.4, 0.6), wave({0.4, 0.6}), 1e-4);
}

TEST(NearestNeighbourKriging, SharesTheNuggetAmongTheRowsOfACaseAndTakesCasesThatCoincide)
{
    const auto single = dataOf({{0.5}}, {3.0});
    single->replicates = {4.0};
    NearestNeighbourKriging kriging(*single, single->output, {0.5}, 5);
    kriging.setParameters({{0.5}, 0.8});

    EXPECT_NEAR(at(kriging, 0.5), 3.0 / (1.0 + 0.2), 1e-14);

    const auto same = dataOf({{0.2, 0.2, 0.2, 0.7}}, {1.0, 1.0, 1.0, 2.0});
    const NearestNeighbourKriging coinciding(*same, same->output, {0.5}, 4);

    EXPECT_NEAR(at(coinciding, 0.2), 1.0, 1e-6);
}

TEST(NearestNeighbourKriging, IsZeroFarFromAllCases)
{
    const Example example(50, 20);

    EXPECT_NEAR(example.at(1e5, 0.5), 0.0, 1e-200);
    EXPECT_NEAR(example.at(1e150, -1e150), 0.0, 1e-200);
}

TEST(NearestNeighbourKriging, IgnoresAnInputOfInfiniteLength)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const auto cases = dataOf({{0.0, 0.3}, {0.9, 0.1}}, {1.0, 2.0});
    const NearestNeighbourKriging both(*cases, cases->output, {0.5, infinity}, 5);
    const double x = 0.2;
    const double y = 0.4;
    double value = 0.0;
    both.add({&x, &y}, 1, &value);

    EXPECT_NEAR(value, at(*pair(0.0), 0.2), 1e-14);
}

TEST(NearestNeighbourKriging, HasTheGradientOfItsPredictions)
{
    // All cases are near: where another one comes near, the prediction has a step.
    const Example example(60, 60);
    const double x = 0.4;
    const double y = 0.6;
    const double step = 1e-5;
    double slopes[] = {1.0, 0.0}; // added to

    example.kriging->addGradients({&x, &y}, 1, {&slopes[0], &slopes[1]});

    // Central differences err by step^2, and by rounding over step.
    EXPECT_NEAR(slopes[0], 1.0 + (example.at(x + step, y) - example.at(x - step, y)) / (2.0 * step),
                1e-6);
    EXPECT_NEAR(slopes[1], (example.at(x, y + step) - example.at(x, y - step)) / (2.0 * step),
                1e-6);
}

TEST(NearestNeighbourKriging, PredictsALeftOutCaseLikeAModelWithoutIt)
{
    const Example all(60, 60);
    const std::size_t left = 23;
    std::vector<std::size_t> indices(60);
    std::iota(indices.begin(), indices.end(), std::size_t{0});
    indices.erase(indices.begin() + left);
    const KrigingData others = dataOf(all.columns, all.values)->subset(indices);
    NearestNeighbourKriging without(others, others.output, Example::lengths, 60);
    const NearestNeighbourKriging::Parameters parameters{{0.4, 0.7}, 1e-6};
    without.setParameters(parameters);
    double expected = 0.0;
    double variance = 0.0;
    const std::vector<const double*> point = {&all.columns[0][left], &all.columns[1][left]};
    without.add(point, 1, &expected);
    without.variances(point, 1, without.parameters(), &variance);

    const auto found = NearestNeighbourKriging::LeftOut(*all.kriging, {left}).predict(parameters);

    ASSERT_EQ(found.size(), 1u);
    EXPECT_NEAR(found[0].mean, expected, 1e-8);
    // The noise of the case itself is part of its spread.
    EXPECT_NEAR(found[0].variance, variance + 1e-6, 1e-9);
}

TEST(NearestNeighbourKriging, GivesTheSameBitsForAnyNumberOfThreads)
{
    const Example example(600, 20);
    const Columns points = latinHypercube(1000, 2, 9);
    std::vector<double> one(1000, 0.0);
    std::vector<double> three(1000, 0.0);

    setThreadCount(1);
    example.kriging->add({points[0].data(), points[1].data()}, 1000, one.data());
    setThreadCount(3);
    example.kriging->add({points[0].data(), points[1].data()}, 1000, three.data());
    setThreadCount(0);

    EXPECT_EQ(one, three);
}
