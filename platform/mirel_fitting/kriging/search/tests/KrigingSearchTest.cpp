#include <mirel_fitting/kriging/search/KrigingSearch.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/SurrogateModelInterface.h>
#include <mirel_fitting/kriging/likelihood/KrigingLikelihood.h>
#include <mirel_fitting/kriging/search/KrigingObjective.h>
#include <mirel_fitting/kriging/search/KrigingOptima.h>
#include <mirel_fitting/kriging/search/SearchPolicy.h>
#include <mirel_fitting/numerics/BoundedSearch.h>

#include "KrigingTestSupport.h"
#include "SanitizedRuns.h"
#include "TestFunctions.h"

#include <gtest/gtest.h>

namespace {

std::shared_ptr<KrigingData> wave(std::size_t cases)
{
    const Columns x = latinHypercube(cases, 2, 5);
    return dataOf(
        x, valuesOf([](const std::vector<double>& p) { return std::sin(6.0 * p[0]) + 0.3 * p[1]; },
                    x));
}

double likelihoodAt(const std::shared_ptr<KrigingData>& data, const std::vector<double>& lengths,
                    double nugget)
{
    return KrigingLikelihood(data).evaluate(lengths, nugget);
}

/** Rooms of 12 shapes, each described by four inputs of which two determine the others, turned to
 *  four sides, which each shape answers in its own way, with windows of four sizes in five places.
 */
std::shared_ptr<KrigingData> rooms(std::uint64_t seed)
{
    UniformNumbers numbers(seed);
    const std::vector<double> ofShape = numbers.next(12);
    const std::vector<double> ofWall = numbers.next(12);
    const std::vector<double> ofSide = numbers.next(48);
    Columns x(7);
    std::vector<double> output;
    for (std::size_t row = 0; row < 12 * 4 * 16; ++row) {
        const std::size_t shape = row / 64;
        const std::size_t side = row / 16 % 4;
        const double area = row % 16 == 0 ? 0.0 : 0.2 + 0.4 * static_cast<double>(row % 16 % 3);
        const double place = row % 16 == 0 ? 0.0 : 0.2 * static_cast<double>(1 + row % 16 / 3);
        if (numbers.next() > 0.8) {
            continue; // measured in four cases of five
        }
        const double high = ofShape[shape] > 0.5 ? 1.0 : 0.0;
        const std::vector<double> values = {ofShape[shape],
                                            ofWall[shape],
                                            0.5 * (1.0 + ofShape[shape] - ofWall[shape]),
                                            high,
                                            static_cast<double>(side) / 3.0,
                                            area,
                                            place};
        for (std::size_t k = 0; k < x.size(); ++k) {
            x[k].push_back(values[k]);
        }
        output.push_back(3.0 * high + 2.0 * ofWall[shape] + 1.5 * ofSide[4 * shape + side] +
                         2.0 * std::pow(area, 0.7) * (1.0 + 0.5 * high) +
                         area * std::cos(6.0 * (place - values[4])) + 0.02 * numbers.normal());
    }
    auto data = dataOf(x, output);
    data->terms = 1;
    return data;
}

/** The values of the optima that searches with all cases reach from many starts, best first. */
std::vector<double> optimaOfManySearches(const std::shared_ptr<KrigingData>& data, int starts = 12)
{
    const KrigingSearchSettings settings;
    const KrigingSearchVariables variables(*data, settings);
    KrigingObjective objective(data, variables);
    KrigingOptima optima(variables);
    UniformNumbers numbers(3);
    for (int start = 0; start < starts; ++start) {
        KrigingParameters parameters;
        for (std::size_t k = 0; k < data->inputs; ++k) {
            parameters.lengths.push_back(std::pow(10.0, -1.0 + 2.0 * numbers.next()));
        }
        parameters.nugget = std::pow(10.0, -6.0 + 5.0 * numbers.next());
        BoundedSearch search(objective, variables.lower(), variables.upper(),
                             variables.at(parameters));
        search.advance(SearchPolicy::maxSteps,
                       settings.tolerance * static_cast<double>(data->cases));
        optima.add({search.point(), search.value()}, objective);
    }
    std::vector<double> values;
    for (const KrigingOptima::Optimum& optimum : optima.all()) {
        values.push_back(optimum.value);
    }
    return values;
}

double bestOfManySearches(const std::shared_ptr<KrigingData>& data)
{
    return optimaOfManySearches(data).front();
}

double criterionAt(const std::shared_ptr<KrigingData>& data, const KrigingParameters& parameters)
{
    const KrigingSearchSettings settings;
    const KrigingSearchVariables variables(*data, settings);
    return KrigingObjective(data, variables).value(variables.at(parameters));
}

} // namespace

TEST(KrigingSearch, ReachesTheBestOptimumOfTablesWithFewLevels)
{
    // What bestOfManySearches() finds, in minutes.
    const std::pair<std::uint64_t, double> tables[] = {{1, 374.990}, {15, 422.286}};
    for (std::size_t table = 0; table < runs(2, 1); ++table) {
        const auto [seed, best] = tables[table];
        const auto data = rooms(seed);

        const KrigingSearchResult result = KrigingSearch::run(data, {});

        // Half a unit of log-likelihood is no evidence.
        EXPECT_GT(criterionAt(data, result.parameters), best - 0.5) << seed;
    }
}

TEST(KrigingSearch, ReachesTheBestOptimumOfFewCases)
{
    for (std::uint64_t seed = 1; seed <= runs(3, 1); ++seed) {
        for (const std::size_t cases : {20, 50}) {
            const Columns x = latinHypercube(cases, 6, seed);
            for (const auto& function : {Function(hartmann6), Function(circuit)}) {
                const auto data = dataOf(x, valuesOf(function, x));

                const KrigingSearchResult result = KrigingSearch::run(data, {});

                // The nugget that the likelihood hardly needs is left out.
                EXPECT_GT(criterionAt(data, result.parameters),
                          bestOfManySearches(data) - SearchPolicy::significantGain - 0.5)
                    << seed << ", " << cases;
            }
        }
    }
}

TEST(KrigingSearch, EndsWhereNoNeighbourIsMoreLikely)
{
    const auto data = wave(40);
    KrigingSearchSettings settings;
    settings.requestedNugget = 1e-8; // with less, rounding blurs the likelihood of so smooth data

    const KrigingSearchResult result = KrigingSearch::run(data, settings);

    const std::vector<double>& lengths = result.parameters.lengths;
    EXPECT_DOUBLE_EQ(result.logLikelihood, likelihoodAt(data, lengths, result.parameters.nugget));
    for (std::size_t k = 0; k < 2; ++k) {
        for (const double factor : {0.7, 0.95, 1.05, 1.4}) {
            std::vector<double> others = lengths;
            others[k] *= factor;
            // The tolerance is 1e-4 per case.
            EXPECT_LT(likelihoodAt(data, others, result.parameters.nugget),
                      result.logLikelihood + 40 * 1e-4);
        }
    }
}

TEST(KrigingSearch, FindsTheSameOptimumFromFarStarts)
{
    const auto data = wave(40);
    const double usual = KrigingSearch::run(data, {}).logLikelihood;

    for (const double start : {0.02, 0.1, 5.0, 50.0}) {
        KrigingSearchSettings settings;
        settings.initialLength = start;
        EXPECT_NEAR(KrigingSearch::run(data, settings).logLikelihood, usual, 40 * 1e-4) << start;
    }
}

TEST(KrigingSearch, ReachesLengthsOfAHundredRangesForAnInputWithoutInfluence)
{
    const Columns x = latinHypercube(40, 2, 5);
    const auto data =
        dataOf(x, valuesOf([](const std::vector<double>& p) { return std::sin(6 * p[0]); }, x));

    EXPECT_GT(KrigingSearch::run(data, {}).parameters.lengths[1], 100.0);
}

TEST(KrigingSearch, TakesTheLeastNuggetForSmoothData)
{
    EXPECT_EQ(KrigingSearch::run(wave(40), {}).parameters.nugget, NuggetBounds::sound);
}

TEST(KrigingSearch, FindsTheNuggetOfNoise)
{
    const auto data = wave(200);
    UniformNumbers numbers(8);
    for (double& y : data->output) {
        y += 0.1 * numbers.normal();
    }

    const KrigingSearchResult result = KrigingSearch::run(data, {});

    KrigingLikelihood likelihood(data);
    likelihood.evaluate(result.parameters.lengths, result.parameters.nugget);
    // The estimate of a variance of 200 independent errors is good to about a tenth.
    EXPECT_NEAR(std::sqrt(result.parameters.nugget * likelihood.processVariance()), 0.1, 0.015);
}

TEST(KrigingSearch, KeepsFixedLengthsAndSearchesTheNuggetOnly)
{
    KrigingSearchSettings settings;
    settings.fixedLengths = {0.3, 4.0};
    settings.requestedNugget = 1e-9;

    const KrigingSearchResult result = KrigingSearch::run(wave(40), settings);

    EXPECT_EQ(result.parameters.lengths, settings.fixedLengths);
    EXPECT_GE(result.parameters.nugget, 1e-9);
}

TEST(KrigingSearch, EvaluatesOnceWhenEverythingIsFixed)
{
    const auto data = wave(40);
    KrigingSearchSettings settings;
    settings.fixedLengths = {0.3, 4.0};
    settings.requestedNugget = 1e-5;
    settings.isNuggetFixed = true;

    const KrigingSearchResult result = KrigingSearch::run(data, settings);

    EXPECT_EQ(result.evaluations, 1u);
    EXPECT_EQ(result.parameters.nugget, 1e-5);
    EXPECT_DOUBLE_EQ(result.logLikelihood, likelihoodAt(data, {0.3, 4.0}, 1e-5));
}

TEST(KrigingSearch, RaisesTheNuggetOnlyWhereTheMatrixCannotBeFactorised)
{
    // Lengths of a million ranges: all correlations are 1 to the last digit. What a million
    // replicates leave of the nugget is less than their rounding.
    const auto singular = wave(200);
    singular->replicates.assign(200, 1e6);
    KrigingSearchSettings settings;
    settings.fixedLengths = {1e6, 1e6};
    settings.isNuggetFixed = true;

    const KrigingSearchResult result = KrigingSearch::run(singular, settings);

    EXPECT_TRUE(result.isNuggetRaised);
    EXPECT_GT(result.parameters.nugget, 1e-12);
    EXPECT_LT(result.parameters.nugget, 1e-4);
    EXPECT_FALSE(KrigingSearch::run(wave(40), {}).isNuggetRaised);
}

TEST(KrigingSearch, ContinuesOnAllCasesWhatAFewHaveFound)
{
    const auto data = wave(700);

    const KrigingSearchResult result = KrigingSearch::run(data, {});

    EXPECT_DOUBLE_EQ(result.logLikelihood,
                     likelihoodAt(data, result.parameters.lengths, result.parameters.nugget));
    EXPECT_LT(result.evaluations, 40u);
}

TEST(KrigingSearch, FindsTheManyWavesThatHundredsOfCasesOfOneInputShow)
{
    // Yearly readings over three centuries, of a cycle of eleven years.
    std::vector<double> years;
    std::vector<double> readings;
    for (int year = 0; year < 300; year += year % 4 == 2 ? 2 : 1) {
        years.push_back(year / 300.0);
        readings.push_back(std::sin(2.0 * std::acos(-1.0) * year / 11.0) +
                           0.3 * std::sin(0.37 * year));
    }

    const KrigingSearchResult result = KrigingSearch::run(dataOf({years}, readings), {});

    EXPECT_LT(result.parameters.lengths[0], 0.1);
    EXPECT_LT(result.parameters.nugget, 0.01);
}

TEST(KrigingSearch, FindsWavesThatAreAFewSpacingsOfTheCasesLong)
{
    std::vector<double> times;
    std::vector<double> readings;
    for (int time = 0; time < 100; time += time % 4 == 1 ? 2 : 1) {
        times.push_back(time / 99.0);
        readings.push_back(std::sin(0.9 * time) + std::sin(0.53 * time + 1.0) +
                           0.5 * std::sin(1.7 * time));
    }

    const KrigingSearchResult result = KrigingSearch::run(dataOf({times}, readings), {});

    EXPECT_LT(result.parameters.lengths[0], 0.05);
    EXPECT_LT(result.parameters.nugget, 1e-6) << "not noise";
}

TEST(KrigingSearch, KnowsNoSecondOptimumWhereAllSearchesMeet)
{
    EXPECT_EQ(KrigingSearch::run(wave(40), {}).gapToSecond,
              std::numeric_limits<double>::infinity());
}

TEST(KrigingSearch, KnowsTheSecondOptimumOfDeceptiveCases)
{
    // A fast wave, sampled a few times a turn: it may be one, or noise.
    const Columns x = latinHypercube(30, 1, 5);
    const auto data = dataOf(
        x, valuesOf([](const std::vector<double>& p) { return std::sin(30.0 * p[0]) + 2.0 * p[0]; },
                    x));

    const KrigingSearchResult result = KrigingSearch::run(data, {});

    EXPECT_TRUE(std::isfinite(result.gapToSecond));
    EXPECT_GT(result.gapToSecond, 0.0);
}

TEST(KrigingSearch, KnowsTheSecondOptimaOfFewNoisyCases)
{
    std::size_t present = 0;
    std::size_t found = 0;
    for (std::uint64_t seed = 1; seed <= runs(80, 20); ++seed) {
        const Columns x = latinHypercube(16, 3, seed);
        UniformNumbers numbers(seed);
        std::vector<double> output;
        for (std::size_t row = 0; row < 16; ++row) {
            output.push_back(x[0][row] + 2.0 * x[1][row] * x[2][row] - x[1][row] * x[1][row] +
                             0.1 * numbers.normal());
        }
        const auto data = dataOf(x, output);
        const std::vector<double> optima = optimaOfManySearches(data, 20);
        if (optima.size() > 1 && optima[1] > optima[0] - 2.0) {
            const KrigingSearchResult result = KrigingSearch::run(data, {});
            ++present;
            found += result.gapToSecond < 2.5 ? 1u : 0u;
        }
    }
    EXPECT_GE(present, runs(5, 1));
    EXPECT_EQ(found, present);
}

TEST(KrigingSearch, ReportsTheLikelierOptimumThatItLeavesForTheLeastNugget)
{
    // A noisy full factorial of three levels: the model without noise, which so few cases are
    // given, is an optimum of its own, less likely by 0.5 than the one with noise.
    const Columns x = {{0.0, 0.0, 0.0, 0.5, 0.5, 0.5, 1.0, 1.0, 1.0},
                       {0.0, 0.5, 1.0, 0.0, 0.5, 1.0, 0.0, 0.5, 1.0}};
    const auto data =
        dataOf(x, {0.3855, -1.7636, -0.7924, 2.1279, 0.4151, 2.6026, 2.3237, 2.6106, 6.1826});
    data->terms = 3;
    data->trend.insert(data->trend.end(), data->coordinates.begin(), data->coordinates.end());

    const KrigingSearchResult result = KrigingSearch::run(data, {});

    EXPECT_EQ(result.parameters.nugget, NuggetBounds::sound);
    EXPECT_EQ(result.gapToSecond, 0.0);
}

TEST(KrigingSearch, KnowsNoSecondOptimumAtTheEndsOfOneRidge)
{
    // Stress of deposited tungsten over pressure and gas ratio, three runs at the centre:
    // NIST/SEMATECH e-Handbook of Statistical Methods, 5.4.7.3. With slopes in the trend the
    // likelihood hardly depends on one of the lengths.
    const Columns x = {{0.0, 0.1464, 0.1464, 0.5, 0.5, 0.5, 0.8536, 0.8536, 1.0},
                       {0.5, 0.1464, 0.8536, 0.0, 0.5, 1.0, 0.1464, 0.8536, 0.5}};
    const auto data = dataOf(x, {6.49, 6.66, 7.27, 7.16, 7.79, 8.19, 7.58, 8.33, 8.04});
    data->replicates[4] = 3.0;
    data->withinSquares[4] = 0.0222;
    data->terms = 3;
    data->trend.insert(data->trend.end(), data->coordinates.begin(), data->coordinates.end());

    // The ends of the ridge are within 2 of each other; the optimum where all is noise is not.
    const KrigingSearchResult result = KrigingSearch::run(data, {});
    EXPECT_GT(result.gapToSecond, 4.0);
}

TEST(KrigingSearch, ContinuesTheLikeliestStartByAFewSteps)
{
    const auto data = wave(40);
    KrigingSearchSettings settings;
    settings.continuation = {{{{0.2, 0.2}, 1e-3}, {{0.4, 1.0}, 1e-6}}, 0};
    const KrigingSearchResult start = KrigingSearch::run(data, settings);
    settings.continuation->steps = 1;

    const KrigingSearchResult result = KrigingSearch::run(data, settings);

    EXPECT_NEAR(start.parameters.lengths[1], 1.0, 1e-12);
    EXPECT_EQ(start.evaluations, 2u);
    EXPECT_GT(result.logLikelihood, start.logLikelihood);
    EXPECT_EQ(result.logLikelihood,
              likelihoodAt(data, result.parameters.lengths, result.parameters.nugget));
}

TEST(KrigingSearch, LeavesTheLeastNuggetWhereItIsInAFewSteps)
{
    KrigingSearchSettings settings;
    settings.requestedNugget = 1e-10;
    settings.continuation = {{{{0.4, 1.0}, 1e-10}}, 2};

    EXPECT_EQ(KrigingSearch::run(wave(40), settings).parameters.nugget, 1e-10);
}

TEST(KrigingSearch, LeavesNoInputOutThatMoreCasesShow)
{
    // The part of the cases that the search begins with shows no influence of some inputs, of which
    // all cases show a little: from far out no slope leads back there.
    for (const std::uint64_t seed : {11, 16, 38}) {
        const Columns x = latinHypercube(200, 8, seed);
        const auto data = dataOf(x, valuesOf(borehole, x));

        KrigingSearchSettings settings;
        settings.requestedNugget = 1e-10;
        settings.isNuggetFixed = true;
        const KrigingSearchResult result = KrigingSearch::run(data, settings);

        for (std::size_t k = 0; k < 8; ++k) {
            for (const double length : {30.0, 60.0}) {
                std::vector<double> lengths = result.parameters.lengths;
                lengths[k] = std::min(lengths[k], length);
                EXPECT_LT(likelihoodAt(data, lengths, result.parameters.nugget),
                          result.logLikelihood + 200 * 1e-4)
                    << "seed " << seed << ", input " << k;
            }
        }
    }
}

TEST(KrigingSearch, FitsTheLengthsToTheLeastNuggetThatItPrefers)
{
    // A nugget of a millionth is a little likelier here, but not by enough; without it other
    // lengths are likeliest.
    std::size_t preferred = 0;
    for (std::uint64_t seed = 1; seed <= runs(20, 5); ++seed) {
        const Columns x = latinHypercube(50, 6, seed);
        const auto data = dataOf(x, valuesOf(circuit, x));
        const KrigingSearchResult result = KrigingSearch::run(data, {});
        if (result.parameters.nugget > NuggetBounds::sound) {
            continue;
        }
        ++preferred;
        KrigingSearchSettings fixed;
        fixed.isNuggetFixed = true;

        EXPECT_GT(result.logLikelihood, KrigingSearch::run(data, fixed).logLikelihood - 0.15)
            << seed;
    }

    EXPECT_GE(preferred, runs(15, 3));
}

TEST(KrigingSearch, NeedsFewEvaluationsWhereTheLikelihoodHasManyOptima)
{
    KrigingSearchSettings best;
    best.findsSecondOptimum = false;
    std::size_t evaluations = 0;
    std::size_t withSecond = 0;
    for (std::uint64_t seed = 1; seed <= 10; ++seed) {
        const Columns x = latinHypercube(50, 6, seed);
        const auto data = dataOf(x, valuesOf(hartmann6, x));
        evaluations += KrigingSearch::run(data, best).evaluations;
        withSecond += KrigingSearch::run(data, {}).evaluations;
    }

    EXPECT_LT(evaluations, 10u * 85u);
    EXPECT_LT(withSecond, 10u * 220u);
}

TEST(KrigingSearch, LooksAtFewOfManyInputsWithoutInfluence)
{
    const Columns x = latinHypercube(80, 60, 5);
    const auto data =
        dataOf(x, valuesOf([](const std::vector<double>& p) { return std::sin(5.0 * p[0]); }, x));

    const KrigingSearchResult result = KrigingSearch::run(data, {});

    EXPECT_LT(result.evaluations, 100u);
    EXPECT_LT(result.parameters.lengths[0], 3.0);
}

TEST(KrigingSearch, ReportsAFractionThatNeverDecreases)
{
    double last = 0.0;
    int reports = 0;
    FitProgress progress([&](double fraction, const std::string&) {
        EXPECT_GE(fraction, last);
        EXPECT_LE(fraction, 1.0);
        last = fraction;
        ++reports;
        return true;
    });

    KrigingSearch::run(wave(40), {});

    EXPECT_GT(reports, 10);
}

TEST(KrigingSearch, EndsWithAnErrorWhenItIsCancelled)
{
    int reports = 0;
    FitProgress progress([&](double, const std::string&) { return ++reports < 5; });

    EXPECT_THROW(KrigingSearch::run(wave(40), {}), SurrogateModelInterface::Error);
    EXPECT_EQ(reports, 5);
}
