#include <mirel_fitting/kriging/prediction/KrigingPredictor.h>

#include <mirel_fitting/ThreadCount.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

const std::vector<double> lengths = {0.3, 2.0};

/** Twelve cases over two inputs, a linear trend, made-up weights. */
struct Model
{
    std::vector<double> coordinates = UniformNumbers(1).next(24);
    std::vector<double> weights = UniformNumbers(2).next(12);
    std::vector<double> coefficients = {0.5, -1.0, 2.0};

    KrigingPredictor predictor(bool isCorrelated = true) const
    {
        FittedKriging model;
        model.inputs = {0, 2};
        model.minimum = {10.0, 0.0};
        model.range = {4.0, 1.0};
        model.trend = std::make_shared<KrigingTrend>(12, 2, coordinates, 1, 3);
        model.coefficients = coefficients;
        auto correlation = std::make_shared<MaternCorrelation>(12, 2, coordinates.data());
        correlation->setLengths(lengths);
        if (isCorrelated) {
            model.correlation = correlation;
            model.weights = weights;
        }
        model.offset = 100.0;
        model.scale = 3.0;
        return KrigingPredictor(std::move(model));
    }

    double directly(double x, double z) const
    {
        const long double u = (static_cast<long double>(x) - 10.0L) / 4.0L;
        long double sum = coefficients[0] + coefficients[1] * (2.0L * u - 1.0L) +
                          coefficients[2] * (2.0L * z - 1.0L);
        for (std::size_t j = 0; j < 12; ++j) {
            const long double a = std::sqrt(5.0L) * std::fabs(u - coordinates[j]) / lengths[0];
            const long double b = std::sqrt(5.0L) *
                                  std::fabs(static_cast<long double>(z) - coordinates[12 + j]) /
                                  lengths[1];
            sum += weights[j] * (1.0L + a + a * a / 3.0L) * (1.0L + b + b * b / 3.0L) *
                   std::exp(-a - b);
        }
        return static_cast<double>(100.0L + 3.0L * sum);
    }
};

/** Within the ranges of the inputs; the second column is not used. */
Columns randomPoints(std::size_t count)
{
    UniformNumbers numbers(9);
    Columns points(3, std::vector<double>(count));
    for (std::size_t i = 0; i < count; ++i) {
        points[0][i] = 10.0 + 4.0 * numbers.next();
        points[2][i] = numbers.next();
    }
    return points;
}

std::vector<double> predict(const KrigingPredictor& predictor, Columns points)
{
    std::vector<double> result(points.front().size());
    predictor.predict(pointersTo(points), 0, result.size(), result.data());
    return result;
}

} // namespace

TEST(KrigingPredictor, EqualsTheDefinitionInExtendedPrecision)
{
    // More points than a block has, the last block not full.
    const Model model;
    const Columns points = randomPoints(2500);

    const std::vector<double> values = predict(model.predictor(), points);

    for (std::size_t i = 0; i < values.size(); ++i) {
        EXPECT_NEAR(values[i], model.directly(points[0][i], points[2][i]), 1e-12) << i;
    }
}

TEST(KrigingPredictor, GivesNaNForPointsThatAreNotFiniteOnly)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();

    const std::vector<double> values =
        predict(Model().predictor(), {{11.0, nan, 11.0, 11.0, 11.0},
                                      {0.0, 0.0, infinity, 0.0, 0.0},
                                      {0.5, 0.5, 0.5, -infinity, 0.5}});

    EXPECT_TRUE(std::isnan(values[1]));
    EXPECT_TRUE(std::isnan(values[2])) << "an input that does not vary counts too";
    EXPECT_TRUE(std::isnan(values[3]));
    EXPECT_EQ(values[0], values[4]);
    EXPECT_NEAR(values[0], Model().directly(11.0, 0.5), 1e-12);
}

TEST(KrigingPredictor, ReturnsToTheTrendFarAwayAndWithoutCorrelation)
{
    const std::vector<double> values =
        predict(Model().predictor(), {{10.0 + 4e6, 1e308}, {0.0, 0.0}, {0.5, 0.5}});

    EXPECT_DOUBLE_EQ(values[0], 100.0 + 3.0 * (0.5 - (2e6 - 1.0)));
    EXPECT_TRUE(std::isfinite(values[1]));

    const std::vector<double> alone = predict(Model().predictor(false), {{12.0}, {0.0}, {1.0}});

    EXPECT_DOUBLE_EQ(alone[0], 100.0 + 3.0 * 2.5);
}

TEST(KrigingPredictor, GivesTheSameBitsHoweverThePointsAreDivided)
{
    const KrigingPredictor predictor = Model().predictor();
    const Columns points = randomPoints(1500);
    const std::vector<double> whole = predict(predictor, points);

    for (const std::size_t i : {std::size_t{0}, std::size_t{777}, std::size_t{1499}}) {
        EXPECT_EQ(predict(predictor, {{points[0][i]}, {0.0}, {points[2][i]}})[0], whole[i]);
    }
}

TEST(KrigingPredictor, GivesTheSameBitsForAnyNumberOfThreads)
{
    const KrigingPredictor predictor = Model().predictor();
    const Columns points = randomPoints(100000);
    setThreadCount(1);
    const std::vector<double> one = predict(predictor, points);
    setThreadCount(3);
    const std::vector<double> three = predict(predictor, points);
    setThreadCount(0);

    EXPECT_EQ(one, three);
}
