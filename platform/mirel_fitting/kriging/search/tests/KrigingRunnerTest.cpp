#include <mirel_fitting/kriging/search/KrigingRunner.h>

#include <mirel_fitting/kriging/likelihood/KrigingLikelihood.h>

#include "KrigingTestSupport.h"

#include <gtest/gtest.h>

namespace {

std::shared_ptr<KrigingData> noisyWave()
{
    const Columns x = latinHypercube(40, 2, 5);
    auto data = std::make_shared<KrigingData>();
    data->cases = 40;
    data->inputs = 2;
    data->terms = 1;
    for (const std::vector<double>& column : x) {
        data->coordinates.insert(data->coordinates.end(), column.begin(), column.end());
    }
    data->trend.assign(40, 1.0);
    data->output =
        valuesOf([](const std::vector<double>& p) { return std::sin(6.0 * p[0]) + 0.3 * p[1]; }, x);
    UniformNumbers numbers(8);
    for (double& y : data->output) {
        y += 0.1 * numbers.normal();
    }
    data->rows.assign(40, 1.0);
    data->scatter.assign(40, 0.0);
    return data;
}

class KrigingRunnerTest : public testing::Test
{
protected:
    double noiseAt(const std::vector<double>& point) const
    {
        const KrigingParameters at = objective.parameters(point);
        KrigingLikelihood likelihood(data);
        likelihood.evaluate(at.lengths, at.nugget);
        return at.nugget * likelihood.processVariance();
    }

    void expectOwnNoise(const KrigingRunner& runner) const
    {
        const double expected = noiseAt(runner.search()->point());
        EXPECT_NEAR(runner.noiseVariance(), expected, 1e-9 * expected);
    }

    std::shared_ptr<KrigingData> data = noisyWave();
    KrigingSearch::Settings settings;
    KrigingSearchVariables variables{*data, settings};
    KrigingObjective objective{data, settings};
};

} // namespace

TEST_F(KrigingRunnerTest, KnowsTheNoiseWhereItIsThoughOthersTakeTurns)
{
    KrigingRunner smooth(objective, variables, variables.uniform(0.5, 1e-6));
    KrigingRunner noisy(objective, variables, variables.uniform(0.5, 0.05));
    expectOwnNoise(smooth);
    expectOwnNoise(noisy);

    for (int turn = 0; turn < 3; ++turn) {
        smooth.step(1e-3);
        noisy.step(1e-3);
        expectOwnNoise(smooth);
        expectOwnNoise(noisy);
    }
}

TEST_F(KrigingRunnerTest, KnowsTheNoiseWhereItEndsWithoutAStep)
{
    KrigingRunner ending(objective, variables, variables.uniform(0.5, 1e-6));
    const KrigingRunner other(objective, variables, variables.uniform(0.5, 0.05));

    const double gained = ending.step(1e6); // nobody expects so much

    EXPECT_TRUE(ending.search()->isDone());
    EXPECT_EQ(gained, 0.0);
    EXPECT_NE(ending.noiseVariance(), objective.noiseVariance());
    expectOwnNoise(ending);
}

TEST_F(KrigingRunnerTest, CountsItsStepsAndGains)
{
    KrigingRunner runner(objective, variables, variables.uniform(0.5, 0.05));
    const double start = runner.search()->value();

    double gained = runner.step(1e-3);
    gained += runner.step(1e-3);

    EXPECT_EQ(runner.steps(), 2);
    EXPECT_GT(gained, 0.0);
    EXPECT_NEAR(runner.search()->value() - start, gained, 1e-9);
}
