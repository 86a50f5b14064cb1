#include <mirel_fitting/KrigingSurrogateModel.h>

#include "KrigingTestSupport.h"
#include "TestFunctions.h"

#include <gtest/gtest.h>

namespace {

double errorOf(const KrigingSurrogateModel& model, const Function& function, std::size_t inputs)
{
    const Columns points = latinHypercube(1000, inputs, 4711);
    return relativeError(predictions(model, points), valuesOf(function, points));
}

double errorOfFit(const Function& function, std::size_t inputs, std::size_t cases, int trendOrder)
{
    const Columns design = latinHypercube(cases, inputs, 17);
    KrigingArguments arguments;
    arguments.trendOrder = trendOrder;
    return errorOf(arguments.model(design, {valuesOf(function, design)}), function, inputs);
}

} // namespace

// The limits are about twice what maximum likelihood with this correlation reaches on such designs:
// Branin 4e-3 and 5e-5, Hartmann 0.4. A search that ends in a false optimum misses them by far.

TEST(KrigingAccuracy, PredictsBraninFrom50Cases)
{
    EXPECT_LT(errorOfFit(branin, 2, 50, 0), 1e-2);
    EXPECT_LT(errorOfFit(branin, 2, 50, 1), 1e-2);
    EXPECT_LT(errorOfFit(branin, 2, 50, 2), 1e-2);
}

TEST(KrigingAccuracy, PredictsBraninFrom200Cases)
{
    EXPECT_LT(errorOfFit(branin, 2, 200, 1), 1e-4);
}

TEST(KrigingAccuracy, PredictsHartmannFrom200Cases)
{
    EXPECT_LT(errorOfFit(hartmann6, 6, 200, 1), 0.6);
}

TEST(KrigingAccuracy, SmoothsNoiseAway)
{
    // Noise of 5 over the spread of 51; 200 cases average it to about a third.
    const Columns design = latinHypercube(200, 2, 17);
    std::vector<double> output = valuesOf(branin, design);
    UniformNumbers numbers(23);
    for (double& y : output) {
        y += 5.0 * numbers.normal();
    }
    const KrigingSurrogateModel model = KrigingArguments().model(design, {output});

    EXPECT_LT(errorOf(model, branin, 2), 0.08);
    const KrigingReport report = model.krigingReport(0);
    EXPECT_NEAR(std::sqrt(report.nugget * report.processVariance), 5.0, 1.0);
    EXPECT_GT(model.fitMetrics(0).rmse, 3.0) << "it does not pass through the cases";
}

TEST(KrigingAccuracy, EstimatesItsErrorByLeavingCasesOut)
{
    const Columns design = latinHypercube(100, 2, 17);
    const KrigingSurrogateModel model =
        KrigingArguments().model(design, {valuesOf(branin, design)});
    const Columns points = latinHypercube(1000, 2, 4711);
    const std::vector<double> expected = valuesOf(branin, points);
    const std::vector<double> found = predictions(model, points);
    double squares = 0.0;
    for (std::size_t i = 0; i < 1000; ++i) {
        squares += (found[i] - expected[i]) * (found[i] - expected[i]);
    }

    // Errors concentrate at the border: an estimate of the order of the error is what to expect.
    const double ratio = model.fitMetrics(0).looRmse / std::sqrt(squares / 1000.0);
    EXPECT_GT(ratio, 0.2);
    EXPECT_LT(ratio, 5.0);
}

struct Reached
{
    double (*function)(const std::vector<double>&);
    std::size_t inputs;
    std::size_t cases;
    int trendOrder;
    std::uint64_t seed;
    double logLikelihood;
};

class KrigingLikelihoodReached : public testing::TestWithParam<Reached>
{};

// The best of 24 searches by another optimiser, NLopt 2.7.1's L-BFGS with bounds, from lengths of
// half the range, of twice the range and at random between a fifth of it and ten times.
const Reached designs[] = {{branin, 2, 50, 0, 1, -102.0},   {branin, 2, 50, 0, 2, -102.1},
                           {branin, 2, 50, 1, 1, -99.2},    {branin, 2, 50, 1, 2, -99.3},
                           {branin, 2, 200, 0, 1, 266.2},   {branin, 2, 200, 1, 1, 278.6},
                           {hartmann6, 6, 50, 0, 1, -17.6}, {hartmann6, 6, 50, 0, 2, -18.5},
                           {hartmann6, 6, 50, 1, 1, -13.4}, {hartmann6, 6, 50, 1, 2, -16.9},
                           {hartmann6, 6, 200, 0, 1, 18.4}, {hartmann6, 6, 200, 1, 1, 19.2},
                           {borehole, 8, 50, 0, 1, -132.8}, {borehole, 8, 50, 0, 2, -134.8},
                           {borehole, 8, 50, 1, 1, -124.3}, {borehole, 8, 50, 1, 2, -126.9},
                           {borehole, 8, 200, 0, 1, -97.5}, {borehole, 8, 200, 1, 1, -87.7},
                           {circuit, 6, 50, 0, 1, 81.4},    {circuit, 6, 50, 0, 2, 75.6},
                           {circuit, 6, 50, 1, 1, 90.3},    {circuit, 6, 50, 1, 2, 83.2},
                           {circuit, 6, 200, 0, 1, 726.8},  {circuit, 6, 200, 1, 1, 738.8}};

TEST_P(KrigingLikelihoodReached, IsThatOfManySearches)
{
    const Reached reached = GetParam();
    const Columns design = latinHypercube(reached.cases, reached.inputs, reached.seed);
    KrigingArguments arguments;
    arguments.trendOrder = reached.trendOrder;
    arguments.nugget = 1e-10;
    arguments.nuggetMode = 1;
    const KrigingSurrogateModel model =
        arguments.model(design, {valuesOf(reached.function, design)});

    // Where cases are few, the trend may be the constant one: then it is the likelihood with that.
    const KrigingReport report = model.krigingReport(0);
    const auto same = std::find_if(std::begin(designs), std::end(designs), [&](const Reached& one) {
        return one.function == reached.function && one.cases == reached.cases &&
               one.seed == reached.seed && one.trendOrder == report.trendOrder;
    });
    ASSERT_NE(same, std::end(designs));
    // Half a unit of log-likelihood is no evidence.
    EXPECT_GT(report.logLikelihood, same->logLikelihood - 0.5);
}

INSTANTIATE_TEST_SUITE_P(Designs, KrigingLikelihoodReached, testing::ValuesIn(designs));
