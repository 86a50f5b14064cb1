#include <mirel_fitting/KrigingSurrogateModel.h>

#include "KrigingTestSupport.h"
#include "TestFunctions.h"

#include <gtest/gtest.h>

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
