#include <mirel_fitting/kriging/search/KrigingObjective.h>

#include <mirel_fitting/kriging/search/SearchPolicy.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

namespace {

std::shared_ptr<KrigingData> someCases()
{
    const Columns x = latinHypercube(30, 2, 5);
    return dataOf(
        x, valuesOf([](const std::vector<double>& p) { return std::sin(6.0 * p[0]) + 0.3 * p[1]; },
                    x));
}

std::vector<double> logarithms(const KrigingParameters& parameters)
{
    return {std::log(parameters.lengths[0]), std::log(parameters.lengths[1]),
            std::log(parameters.nugget) / SearchPolicy::nuggetUnit};
}

struct KrigingObjectiveTest : testing::Test
{
    KrigingSearchSettings settings;
    const std::shared_ptr<KrigingData> data = someCases();
    const KrigingSearchVariables variables{*data, settings};
    KrigingObjective objective{data, variables};
};

} // namespace

TEST_F(KrigingObjectiveTest, IsTheLikelihoodAndThePriorOfLogarithms)
{
    const std::vector<double> point = logarithms({{0.3, 2.0}, 1e-3});
    const LengthPrior prior(variables.spacing());
    const double likelihood = KrigingLikelihood(data).evaluate({0.3, 2.0}, 1e-3);
    EXPECT_NEAR(objective.value(point),
                likelihood + prior.value(std::log(0.3)) + prior.value(std::log(2.0)), 1e-9);
    EXPECT_NEAR(objective.logLikelihood(point), likelihood, 1e-9);
    EXPECT_EQ(objective.evaluations(), 1u);
}

TEST(KrigingObjective, SearchesWhatIsNotFixedOnly)
{
    KrigingSearchSettings settings;
    settings.fixedLengths = {0.3, 2.0};
    const auto data = someCases();
    const KrigingSearchVariables variables(*data, settings);
    KrigingObjective objective(data, variables);
    const std::vector<double> point = {std::log(1e-3) / SearchPolicy::nuggetUnit};
    std::vector<double> gradient;
    std::vector<double> curvature;

    objective.value(point);
    objective.curvature(curvature);
    objective.gradient(gradient);

    EXPECT_EQ(variables.parameters(point).lengths, settings.fixedLengths);
    EXPECT_EQ(gradient.size(), 1u);
    EXPECT_EQ(curvature.size(), 1u);
}

TEST_F(KrigingObjectiveTest, HasTheGradientOfItsDifferences)
{
    const std::vector<double> point = logarithms({{0.3, 2.0}, 1e-3});
    std::vector<double> gradient;
    objective.value(point);
    objective.gradient(gradient);

    for (std::size_t k = 0; k < 3; ++k) {
        constexpr double step = 1e-4;
        std::vector<double> up = point;
        std::vector<double> down = point;
        up[k] += step;
        down[k] -= step;
        const double slope = (objective.value(up) - objective.value(down)) / (2.0 * step);
        // The truncation is of the order of the squared step.
        EXPECT_NEAR(gradient[k], slope, 1e-5 * (1.0 + std::fabs(slope))) << k;
    }
}

TEST_F(KrigingObjectiveTest, EvaluatesAPointOnceUntilItsGradientIsTaken)
{
    const std::vector<double> point = logarithms({{0.3, 2.0}, 1e-3});
    const double value = objective.value(point);
    EXPECT_EQ(objective.value(point), value);
    EXPECT_EQ(objective.evaluations(), 1u);

    std::vector<double> gradient;
    objective.gradient(gradient);

    EXPECT_EQ(objective.value(point), value);
    EXPECT_EQ(objective.evaluations(), 2u);
}

TEST_F(KrigingObjectiveTest, KnowsTheNoiseOfAnyPoint)
{
    objective.value(logarithms({{1.0, 1.0}, 1e-6}));

    KrigingLikelihood likelihood(data);
    likelihood.evaluate({0.3, 2.0}, 1e-3);
    EXPECT_NEAR(objective.noiseVariance(logarithms({{0.3, 2.0}, 1e-3})),
                1e-3 * likelihood.processVariance(), 1e-12);
}
