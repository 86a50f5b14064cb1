#include <mirel_fitting/kriging/search/KrigingSubsetSearch.h>

#include "KrigingTestSupport.h"

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/ThreadCount.h>
#include <mirel_fitting/kriging/fit/KrigingFitter.h>
#include <mirel_fitting/kriging/likelihood/KrigingLikelihood.h>

#include <gtest/gtest.h>

namespace {

double wave(const std::vector<double>& x)
{
    return std::sin(5.0 * x[0]) + x[1] * x[1] * x[0];
}

std::shared_ptr<KrigingData> waves(std::size_t cases)
{
    const Columns inputs = latinHypercube(cases, 2, 3);
    return dataOf(inputs, valuesOf(wave, inputs));
}

} // namespace

TEST(KrigingSubsetSearch, HasTheLikelihoodOfAllCases)
{
    const auto data = waves(200);

    const KrigingSearchResult found = KrigingSubsetSearch::run(data, 0, {}, 60, 0);

    KrigingLikelihood likelihood(data);
    EXPECT_EQ(found.logLikelihood,
              likelihood.evaluate(found.parameters.lengths, found.parameters.nugget));
}

TEST(KrigingSubsetSearch, ComesCloseToTheSearchWithAllCases)
{
    const auto data = waves(200);
    const double best = KrigingSearch::run(data, {}).logLikelihood;

    EXPECT_GT(KrigingSubsetSearch::run(data, 0, {}, 100, 0).logLikelihood, best - 40.0);
    EXPECT_NEAR(KrigingSubsetSearch::run(data, 0, {}, 200, 0).logLikelihood, best, 1e-6);
}

TEST(KrigingSubsetSearch, SearchesWhereTheSubsetCannotSeparateTheTrend)
{
    // V2 differs in one case only, which a small subset has no reason to hold.
    Columns inputs = latinHypercube(200, 1, 3);
    inputs.emplace_back(200, 0.5);
    inputs[1][77] = 0.5 + 1e-6;
    std::vector<double> output;
    for (const double x : inputs[0]) {
        output.push_back(std::sin(5.0 * x));
    }
    const auto data = dataOf(inputs, output);

    EXPECT_TRUE(std::isfinite(KrigingSubsetSearch::ofSubset(*data, 1, {}, 20).logLikelihood));
}

TEST(KrigingSubsetSearch, IsUsedAndSaidWhereCasesAreMany)
{
    Columns inputs = latinHypercube(300, 2, 3);
    const Columns points = latinHypercube(100, 2, 4);
    const std::vector<double> output = valuesOf(wave, inputs);
    const KrigingCases cases(pointersTo(inputs), 300);
    KrigingFitOptions options;
    options.trendOrder = 0;
    options.sizes.maxSearched = 200;
    options.sizes.searched = 100;

    double last = 0.0;
    bool decreases = false;
    const KrigingFit fit = [&] {
        FitProgress progress([&](double fraction, const std::string&) {
            decreases = decreases || fraction < last;
            last = fraction;
            return true;
        });
        return fitKriging(cases, output, options);
    }();

    EXPECT_FALSE(decreases);
    Columns at = points;
    std::vector<double> values(100);
    fit.predictor.predict(pointersTo(at), 0, 100, values.data());
    EXPECT_LT(relativeError(values, valuesOf(wave, points)), 1e-4);
    EXPECT_EQ(fit.warnings,
              std::vector<std::string>(
                  {"There are more than 200 distinct cases: the model is the exact one of all of "
                   "them, with the correlation lengths of 100 cases spread over all, refined with "
                   "all."}));
}

TEST(KrigingSubsetSearch, GainsLikelihoodByEachStepWithAllCases)
{
    const auto data = waves(200);
    const auto after = [&](int steps) { return KrigingSubsetSearch::run(data, 0, {}, 60, steps); };

    const KrigingSearchResult two = after(2);

    EXPECT_GT(after(1).logLikelihood, after(0).logLikelihood + 1.0);
    EXPECT_GE(two.logLikelihood, after(1).logLikelihood);
    KrigingLikelihood likelihood(data);
    EXPECT_EQ(two.logLikelihood,
              likelihood.evaluate(two.parameters.lengths, two.parameters.nugget));
}

TEST(KrigingSubsetSearch, NeverLosesLikelihoodByAStep)
{
    // Noise, smooth and rough outputs, from subsets that show little: steps may make it worse.
    for (const std::uint64_t seed : {3, 4, 5, 6}) {
        const Columns inputs = latinHypercube(150, 3, seed);
        std::vector<double> output = valuesOf(
            [](const std::vector<double>& x) { return std::sin(9.0 * x[0] * x[1]) + x[2]; },
            inputs);
        UniformNumbers numbers(seed);
        for (double& y : output) {
            y += (seed % 2 == 0 ? 0.1 : 0.0) * numbers.normal();
        }
        const auto data = dataOf(inputs, output);
        for (const std::size_t size : {20, 60}) {
            double before = KrigingSubsetSearch::run(data, 0, {}, size, 0).logLikelihood;
            for (const int steps : {1, 2}) {
                const double after =
                    KrigingSubsetSearch::run(data, 0, {}, size, steps).logLikelihood;
                EXPECT_GE(after, before) << "seed " << seed << ", " << size << " cases";
                before = after;
            }
        }
    }
}

TEST(KrigingSubsetSearch, EvaluatesAllCasesAFewTimesOnly)
{
    const auto data = waves(200);

    // The two nuggets, the better of them once more unless it was the last, and the steps, the last
    // of which is shortened twice at most.
    EXPECT_LE(KrigingSubsetSearch::run(data, 0, {}, 60, 1).evaluations, 6u);
}

TEST(KrigingSubsetSearch, RefinesToTheSameBitsOnAnyNumberOfThreads)
{
    // Enough cases for the factorisation to be shared out.
    const auto data = waves(700);
    const int before = threadCount();
    const auto onThreads = [&](int threads) {
        setThreadCount(threads);
        return KrigingSubsetSearch::run(data, 0, {}, 60, 2);
    };

    const KrigingSearchResult one = onThreads(1);
    const KrigingSearchResult three = onThreads(3);
    setThreadCount(before);

    EXPECT_EQ(three.logLikelihood, one.logLikelihood);
    EXPECT_EQ(three.parameters.lengths, one.parameters.lengths);
    EXPECT_EQ(three.parameters.nugget, one.parameters.nugget);
}

TEST(KrigingSubsetSearch, RefinesByARuleOfSize)
{
    Columns inputs = latinHypercube(300, 2, 3);
    const std::vector<double> output = valuesOf(wave, inputs);
    const KrigingCases cases(pointersTo(inputs), 300);
    const auto likelihoodWith = [&](std::size_t refinedTwice) {
        KrigingFitOptions options;
        options.trendOrder = 0;
        options.sizes.maxSearched = 200;
        options.sizes.searched = 60;
        options.sizes.maxRefinedTwice = refinedTwice;
        return fitKriging(cases, output, options).report.logLikelihood;
    };

    EXPECT_GT(likelihoodWith(300), likelihoodWith(299));
}

TEST(KrigingSubsetSearch, LeavesFixedLengthsAsTheyAre)
{
    const auto data = waves(200);
    KrigingSearchSettings settings;
    settings.fixedLengths = {0.4, 1.0};

    EXPECT_EQ(KrigingSubsetSearch::run(data, 0, settings, 60, 2).parameters.lengths,
              settings.fixedLengths);
}

TEST(KrigingSubsetSearch, TriesTheLeastNuggetWhereAFewCasesNeededLittle)
{
    KrigingSearchSettings settings;
    settings.requestedNugget = 1e-10;
    EXPECT_EQ(KrigingSubsetSearch::nuggetToTry(settings, 1e-8), 1e-10);
    EXPECT_EQ(KrigingSubsetSearch::nuggetToTry(settings, 1e-10), std::nullopt);
    EXPECT_EQ(KrigingSubsetSearch::nuggetToTry(settings, 1e-3), std::nullopt);

    settings.isNuggetFixed = true;
    EXPECT_EQ(KrigingSubsetSearch::nuggetToTry(settings, 1e-8), std::nullopt);
}
