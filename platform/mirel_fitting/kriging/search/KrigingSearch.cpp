#include <mirel_fitting/kriging/search/KrigingSearch.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/cases/SpaceFillingSubset.h>
#include <mirel_fitting/kriging/correlation/NuggetBounds.h>
#include <mirel_fitting/kriging/search/KrigingObjective.h>
#include <mirel_fitting/kriging/search/KrigingOptima.h>
#include <mirel_fitting/kriging/search/KrigingSearchVariables.h>
#include <mirel_fitting/kriging/search/SearchPolicy.h>
#include <mirel_fitting/numerics/BoundedSearch.h>

#include <algorithm>
#include <cmath>
#include <list>
#include <numeric>
#include <set>

namespace {

namespace policy = SearchPolicy;
using Optimum = KrigingOptima::Optimum;

KrigingData subsetOf(const KrigingData& data, std::size_t cases)
{
    KrigingData subset = data.subset(randomSubset(data.cases, cases));
    subset.dropDependentTerms();
    return subset;
}

class Search
{
public:
    Search(const std::shared_ptr<const KrigingData>& data, const KrigingSearchSettings& settings)
        : data(data), settings(settings), variables(*data, settings)
    {}

    KrigingSearchResult run();

private:
    std::vector<std::size_t> subsetSizes() const;
    void useCases(std::size_t cases);
    double smallestGain() const { return settings.tolerance * static_cast<double>(casesUsed); }
    BoundedSearch searchFrom(const std::vector<double>& start, const std::vector<double>& upper);
    Optimum converged(const std::vector<double>& start, const std::vector<double>& upper);
    void improveLikeliestStart();
    void searchFromAllStarts();
    void race(const std::vector<std::vector<double>>& starts);
    void follow(BoundedSearch& search);
    void continueWithMoreCases(std::size_t cases);
    std::vector<std::vector<double>> startsWithoutInputs(const std::vector<double>& point) const;
    void searchFromAlternatives();
    void searchFromSpreadStarts();
    bool losesAtUpperBound(std::size_t input);
    std::vector<KrigingReport::Bound> bounds();
    bool hasFewLevels() const;
    void preferLeastNugget();

    std::shared_ptr<const KrigingData> data;
    const KrigingSearchSettings& settings;
    KrigingSearchVariables variables;
    std::size_t casesUsed = 0; // by the objective
    std::unique_ptr<KrigingObjective> objective;
    KrigingOptima optima{variables};
};

/** The numbers of cases that are searched with, ending with all. */
std::vector<std::size_t> Search::subsetSizes() const
{
    const std::size_t parameters = data->terms + data->inputs + 1;
    const std::size_t smallest =
        std::max(policy::firstSubset, policy::firstSubsetPerParameter * parameters);
    std::vector<std::size_t> sizes = {data->cases};
    while (sizes.back() > smallest + smallest / 2) {
        const double next = static_cast<double>(sizes.back()) / policy::subsetGrowth;
        sizes.push_back(std::max(smallest, static_cast<std::size_t>(next)));
    }
    std::reverse(sizes.begin(), sizes.end());
    return sizes;
}

/** From now on the likelihood is that of so many cases, at random: they are sorted, so that any
 *  regular choice would leave gaps. */
void Search::useCases(std::size_t cases)
{
    objective.reset(); // its memory is freed before the next one is made
    const std::shared_ptr<const KrigingData> part =
        cases == data->cases ? data : std::make_shared<KrigingData>(subsetOf(*data, cases));
    objective = std::make_unique<KrigingObjective>(part, variables);
    casesUsed = cases;
}

BoundedSearch Search::searchFrom(const std::vector<double>& start, const std::vector<double>& upper)
{
    return BoundedSearch(*objective, variables.lower(), upper, start);
}

Optimum Search::converged(const std::vector<double>& start, const std::vector<double>& upper)
{
    BoundedSearch search = searchFrom(start, upper);
    search.advance(policy::maxSteps, smallestGain());
    return {search.point(), search.value()};
}

/**
 * A few steps from the start that is likeliest with all cases. The least nugget stays the least:
 * the more cases there are of a smooth function, the less of it they need.
 */
void Search::improveLikeliestStart()
{
    Optimum best;
    for (const KrigingParameters& start : settings.continuation->starts) {
        const std::vector<double> point = variables.at(start);
        const double value = objective->value(point);
        if (best.point.empty() || value > best.value) {
            best = {point, value};
        }
    }
    if (std::isfinite(best.value)) {
        std::vector<double> upper = variables.upper();
        if (variables.hasNugget() && best.point.back() <= variables.lower().back()) {
            upper.back() = variables.lower().back();
        }
        BoundedSearch search = searchFrom(best.point, upper);
        search.finish(settings.continuation->steps, smallestGain());
        if (search.value() > best.value) {
            best = {search.point(), search.value()};
        }
    }
    optima.add(best, *objective);
}

/**
 * The starts compete on the first subset, and the best optima are followed through ever larger ones
 * up to all cases. The best optimum of few cases need not be that of all: the starts compete on all
 * cases, too.
 */
void Search::searchFromAllStarts()
{
    const std::vector<std::size_t> sizes = subsetSizes();
    useCases(sizes.front());
    const std::vector<std::vector<double>> starts = variables.starts();
    race(starts);
    for (std::size_t k = 1; k < sizes.size(); ++k) {
        continueWithMoreCases(sizes[k]);
    }
    const bool startOnAll = sizes.size() > 1 && hasFewLevels();
    if (startOnAll) {
        const std::size_t count = data->cases <= policy::raceCases ? starts.size() : 1;
        race({starts.begin(), starts.begin() + static_cast<std::ptrdiff_t>(count)});
    }
    if (sizes.size() == 1 || (startOnAll && data->cases <= policy::raceCases)) {
        searchFromAlternatives();
        searchFromSpreadStarts();
    }
}

/** A few steps from each start; the likeliest searches go on to convergence. */
void Search::race(const std::vector<std::vector<double>>& starts)
{
    std::list<BoundedSearch> searches;
    for (const std::vector<double>& start : starts) {
        searches.push_back(searchFrom(start, variables.upper()));
        searches.back().advance(policy::racingSteps, smallestGain());
    }
    searches.sort(
        [](const BoundedSearch& a, const BoundedSearch& b) { return a.value() > b.value(); });
    while (searches.size() > policy::racing) {
        searches.pop_back();
    }
    for (BoundedSearch& search : searches) {
        follow(search);
    }
}

/** To convergence, or until it joins the way to a likelier optimum that is known. */
void Search::follow(BoundedSearch& search)
{
    int steps = policy::maxSteps;
    while (!search.isDone() && steps-- > 0 &&
           !optima.isBetterNear(search.point(), search.value())) {
        search.advance(1, smallestGain());
    }
    optima.add({search.point(), search.value()}, *objective);
}

void Search::continueWithMoreCases(std::size_t cases)
{
    optima.shorten(policy::keptOptima);
    useCases(cases);
    std::vector<Optimum> reached;
    for (const Optimum& optimum : optima.all()) {
        std::vector<double> start = optimum.point;
        variables.limitLengths(start);
        reached.push_back(converged(start, variables.upper()));
    }
    optima.replace(reached, *objective);
}

/** The point without each input that has influence, of SearchPolicy::triedLengths at most. */
std::vector<std::vector<double>> Search::startsWithoutInputs(const std::vector<double>& point) const
{
    std::vector<std::size_t> inputs(variables.lengthCount());
    std::iota(inputs.begin(), inputs.end(), std::size_t{0});
    std::stable_sort(inputs.begin(), inputs.end(),
                     [&](std::size_t a, std::size_t b) { return point[a] < point[b]; });
    inputs.resize(std::min(inputs.size(), policy::triedLengths));

    std::vector<std::vector<double>> result;
    for (const std::size_t input : inputs) {
        if (point[input] < std::log(policy::indifferentLength)) {
            result.push_back(point);
            result.back()[input] = std::log(policy::recalledLength);
        }
    }
    return result;
}

/**
 * Where inputs are alike, one can do what another does. No slope leads from one way to the other,
 * but without the input the search takes the other one. Where the nugget is fixed, lengths that
 * long would take the place of the noise, and the model would not pass through the cases.
 */
void Search::searchFromAlternatives()
{
    if (variables.lengthCount() < 2 || !variables.hasNugget()) {
        return;
    }
    std::vector<Optimum> starts;
    for (std::vector<double>& start : startsWithoutInputs(optima.best().point)) {
        const double value = objective->value(start);
        starts.push_back({std::move(start), value});
    }
    std::stable_sort(starts.begin(), starts.end(),
                     [](const Optimum& a, const Optimum& b) { return a.value > b.value; });
    starts.resize(std::min(starts.size(), policy::followedAlternatives));
    for (const Optimum& start : starts) {
        BoundedSearch search = searchFrom(start.point, variables.upper());
        follow(search);
    }
}

/** To find the second optimum, where that takes little time. */
void Search::searchFromSpreadStarts()
{
    if (!settings.findsSecondOptimum || casesUsed > policy::maxCasesForSecond ||
        variables.lengthCount() > policy::maxInputsForSecond) {
        return;
    }
    const std::size_t count = casesUsed <= policy::casesOfManyOptima
                                  ? policy::spreadStartsPerVariable * variables.size()
                                  : policy::spreadStarts;
    for (const std::vector<double>& start : variables.spreadStarts(count)) {
        BoundedSearch search = searchFrom(start, variables.upper());
        follow(search);
    }
}

/** See SearchPolicy::casesPerLevel. */
bool Search::hasFewLevels() const
{
    for (std::size_t k = 0; k < data->inputs; ++k) {
        const auto first = data->coordinates.begin() + static_cast<std::ptrdiff_t>(k * data->cases);
        const std::set<double> levels(first, first + static_cast<std::ptrdiff_t>(data->cases));
        if (policy::casesPerLevel * levels.size() <= data->cases) {
            return true;
        }
    }
    return false;
}

/** Whether the cases show an influence of the input: whether the best optimum is likelier than with
 *  that length at its upper bound. */
bool Search::losesAtUpperBound(std::size_t input)
{
    std::vector<double> point = optima.best().point;
    const double likelihood = objective->logLikelihood(point);
    point[input] = variables.upper()[input];
    return objective->logLikelihood(point) < likelihood - policy::indifferentGain;
}

/** Where the lengths of the best optimum have ended; Upper also for long ones without influence. */
std::vector<KrigingReport::Bound> Search::bounds()
{
    const std::vector<double>& best = optima.best().point;
    std::vector<std::size_t> longLengths;
    for (std::size_t k = 0; k < variables.lengthCount(); ++k) {
        if (best[k] > std::log(policy::recalledLength)) {
            longLengths.push_back(k);
        }
    }
    std::stable_sort(longLengths.begin(), longLengths.end(),
                     [&](std::size_t a, std::size_t b) { return best[a] > best[b]; });
    longLengths.resize(std::min(longLengths.size(), policy::triedLengths));

    std::vector<KrigingReport::Bound> result = variables.boundsOf(best);
    for (const std::size_t k : longLengths) {
        if (!losesAtUpperBound(k)) {
            result[k] = KrigingReport::Bound::Upper;
        }
    }
    return result;
}

/**
 * Where the likelihood of smooth data hardly depends on the nugget, the search stops at any small
 * one. Users expect the model of such data to interpolate the cases: unless a larger nugget is
 * clearly likelier, the least one is used.
 */
void Search::preferLeastNugget()
{
    const Optimum best = optima.best();
    if (!variables.hasNugget() || best.point.back() <= variables.lower().back()) {
        return;
    }
    const bool needsEvidence = data->cases < policy::casesThatShowNoise ||
                               objective->noiseVariance(best.point) < policy::slightNoise;
    const double needed = needsEvidence ? policy::significantGain : policy::indifferentGain;
    Optimum smooth = best;
    smooth.point.back() = variables.lower().back();
    smooth.value = objective->value(smooth.point);
    if (smooth.value < best.value - std::max(needed, smallestGain())) {
        return;
    }
    if (smooth.value < best.value - policy::indifferentGain) {
        // Without the nugget other lengths are likelier.
        std::vector<double> upper = variables.upper();
        upper.back() = variables.lower().back();
        smooth = converged(smooth.point, upper);
    }
    optima.best() = smooth;
}

KrigingSearchResult Search::run()
{
    KrigingSearchResult result;
    if (variables.size() == 0) {
        useCases(data->cases);
        optima.add({{}, objective->value({})}, *objective);
    } else if (settings.continuation) {
        useCases(data->cases);
        improveLikeliestStart();
    } else {
        searchFromAllStarts();
        const bool hasSecond = optima.size() > 1 && std::isfinite(optima.second().value);
        const Optimum likeliest = optima.best();
        Optimum other = hasSecond ? optima.second() : likeliest;
        preferLeastNugget();
        const Optimum& chosen = optima.best();
        if (variables.areClose(chosen.point, other.point)) {
            // The least nugget leads to the second optimum: the likeliest one, with other lengths,
            // is the other model then.
            other = likeliest;
            other.point.back() = chosen.point.back();
        }
        if (hasSecond && !variables.areClose(chosen.point, other.point)) {
            result.gapToSecond = std::max(0.0, chosen.value - other.value);
        }
    }
    const std::vector<double>& best = optima.best().point;
    result.logLikelihood = objective->logLikelihood(best);
    result.lengthBounds = settings.continuation ? variables.boundsOf(best) : bounds();
    result.nuggetBound =
        variables.isNuggetLargest(best) ? KrigingReport::Bound::Upper : KrigingReport::Bound::None;
    result.parameters = variables.parameters(best);
    result.evaluations = objective->evaluations();
    if (variables.size() > 0) {
        result.criterion = variables.lengthCount() > 0
                               ? KrigingReport::Criterion::PenalisedRestrictedLikelihood
                               : KrigingReport::Criterion::RestrictedLikelihood;
    }
    return result;
}

/** In multiplications: n^3 / 2 for a likelihood and its gradient. */
double expectedWork(std::size_t cases, const KrigingSearchSettings& settings)
{
    constexpr double evaluationsOfSubset = 100.0;
    constexpr double evaluationsOfAll = 12.0;

    const auto n = static_cast<double>(cases);
    if (settings.continuation) {
        return 0.5 * (1 + settings.continuation->steps) * n * n * n;
    }
    const auto m = static_cast<double>(std::min(cases, policy::firstSubset));
    return 0.5 * (evaluationsOfSubset * m * m * m + evaluationsOfAll * n * n * n);
}

} // namespace

KrigingSearchResult KrigingSearch::run(const std::shared_ptr<const KrigingData>& data,
                                       const KrigingSearchSettings& settings)
{
    const FitProgress::Portion progress(0.0, 1.0, "Searching for the correlation lengths",
                                        expectedWork(data->cases, settings));
    KrigingSearchSettings attempt = settings;
    KrigingSearchResult result;
    const double least = NuggetBounds::raisedUntil(settings.leastNugget(), [&](double nugget) {
        attempt.requestedNugget = nugget;
        result = Search(data, attempt).run();
        return std::isfinite(result.logLikelihood);
    });
    result.isNuggetRaised = least > settings.leastNugget();
    return result;
}
