#include <mirel_fitting/kriging/search/KrigingSearch.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/SurrogateModelInterface.h>
#include <mirel_fitting/cases/SpaceFillingSubset.h>
#include <mirel_fitting/kriging/correlation/NuggetBounds.h>
#include <mirel_fitting/kriging/search/KrigingObjective.h>
#include <mirel_fitting/kriging/search/KrigingOptima.h>
#include <mirel_fitting/kriging/search/KrigingSearchVariables.h>
#include <mirel_fitting/numerics/BoundedSearch.h>

#include <algorithm>
#include <cmath>

namespace {

using Optimum = KrigingOptima::Optimum;

class Search
{
public:
    Search(const std::shared_ptr<const KrigingData>& data, const KrigingSearchSettings& settings)
        : data(data), settings(settings), policy(settings.policy), variables(*data, settings)
    {}

    KrigingSearchResult run();

private:
    std::vector<std::size_t> subsetSizes() const;
    void take(std::size_t cases);
    double smallestGain() const { return settings.tolerance * static_cast<double>(taken); }
    BoundedSearch searchFrom(const std::vector<double>& start, const std::vector<double>& upper);
    Optimum converged(const std::vector<double>& start, const std::vector<double>& upper);
    void improveLikeliestStart();
    void searchFromGivenStarts();
    void searchFromAllStarts();
    void multiStart();
    void race(const std::vector<std::vector<double>>& starts);
    void continueWithMoreCases(std::size_t cases);
    void tryLongestLengths();
    void preferLeastNugget();
    void preferNoiseToSpikes();

    std::shared_ptr<const KrigingData> data;
    const KrigingSearchSettings& settings;
    const SearchPolicy& policy;
    KrigingSearchVariables variables;
    std::size_t taken = 0; // cases
    std::unique_ptr<KrigingObjective> objective;
    KrigingOptima optima{variables, policy};
};

/** The numbers of cases that are searched with, ending with all. */
std::vector<std::size_t> Search::subsetSizes() const
{
    const std::size_t parameters = data->terms + data->inputs + 1;
    const std::size_t fewest =
        std::max(policy.firstSubset, policy.firstSubsetPerParameter * parameters);
    std::vector<std::size_t> sizes = {data->cases};
    while (sizes.back() > fewest + fewest / 2) {
        const double next = static_cast<double>(sizes.back()) / policy.subsetGrowth;
        sizes.push_back(std::max(fewest, static_cast<std::size_t>(next)));
    }
    std::reverse(sizes.begin(), sizes.end());
    return sizes;
}

/** From now on the likelihood is that of so many cases, at random: they are sorted, so that any
 *  regular choice would be lopsided. */
void Search::take(std::size_t cases)
{
    objective.reset(); // before the memory of the next one is taken
    const std::shared_ptr<const KrigingData> part =
        cases == data->cases
            ? data
            : std::make_shared<KrigingData>(data->subset(randomSubset(data->cases, cases)));
    objective = std::make_unique<KrigingObjective>(part, variables, settings);
    taken = cases;
}

BoundedSearch Search::searchFrom(const std::vector<double>& start, const std::vector<double>& upper)
{
    return BoundedSearch(*objective, variables.lower, upper, start, policy.stepRule);
}

Optimum Search::converged(const std::vector<double>& start, const std::vector<double>& upper)
{
    BoundedSearch search = searchFrom(start, upper);
    search.advance(policy.maxSteps, smallestGain());
    return {search.point(), search.value()};
}

/**
 * A few steps from the start that is likeliest with all cases. The least nugget stays the least:
 * the more cases there are of a smooth function, the less of it they need.
 */
void Search::improveLikeliestStart()
{
    Optimum best;
    for (const KrigingParameters& start : settings.starts) {
        const std::vector<double> point = variables.at(start);
        const double value = objective->value(point);
        if (best.point.empty() || value > best.value) {
            best = {point, value};
        }
    }
    if (*settings.maxSteps > 0 && std::isfinite(best.value)) {
        std::vector<double> upper = variables.upper;
        if (variables.hasNugget && best.point.back() <= variables.lower.back()) {
            upper.back() = variables.lower.back();
        }
        BoundedSearch search = searchFrom(best.point, upper);
        search.finish(*settings.maxSteps, smallestGain());
        if (search.value() > best.value) {
            best = {search.point(), search.value()};
        }
    }
    optima.add(best, *objective);
}

void Search::searchFromGivenStarts()
{
    take(data->cases);
    for (const KrigingParameters& start : settings.starts) {
        optima.add(converged(variables.at(start), variables.upper), *objective);
    }
}

/** Multi-start on the first subset, then the best optima on ever larger ones up to all cases. */
void Search::searchFromAllStarts()
{
    const std::vector<std::size_t> sizes = subsetSizes();
    take(sizes.front());
    multiStart();
    for (std::size_t k = 1; k < sizes.size(); ++k) {
        continueWithMoreCases(sizes[k]);
    }
}

/** If the standard starts converge to the same optimum of many cases, stop; otherwise take random
 *  ones, too. */
void Search::multiStart()
{
    const std::vector<std::vector<double>> starts = variables.standardStarts();
    for (const std::vector<double>& start : starts) {
        optima.add(converged(start, variables.upper), *objective);
    }
    if (variables.lengths == 0) {
        return;
    }
    if (taken <= policy.followedCases) {
        for (const std::vector<double>& start : variables.randomStarts()) {
            optima.add(converged(start, variables.upper), *objective);
        }
    } else if (starts.size() == 1 || optima.size() > 1) {
        race(variables.randomStarts());
    }
}

/** The likeliest starts take a few steps, the best of them goes on to convergence. */
void Search::race(const std::vector<std::vector<double>>& starts)
{
    std::vector<Optimum> entries;
    for (const std::vector<double>& start : starts) {
        entries.push_back({start, objective->value(start)});
    }
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Optimum& a, const Optimum& b) { return a.value > b.value; });
    entries.resize(std::min(entries.size(), policy.racing));
    std::vector<BoundedSearch> searches;
    for (const Optimum& entry : entries) {
        searches.push_back(searchFrom(entry.point, variables.upper));
        searches.back().advance(policy.racingSteps, smallestGain());
    }
    BoundedSearch& best = *std::max_element(
        searches.begin(), searches.end(),
        [](const BoundedSearch& a, const BoundedSearch& b) { return a.value() < b.value(); });
    best.advance(policy.maxSteps, smallestGain());
    optima.add({best.point(), best.value()}, *objective);
}

void Search::continueWithMoreCases(std::size_t cases)
{
    optima.shorten(policy.keptOptima);
    take(cases);
    std::vector<Optimum> reached;
    for (const Optimum& optimum : optima.all()) {
        std::vector<double> start = optimum.point;
        variables.recall(start);
        reached.push_back(converged(start, variables.upper));
    }
    optima.replace(reached, *objective);
}

/**
 * Where a length is long the likelihood is nearly flat in it, and no slope leads to where it is
 * greatest: at the upper bound. Tried for each long one alone.
 */
void Search::tryLongestLengths()
{
    const Optimum& best = optima.best();
    std::vector<std::size_t> longLengths;
    for (std::size_t k = 0; k < variables.lengths; ++k) {
        const bool isAtBound = best.point[k] > variables.upper[k] - policy.boundTolerance;
        if (best.point[k] > std::log(policy.recalledLength) && !isAtBound) {
            longLengths.push_back(k);
        }
    }
    std::stable_sort(longLengths.begin(), longLengths.end(),
                     [&](std::size_t a, std::size_t b) { return best.point[a] < best.point[b]; });
    longLengths.resize(std::min(longLengths.size(), policy.triedLengths));

    std::vector<double> likeliest;
    double highest = best.value + smallestGain();
    for (const std::size_t k : longLengths) {
        std::vector<double> point = best.point;
        point[k] = variables.upper[k];
        const double value = objective->value(point);
        if (value > highest) {
            highest = value;
            likeliest = std::move(point);
        }
    }
    if (!likeliest.empty()) {
        std::vector<Optimum> reached = optima.all();
        reached.front() = converged(likeliest, variables.upper);
        optima.replace(reached, *objective);
    }
}

/**
 * Where the likelihood of smooth data does not feel the nugget, the search leaves it where it is,
 * say at a millionth. Users expect such data to be met at the cases: where the likelihood is
 * indifferent, the least nugget is taken.
 */
void Search::preferLeastNugget()
{
    const Optimum best = optima.best();
    if (!variables.hasNugget || best.point.back() <= variables.lower.back()) {
        return;
    }
    const bool isSlight = objective->noiseVariance(best.point) < policy.slightNoise;
    const double needed = isSlight ? policy.significantGain : policy.indifferentGain;
    Optimum smooth = best;
    smooth.point.back() = variables.lower.back();
    smooth.value = objective->value(smooth.point);
    if (smooth.value < best.value - std::max(needed, smallestGain())) {
        return;
    }
    if (smooth.value < best.value - policy.indifferentGain) {
        // Without the nugget other lengths are likelier.
        std::vector<double> upper = variables.upper;
        upper.back() = variables.lower.back();
        smooth = converged(smooth.point, upper);
    }
    optima.best() = smooth;
}

/** See SearchPolicy::spikesGain. */
void Search::preferNoiseToSpikes()
{
    const Optimum& best = optima.best();
    const std::vector<KrigingReport::Bound> bounds = variables.boundsOf(best.point);
    const bool isSpikes = !bounds.empty() &&
                          std::all_of(bounds.begin(), bounds.end(), [](KrigingReport::Bound bound) {
                              return bound == KrigingReport::Bound::Lower;
                          });
    if (!variables.hasNugget || !isSpikes || data->cases <= policy.spikesCases) {
        return;
    }
    Optimum noise = best;
    noise.point.back() = variables.upper.back();
    noise.value = objective->value(noise.point);
    if (noise.value >= best.value - policy.spikesGain) {
        optima.best() = noise;
    }
}

KrigingSearchResult Search::run()
{
    KrigingSearchResult result;
    if (variables.size() == 0) {
        take(data->cases);
        optima.add({{}, objective->value({})}, *objective);
    } else if (settings.maxSteps) {
        take(data->cases);
        improveLikeliestStart();
    } else {
        if (settings.starts.empty()) {
            searchFromAllStarts();
        } else {
            searchFromGivenStarts();
        }
        tryLongestLengths();
        if (optima.size() > 1 && std::isfinite(optima.second().value)) {
            result.secondLogLikelihood = optima.second().value;
            result.secondParameters = variables.parameters(optima.second().point);
        }
        preferLeastNugget();
        preferNoiseToSpikes();
    }
    const std::vector<double>& best = optima.best().point;
    result.logLikelihood = optima.best().value;
    result.lengthBounds = variables.boundsOf(best);
    result.nuggetBound =
        variables.isNuggetLargest(best) ? KrigingReport::Bound::Upper : KrigingReport::Bound::None;
    result.parameters = variables.parameters(best);
    result.evaluations = objective->evaluations();
    return result;
}

/** In multiplications: n^3 / 2 for a likelihood and its gradient. */
double expectedWork(std::size_t cases, const KrigingSearchSettings& settings)
{
    constexpr double evaluationsOfSubset = 100.0;
    constexpr double evaluationsOfAll = 12.0;

    const auto n = static_cast<double>(cases);
    if (settings.maxSteps) {
        return 0.5 * (1 + *settings.maxSteps) * n * n * n;
    }
    const auto m = static_cast<double>(std::min(cases, settings.policy.firstSubset));
    return 0.5 * (evaluationsOfSubset * m * m * m + evaluationsOfAll * n * n * n);
}

} // namespace

KrigingSearch::Result KrigingSearch::run(const std::shared_ptr<const KrigingData>& data,
                                         const Settings& settings)
{
    const FitProgress::Portion progress(0.0, 1.0, "Searching for the correlation lengths",
                                        expectedWork(data->cases, settings));
    Settings attempt = settings;
    bool isRaised = false;
    for (;;) {
        Result result = Search(data, attempt).run();
        if (std::isfinite(result.logLikelihood)) {
            result.isNuggetRaised = isRaised;
            return result;
        }
        const double least = attempt.leastNugget();
        if (least > NuggetBounds::maxRaised) {
            throw SurrogateModelInterface::Error(
                "The correlation matrix of the cases cannot be factorised.");
        }
        attempt.smallestNugget = NuggetBounds::raise * least;
        isRaised = true;
    }
}
