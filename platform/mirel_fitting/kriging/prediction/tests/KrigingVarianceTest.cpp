#include <mirel_fitting/kriging/prediction/KrigingVariance.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using Real = DirectKriging::Real;
using Matrix = DirectKriging::Matrix;

constexpr std::size_t cases = 12;
const std::vector<double> lengths = {0.4, 0.9};

/** Twelve cases over two inputs; the third stands for three rows, the last one for two. */
FittedKriging modelOf(int trendOrder, double nugget)
{
    auto data = std::make_shared<KrigingData>();
    data->cases = cases;
    data->inputs = 2;
    data->coordinates = UniformNumbers(6).next(2 * cases);
    data->replicates.assign(cases, 1.0);
    data->replicates[2] = 3.0;
    data->replicates[cases - 1] = 2.0;
    const auto trend = std::make_shared<KrigingTrend>(cases, 2, data->coordinates, trendOrder, 0);
    data->terms = trend->size();
    data->trend = trend->matrix();
    const auto correlation =
        std::make_shared<MaternCorrelation>(cases, 2, data->coordinates.data());
    correlation->setLengths(lengths);

    FittedKriging model;
    model.inputs = {0, 1};
    model.trend = trend;
    model.correlation = correlation;
    model.data = data;
    model.nugget = nugget;
    return model;
}

std::vector<Real> caseOf(const FittedKriging& model, std::size_t i)
{
    return {model.data->coordinates[i], model.data->coordinates[cases + i]};
}

/** Of order 0 or 1. */
std::vector<Real> terms(const FittedKriging& model, const std::vector<Real>& x)
{
    std::vector<Real> values = {1.0L, 2.0L * x[0] - 1.0L, 2.0L * x[1] - 1.0L};
    values.resize(model.data->terms);
    return values;
}

DirectKriging directly(const FittedKriging& model)
{
    Matrix points;
    Matrix trend;
    for (std::size_t i = 0; i < cases; ++i) {
        points.push_back(caseOf(model, i));
        trend.push_back(terms(model, points.back()));
    }
    return {points,  trend,        std::vector<Real>(cases, 0.0L),
            lengths, model.nugget, model.data->replicates};
}

double directVariance(const FittedKriging& model, const std::vector<Real>& point)
{
    return static_cast<double>(directly(model).relativeVariance(point, terms(model, point)));
}

std::vector<double> variances(const KrigingVariance& variance, Columns points)
{
    const std::size_t count = points[0].size();
    KrigingVariance::Workspace workspace(variance, count);
    std::vector<double> result(count);
    variance.evaluate({points[0].data(), points[1].data()}, count, workspace, result.data());
    return result;
}

const Columns somePoints = {{0.1, 0.5, 0.93, 1.7, -3.0}, {0.2, 0.6, 0.01, 0.5, 9.0}};

} // namespace

TEST(KrigingVariance, SolvesTheKrigingSystem)
{
    for (const int order : {0, 1}) {
        for (const double nugget : {1e-6, 0.05}) {
            const FittedKriging model = modelOf(order, nugget);

            const std::vector<double> found = variances(KrigingVariance(model), somePoints);

            for (std::size_t i = 0; i < found.size(); ++i) {
                const double expected = directVariance(model, {somePoints[0][i], somePoints[1][i]});
                EXPECT_NEAR(found[i], expected, 1e-10 * (1.0 + expected))
                    << order << ", " << nugget << ", point " << i;
            }
        }
    }
}

TEST(KrigingVariance, CountsTheReplicatesOfACase)
{
    const FittedKriging model = modelOf(1, 0.5);
    const Columns atCases = {
        {model.data->coordinates[1], model.data->coordinates[2]},
        {model.data->coordinates[cases + 1], model.data->coordinates[cases + 2]}};

    const std::vector<double> found = variances(KrigingVariance(model), atCases);

    EXPECT_NEAR(found[0], directVariance(model, caseOf(model, 1)), 1e-12);
    EXPECT_NEAR(found[1], directVariance(model, caseOf(model, 2)), 1e-12);
    EXPECT_LT(found[1], 0.5 / 3.0) << "three rows have a third of the noise";
}

TEST(KrigingVariance, IsZeroAtInterpolatedCasesAndPositiveBetween)
{
    FittedKriging model = modelOf(1, 1e-9);
    model.interpolates = true;
    const std::vector<double>& x = model.data->coordinates;
    const Columns atCases = {{x.begin(), x.begin() + cases}, {x.begin() + cases, x.end()}};
    const KrigingVariance variance(model);

    for (const double value : variances(variance, atCases)) {
        EXPECT_EQ(value, 0.0);
    }
    for (const double value : variances(variance, somePoints)) {
        EXPECT_GT(value, 1e-6);
    }
    EXPECT_EQ(variance.noise(), 0.0);
}

TEST(KrigingVariance, IsTheErrorOfTheMeanAtCasesWithoutNoise)
{
    // A nugget so large that the variance of the cases' noise would hide that of the process.
    FittedKriging model = modelOf(1, 0.05);
    model.interpolates = true;
    const std::vector<double> found = variances(KrigingVariance(model), somePoints);

    for (std::size_t i = 0; i < found.size(); ++i) {
        const std::vector<Real> point = {somePoints[0][i], somePoints[1][i]};
        const auto expected =
            static_cast<double>(directly(model).errorWithoutNoise(point, terms(model, point)));
        EXPECT_NEAR(found[i], expected, 1e-10 * (1.0 + expected)) << i;
        EXPECT_LT(found[i], directVariance(model, point)) << i;
    }
}

TEST(KrigingVariance, HasTheNuggetAsNoiseOfANewCase)
{
    EXPECT_EQ(KrigingVariance(modelOf(0, 0.25)).noise(), 0.25);
}

TEST(KrigingVariance, IsThatOfAWeightedRegressionWithoutCorrelation)
{
    FittedKriging model = modelOf(1, 0.0);
    model.correlation = nullptr;
    Matrix normal(3, std::vector<Real>(3, 0.0L));
    for (std::size_t i = 0; i < cases; ++i) {
        const std::vector<Real> row = terms(model, caseOf(model, i));
        for (std::size_t a = 0; a < 3; ++a) {
            for (std::size_t b = 0; b < 3; ++b) {
                normal[a][b] += static_cast<Real>(model.data->replicates[i]) * row[a] * row[b];
            }
        }
    }
    const KrigingVariance variance(model);

    const std::vector<double> found = variances(variance, somePoints);

    for (std::size_t i = 0; i < found.size(); ++i) {
        const auto expected = static_cast<double>(DirectKriging::quadraticForm(
            normal, terms(model, {somePoints[0][i], somePoints[1][i]})));
        EXPECT_NEAR(found[i], expected, 1e-12 * (1.0 + expected)) << i;
    }
    EXPECT_EQ(variance.noise(), 1.0);
}
