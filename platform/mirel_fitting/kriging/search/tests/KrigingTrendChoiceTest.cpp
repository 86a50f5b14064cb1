#include <mirel_fitting/kriging/search/KrigingTrendChoice.h>

#include <mirel_fitting/kriging/likelihood/KrigingLikelihood.h>

#include "KrigingTestSupport.h"
#include "TestFunctions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

struct Problem
{
    std::shared_ptr<KrigingData> data = std::make_shared<KrigingData>();
    std::shared_ptr<const KrigingTrend> trend;

    Problem(double (*function)(const std::vector<double>&), std::size_t cases, std::size_t inputs,
            int order, std::uint64_t seed = 5)
    {
        const Columns columns = latinHypercube(cases, inputs, seed);
        data->cases = cases;
        data->inputs = inputs;
        for (const std::vector<double>& column : columns) {
            data->coordinates.insert(data->coordinates.end(), column.begin(), column.end());
        }
        data->output = valuesOf(function, columns);
        data->replicates.assign(cases, 1.0);
        data->withinSquares.assign(cases, 0.0);
        trend = std::make_shared<KrigingTrend>(cases, inputs, data->coordinates, order, inputs + 1);
        data->terms = trend->size();
        data->trend = trend->matrix();
    }

    KrigingTrendChoice::Result choose() const { return KrigingTrendChoice::run(data, trend, {}); }
};

double waves(const std::vector<double>& x)
{
    return std::sin(5.0 * x[0]) + std::cos(4.0 * x[1]);
}

double slope(const std::vector<double>& x)
{
    return 4.0 * x[0] - 3.0 * x[1] + 0.1 * std::sin(7.0 * x[0] + 9.0 * x[1]);
}

double unevenSlopes(const std::vector<double>& x)
{
    return x[0] + 2.0 * x[1] + 3.0 * x[2] + 4.0 * x[3] + 0.3 * std::sin(9.0 * x[0]);
}

double bowl(const std::vector<double>& x)
{
    return 9.0 * x[0] * x[0] - 7.0 * x[0] * x[1] + 8.0 * x[1] * x[1] +
           0.1 * std::sin(7.0 * x[0] + 9.0 * x[1]);
}

} // namespace

TEST(KrigingTrendChoice, IsNeededForATrendWithFewCasesPerTerm)
{
    const Problem few(waves, 59, 2, 1);
    const Problem enough(waves, 60, 2, 1); // twenty for each of three terms
    const Problem constant(waves, 10, 2, 0);

    EXPECT_TRUE(KrigingTrendChoice::isNeeded(*few.trend, *few.data));
    EXPECT_FALSE(KrigingTrendChoice::isNeeded(*enough.trend, *enough.data));
    EXPECT_FALSE(KrigingTrendChoice::isNeeded(*constant.trend, *constant.data));
}

TEST(KrigingTrendChoice, TakesTheConstantWhereSlopesExplainLittle)
{
    const KrigingTrendChoice::Result result = Problem(waves, 20, 2, 1).choose();

    EXPECT_EQ(result.trend->order(), 0);
    EXPECT_EQ(result.data->terms, 1u);
    EXPECT_FALSE(
        KrigingTrendChoice::isBetter(result.qualityOfHighest, result.quality, result.data->cases));
}

TEST(KrigingTrendChoice, TakesTheTrendAskedForWhereItExplainsMuch)
{
    const Problem problem(slope, 20, 2, 1);

    const KrigingTrendChoice::Result result = problem.choose();

    EXPECT_EQ(result.trend, problem.trend);
    EXPECT_EQ(result.data, problem.data);
    // What the search from many starts finds, too.
    EXPECT_NEAR(result.found.logLikelihood, KrigingSearch::run(problem.data, {}).logLikelihood,
                0.02);
}

TEST(KrigingTrendChoice, TakesTheOrderBetween)
{
    EXPECT_EQ(Problem(slope, 25, 2, 2).choose().trend->order(), 1);
    EXPECT_EQ(Problem(bowl, 25, 2, 2).choose().trend->order(), 2);
}

TEST(KrigingTrendChoice, MeasuresTheCorrectedAkaikeCriterionAndTheLeaveOneOutError)
{
    const KrigingTrendChoice::Result result = Problem(waves, 20, 2, 1).choose();

    // One term, two lengths and the variance: k = 4, n = 20.
    EXPECT_DOUBLE_EQ(result.quality.akaike, -2.0 * result.found.logLikelihood + 8.0 + 40.0 / 15.0);
    KrigingLikelihood likelihood(result.data);
    likelihood.evaluate(result.found.parameters.lengths, result.found.parameters.nugget);
    double squares = 0.0;
    for (const double residual : likelihood.leaveOneOutResiduals()) {
        squares += residual * residual;
    }
    EXPECT_DOUBLE_EQ(result.quality.leaveOneOutError, std::sqrt(squares / 20.0));
}

TEST(KrigingTrendChoice, AddsUpWhatBothSayOfTheError)
{
    const KrigingTrendChoice::Quality lower = {10.0, 0.2};

    // The errors say 50 ln(ratio), the criterion half of its difference; together 1 is enough.
    EXPECT_TRUE(KrigingTrendChoice::isBetter({7.9, 0.2}, lower, 50));
    EXPECT_FALSE(KrigingTrendChoice::isBetter({8.1, 0.2}, lower, 50));
    EXPECT_TRUE(KrigingTrendChoice::isBetter({10.0, 0.2 * std::exp(-0.021)}, lower, 50));
    EXPECT_FALSE(KrigingTrendChoice::isBetter({10.0, 0.2 * std::exp(-0.019)}, lower, 50));
    EXPECT_TRUE(KrigingTrendChoice::isBetter({14.0, 0.2 * std::exp(-0.07)}, lower, 50));
    EXPECT_FALSE(KrigingTrendChoice::isBetter({4.0, 0.2 * std::exp(0.05)}, lower, 50));
}

TEST(KrigingTrendChoice, KeepsTheLowerOrderWhereNothingIsKnownOfTheHigher)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const KrigingTrendChoice::Quality known = {10.0, 0.2};

    EXPECT_FALSE(KrigingTrendChoice::isBetter({infinity, 0.1}, known, 50));
    EXPECT_FALSE(KrigingTrendChoice::isBetter({5.0, infinity}, known, 50));
    EXPECT_FALSE(KrigingTrendChoice::isBetter({infinity, infinity}, {infinity, infinity}, 50));
    EXPECT_FALSE(KrigingTrendChoice::isBetter({10.0, 0.0}, {10.0, 0.0}, 50));
}

TEST(KrigingTrendChoice, SearchesARejectedOrderToTheEnd)
{
    // Ten of twelve cases would go into terms, lengths and variance: the criterion leaves the
    // slopes no chance, but the figures reported are those of a search that has converged.
    const Problem problem(unevenSlopes, 12, 4, 1);

    const KrigingTrendChoice::Result result = problem.choose();

    ASSERT_EQ(result.trend->order(), 0);
    const double penalty = 20.0 + 220.0; // of k = 10
    KrigingSearch::Settings nearby;
    nearby.starts = {result.found.parameters};
    if (!result.found.secondParameters.lengths.empty()) {
        nearby.starts.push_back(result.found.secondParameters);
    }
    EXPECT_DOUBLE_EQ(result.qualityOfHighest.akaike,
                     penalty - 2.0 * KrigingSearch::run(problem.data, nearby).logLikelihood);
}

namespace {

/** Errors at other points, with 50 cases. */
struct Errors
{
    double constant;
    double linear;
    double chosen;

    Errors(double (*function)(const std::vector<double>&), std::size_t inputs, std::uint64_t seed)
    {
        const Columns x = latinHypercube(50, inputs, seed);
        const Columns points = latinHypercube(500, inputs, seed + 1000);
        const std::vector<double> truth = valuesOf(function, points);
        const auto errorWith = [&](const KrigingArguments& arguments) {
            const KrigingSurrogateModel model = arguments.model(x, {valuesOf(function, x)});
            return relativeError(predictions(model, points), truth);
        };
        KrigingArguments arguments;
        chosen = errorWith(arguments);
        // No order is chosen for given lengths.
        const Problem problem(function, 50, inputs, 1, seed);
        const KrigingParameters found = KrigingSearch::run(problem.data, {}).parameters;
        arguments.correlationLengths = found.lengths;
        arguments.nugget = found.nugget;
        arguments.nuggetMode = 1;
        linear = errorWith(arguments);
        arguments = {};
        arguments.trendOrder = 0;
        constant = errorWith(arguments);
    }
};

} // namespace

TEST(KrigingTrendChoice, IsSeldomMuchWorseThanTheBetterOrder)
{
    // Of 24 designs each of three functions: a slope suits one of them and spoils another.
    constexpr double much = 1.1;
    int worse = 0;
    int constantWorse = 0;
    int linearWorse = 0;
    for (std::uint64_t seed = 1; seed <= 24; ++seed) {
        for (const Errors& errors :
             {Errors(borehole, 8, seed), Errors(circuit, 6, seed), Errors(unevenSlopes, 4, seed)}) {
            const double better = std::min(errors.constant, errors.linear);
            worse += errors.chosen > much * better ? 1 : 0;
            constantWorse += errors.constant > much * better ? 1 : 0;
            linearWorse += errors.linear > much * better ? 1 : 0;
        }
    }

    EXPECT_LE(worse, 6);
    EXPECT_GE(constantWorse, 24);
    EXPECT_GE(linearWorse, 12);
}
