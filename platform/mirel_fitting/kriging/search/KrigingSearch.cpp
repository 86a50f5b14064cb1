#include <mirel_fitting/kriging/search/KrigingSearch.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/SurrogateModelInterface.h>
#include <mirel_fitting/cases/SpaceFillingSubset.h>
#include <mirel_fitting/kriging/search/KrigingObjective.h>
#include <mirel_fitting/kriging/search/KrigingOptima.h>
#include <mirel_fitting/kriging/search/KrigingRunner.h>
#include <mirel_fitting/kriging/search/KrigingSearchVariables.h>
#include <mirel_fitting/numerics/BoundedSearch.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <string>

namespace {

using Optimum = KrigingOptima::Optimum;

constexpr double infinity = std::numeric_limits<double>::infinity();

constexpr double smoothNugget = KrigingSearchVariables::smoothNugget;
constexpr double noisyNugget = KrigingSearchVariables::noisyNugget;

// Starts compete on so many cases, or somewhat more: enough to tell the optima apart.
constexpr std::size_t casesToCompete = 100;

// On the way to all cases their number grows by about this factor, so that the optimum of the one
// before is a few steps from the next, and all of them together cost less than two steps at the
// end.
constexpr double rung = 2.5;

/** Of a race: so many of the highest take so many steps. */
struct Round
{
    std::size_t runners;
    int steps;
};

class Search
{
public:
    Search(const std::shared_ptr<const KrigingData>& data, const KrigingSearch::Settings& settings)
        : data(data), settings(settings), variables(*data, settings)
    {}

    KrigingSearch::Result run();

private:
    std::vector<std::size_t> ladder() const;
    void take(std::size_t cases);
    Optimum search(const std::vector<double>& start, const std::vector<double>& upper, double gain);
    void finish(Optimum& optimum);
    void continueTheLikeliest();
    void compete();
    void race(const std::vector<std::vector<double>>& starts, const std::vector<Round>& rounds);
    bool advance(KrigingRunner& runner, int steps);
    double competingGain() const;
    bool isWorthTheWay(double start, double highestStart) const;
    void climb(std::size_t cases);
    void tryFarLengths(const std::vector<double>& upper);
    void preferLeastNugget();
    Optimum searchFor(double enough, const std::vector<double>& start,
                      const std::vector<double>& upper);
    void preferNoiseToSpikes();
    double smallestGain() const;
    void searchFromAll();

    std::shared_ptr<const KrigingData> data;
    const KrigingSearch::Settings& settings;
    KrigingSearchVariables variables;
    std::size_t taken = 0; // cases
    std::unique_ptr<KrigingObjective> objective;
    KrigingOptima optima{variables};
};

/** The numbers of cases that are searched with, ending with all. */
std::vector<std::size_t> Search::ladder() const
{
    const std::size_t fewest = std::max(casesToCompete, 3 * (data->terms + data->inputs + 1));
    std::vector<std::size_t> sizes = {data->cases};
    while (sizes.back() > fewest + fewest / 2) {
        const double next = static_cast<double>(sizes.back()) / rung;
        sizes.push_back(std::max(fewest, static_cast<std::size_t>(next)));
    }
    std::reverse(sizes.begin(), sizes.end());
    return sizes;
}

/** From now on the likelihood is that of so many cases, at random: as they come sorted, every other
 *  part of them would be lopsided. */
void Search::take(std::size_t cases)
{
    objective.reset(); // before the memory of the next one is taken
    const std::shared_ptr<const KrigingData> part =
        cases == data->cases
            ? data
            : std::make_shared<KrigingData>(data->subset(randomSubset(data->cases, cases)));
    objective = std::make_unique<KrigingObjective>(part, settings);
    taken = cases;
    for (Optimum& optimum : optima) {
        optimum.search.reset(); // it was that of fewer cases
    }
}

double Search::smallestGain() const
{
    // The search stops at the first gain that falls below, and what it expects is an estimate.
    constexpr double trust = 0.1;
    constexpr double rough = 0.1;
    return settings.isRough ? rough : trust * settings.tolerance * static_cast<double>(taken);
}

/** While searches compete, their ends are not worth many steps. */
double Search::competingGain() const
{
    constexpr double little = 0.02;
    return little + settings.tolerance * static_cast<double>(taken);
}

Optimum Search::search(const std::vector<double>& start, const std::vector<double>& upper,
                       double gain)
{
    constexpr int mostSteps = 100;
    BoundedSearch search(*objective, variables.lower, upper, start);
    variables.limitRises(search);
    search.advance(mostSteps, gain);
    return {search.point(), search.value(), objective->noiseVariance()};
}

/** Carries a search that has competed on to the end. */
void Search::finish(Optimum& optimum)
{
    constexpr int mostSteps = 100;
    if (!optimum.search) {
        optimum = search(optimum.point, variables.upper, smallestGain());
        return;
    }
    optimum.search->resume();
    optimum.search->advance(mostSteps, smallestGain());
    if (optimum.search->value() > optimum.value) {
        optimum.point = optimum.search->point();
        optimum.value = optimum.search->value();
        optimum.noiseVariance = objective->noiseVariance();
    }
}

/**
 * A few steps from the start that is likeliest with all cases. The least nugget stays the least:
 * the more cases there are of a smooth function, the less of it they need.
 */
void Search::continueTheLikeliest()
{
    std::vector<Optimum> starts;
    for (const KrigingParameters& start : settings.starts) {
        const std::vector<double> point = variables.at(start);
        starts.push_back({point, objective->value(point)});
    }
    KrigingOptima::sort(starts);
    optima.add(starts.front(), *objective);
    Optimum& best = optima.best();
    if (*settings.mostSteps == 0 || !std::isfinite(best.value)) {
        return;
    }
    std::vector<double> upper = variables.upper;
    if (variables.hasNugget && best.point.back() <= variables.lower.back()) {
        upper.back() = variables.lower.back();
    }
    BoundedSearch search(*objective, variables.lower, upper, best.point);
    search.finish(*settings.mostSteps, smallestGain());
    if (search.value() > best.value) {
        best.point = search.point();
        best.value = search.value();
    }
}

/**
 * Independent searches that meet are the evidence that where they meet is the best optimum. Three
 * from the middle of what is common are enough where two of them meet in the highest and explain
 * the cases well. Where they do not meet, a few more compete. Where the first one hardly explains
 * the cases, the likelihood has many optima: then all others race with scattered starts.
 */
void Search::compete()
{
    // In log-likelihood per case: the error is less than 1/e of what it is without correlation.
    constexpr double tellingGain = 1.0;
    constexpr std::size_t aFew = 6;

    const double uncorrelated =
        objective->value(variables.uniform(KrigingSearch::smallestLength(), smoothNugget));
    const double telling = uncorrelated + tellingGain * static_cast<double>(taken);
    std::vector<std::vector<double>> starts = variables.commonStarts(settings.initialLength);
    std::size_t started = 0;
    bool isTelling = true;
    for (; started < starts.size() && isTelling; ++started) {
        KrigingRunner runner(*objective, variables, starts[started]);
        while (!advance(runner, 1)) {
        }
        isTelling = variables.lengths == 0 || optima.highestValue() > telling;
    }
    optima.sort();
    constexpr int enoughMeetings = 2;
    const bool doMeet = !optima.isEmpty() && optima.best().meetings >= enoughMeetings;
    if (variables.lengths == 0 || (doMeet && isTelling)) {
        return;
    }
    starts.erase(starts.begin(), starts.begin() + static_cast<std::ptrdiff_t>(started));
    for (std::vector<double>& start : variables.scatteredStarts()) {
        starts.push_back(std::move(start));
    }
    if (isTelling) {
        starts.resize(aFew);
        race(starts, {{2, 3}, {1, 60}});
    } else {
        race(starts, {{5, 2}, {3, 3}, {2, 60}});
    }
    optima.sort();
}

/**
 * Of many starts those that begin high, a few steps of each of them, and of those only the highest
 * to the end: searches that end low mostly are low soon.
 */
void Search::race(const std::vector<std::vector<double>>& starts, const std::vector<Round>& rounds)
{
    std::vector<Optimum> field;
    for (const std::vector<double>& start : starts) {
        field.push_back({start, objective->value(start)});
    }
    KrigingOptima::sort(field);
    field.resize(std::min(field.size(), rounds[0].runners));
    std::vector<std::unique_ptr<KrigingRunner>> runners;
    for (const Optimum& start : field) {
        runners.push_back(std::make_unique<KrigingRunner>(*objective, variables, start.point));
    }
    for (const Round& round : rounds) {
        std::stable_sort(runners.begin(), runners.end(), [](const auto& a, const auto& b) {
            return a->search()->value() > b->search()->value();
        });
        runners.resize(std::min(runners.size(), round.runners));
        runners.erase(
            std::remove_if(runners.begin(), runners.end(),
                           [&](const auto& runner) { return advance(*runner, round.steps); }),
            runners.end());
    }
}

/**
 * So many steps, fewer if the search ends or is seen to end where another one did.
 * @return whether there is nothing more to do.
 */
bool Search::advance(KrigingRunner& runner, int steps)
{
    constexpr int mostSteps = 60;
    constexpr int stepsToJudge = 4;
    constexpr double hopeless = 1.0;
    constexpr double stepsLike = 3.0; // the last one are hoped for

    const BoundedSearch& search = *runner.search();
    for (int step = 0; step < steps && !search.isDone() && runner.steps() < mostSteps; ++step) {
        const double gained = runner.step(competingGain());
        if (optima.isEmpty()) {
            continue;
        }
        const double behind = optima.highestValue() - search.value();
        if (runner.steps() > stepsToJudge && behind > hopeless + stepsLike * gained) {
            return true;
        }
        for (Optimum& optimum : optima) {
            const double below = optimum.value - search.value();
            if (below >= 0.0 && below < 2.0 && variables.areClose(search.point(), optimum.point)) {
                ++optimum.meetings;
                return true;
            }
        }
    }
    if (!search.isDone() && runner.steps() < mostSteps) {
        return false;
    }
    if (search.isFeasible()) {
        optima.add({search.point(), search.value(), runner.noiseVariance(), 1, true, true,
                    runner.search()},
                   *objective);
    }
    return true;
}

/** With all cases a search is dear: runners-up that begin lower are left out. */
bool Search::isWorthTheWay(double start, double highestStart) const
{
    constexpr double perCase = 0.005;
    return start >= highestStart - 1.0 - perCase * static_cast<double>(taken);
}

/** Continues with more cases what was found with fewer. */
void Search::climb(std::size_t cases)
{
    optima.shortlist(taken);
    const auto growth = static_cast<double>(cases) / static_cast<double>(taken);
    take(cases);
    const bool areAll = cases == data->cases;
    const double gain = areAll ? smallestGain() : settings.tolerance * static_cast<double>(cases);

    const double before = optima.best().value;
    double highestStart = -infinity;
    for (Optimum& optimum : optima) {
        const double estimate = optimum.value - before; // of what lies between the optima
        variables.recall(optimum.point);
        const double start = areAll && optima.size() > 1 ? objective->value(optimum.point) : 0.0;
        highestStart = std::max(highestStart, start);
        if (isWorthTheWay(start, highestStart)) {
            optimum = search(optimum.point, variables.upper, gain);
        } else {
            optimum.value = optima.best().value + growth * estimate;
            optimum.isSearched = false;
        }
    }
    optima.sort();
    optima.dropCopiesOfTheBest();
}

/**
 * Beyond some ranges a length is nearly indifferent, and the likelihood has maxima there that no
 * slope leads away from: what is better at the end of the range, or back where the input has a
 * little influence, is found by looking.
 */
void Search::tryFarLengths(const std::vector<double>& upper)
{
    constexpr double little = 60.0; // influence, but enough for a slope that leads back
    constexpr double near = 0.4;
    constexpr std::size_t most = 20; // inputs, those with the shortest of these lengths

    Optimum& best = optima.best();
    std::vector<std::size_t> far;
    for (std::size_t k = 0; k < variables.lengths; ++k) {
        if (best.point[k] > std::log(KrigingSearchVariables::faint)) {
            far.push_back(k);
        }
    }
    std::stable_sort(far.begin(), far.end(),
                     [&](std::size_t a, std::size_t b) { return best.point[a] < best.point[b]; });
    far.resize(std::min(far.size(), most));
    Optimum highest = best;
    for (const std::size_t k : far) {
        for (const double place : {std::log(little), variables.upper[k]}) {
            if (std::fabs(place - best.point[k]) < near) {
                continue;
            }
            std::vector<double> point = best.point;
            point[k] = place;
            const double value = objective->value(point);
            if (value > highest.value + smallestGain()) {
                highest.point = std::move(point);
                highest.value = value;
            }
        }
    }
    if (highest.value > best.value) {
        const int meetings = best.meetings;
        best = search(highest.point, upper, smallestGain());
        best.meetings = meetings;
    }
}

/**
 * The likelihood of smooth data does not feel a nugget of, say, a millionth, and the search leaves
 * it where it is. Users expect such data to be met at the cases: where the likelihood is
 * indifferent, the least nugget is taken. A nugget that stands for less than a hundredth of the
 * output's deviation has to be significant at 1 %; at the end of its range that is half of the
 * chi-squared distribution. Self, Liang: Asymptotic properties of maximum likelihood estimators and
 * likelihood ratio tests under nonstandard conditions, J. Am. Stat. Assoc. 82 (1987).
 */
void Search::preferLeastNugget()
{
    constexpr double evidence = 0.1; // less in the likelihood speaks for nothing
    constexpr double significance = 2.7;
    constexpr double slightNoise = 1e-4; // its variance
    constexpr std::size_t casesPerLength = 5;
    constexpr double littleGain = 0.05;

    const Optimum& best = optima.best();
    if (!variables.hasNugget || best.point.back() <= variables.lower.back()) {
        return;
    }
    const double needed = best.noiseVariance < slightNoise ? significance : evidence;
    const double enough = best.value - std::max(needed, smallestGain());
    Optimum smooth = best;
    smooth.point.back() = variables.lower.back();
    smooth.value = objective->value(smooth.point);
    std::vector<double> upper = variables.upper;
    upper.back() = variables.lower.back();
    if (smooth.value < enough && data->cases <= casesPerLength * (data->inputs + 1)) {
        // So few cases hardly tell noise from shorter lengths.
        smooth = searchFor(enough, smooth.point, upper);
    }
    if (smooth.value < enough) {
        return;
    }
    const bool isLess = smooth.value < best.value - evidence;
    optima.best() = smooth;
    if (isLess) {
        // Without the nugget other lengths are likelier.
        optima.best() = search(smooth.point, upper, std::max(littleGain, smallestGain()));
    }
    tryFarLengths(upper);
}

/** A search from near an optimum for a value of so much, given up when it will hardly get there. */
Optimum Search::searchFor(double enough, const std::vector<double>& start,
                          const std::vector<double>& upper)
{
    constexpr int mostSteps = 100;
    constexpr double hopeless = 0.5;
    constexpr double stepsLike = 3.0; // the last one are hoped for

    BoundedSearch search(*objective, variables.lower, upper, start);
    variables.limitRises(search);
    bool isHopeful = true;
    for (int step = 0; step < mostSteps && isHopeful && !search.isDone(); ++step) {
        const double before = search.value();
        search.advance(1, smallestGain());
        const double gained = search.value() - before;
        isHopeful = search.isDone() || search.value() + stepsLike * gained + hopeless >= enough;
    }
    Optimum result = {search.point(), search.value(), objective->noiseVariance()};
    result.isMaximum = isHopeful;
    return result;
}

/**
 * With all lengths at their lower bound every case stands alone, and the likelihood hardly tells
 * spikes at the cases from noise. Between the cases both predict the same; of a good number of
 * cases noise is the simpler story.
 */
void Search::preferNoiseToSpikes()
{
    constexpr double evidence = 0.4;
    constexpr std::size_t aGoodNumber = 20;

    const Optimum& best = optima.best();
    const std::vector<KrigingReport::Bound> bounds = variables.boundsOf(best.point);
    const bool isSpikes = !bounds.empty() &&
                          std::all_of(bounds.begin(), bounds.end(), [](KrigingReport::Bound bound) {
                              return bound == KrigingReport::Bound::Lower;
                          });
    if (!variables.hasNugget || !isSpikes || data->cases <= aGoodNumber) {
        return;
    }
    Optimum noise = best;
    noise.point.back() = variables.upper.back();
    noise.value = objective->value(noise.point);
    if (noise.value >= best.value - evidence) {
        optima.best() = noise;
    }
}

/** From all starts, on ever more cases, to the best optimum. */
void Search::searchFromAll()
{
    const std::vector<std::size_t> sizes =
        settings.starts.empty() ? ladder() : std::vector<std::size_t>{data->cases};
    take(sizes.front());
    if (settings.starts.empty()) {
        compete();
    }
    for (const KrigingParameters& start : settings.starts) {
        const double enough = std::max(settings.enough, optima.highestValue());
        Optimum reached = searchFor(enough, variables.at(start), variables.upper);
        if (optima.isEmpty() || reached.isMaximum) {
            optima.add(std::move(reached), *objective);
        }
    }
    optima.sort();
    if (optima.isEmpty()) {
        optima.add({variables.uniform(settings.initialLength, noisyNugget), -infinity}, *objective);
    }
    if (sizes.size() == 1 && settings.starts.empty()) {
        finish(optima.best());
    }
    for (std::size_t rung = 1; rung < sizes.size(); ++rung) {
        climb(sizes[rung]);
    }
    if (!settings.isRough) {
        tryFarLengths(variables.upper);
    }
}

KrigingSearch::Result Search::run()
{
    KrigingSearch::Result result;
    if (variables.size() == 0) {
        take(data->cases);
        const std::vector<double> nothing;
        result.logLikelihood = objective->value(nothing);
        result.parameters = objective->parameters(nothing);
        result.evaluations = objective->evaluations();
        return result;
    }

    if (settings.mostSteps) {
        take(data->cases);
        continueTheLikeliest();
    } else {
        searchFromAll();
        optima.dropEndsOfTheRidge(*objective);
        if (optima.size() > 1) {
            result.secondLogLikelihood = optima.second().value;
            result.secondParameters = objective->parameters(optima.second().point);
        }
        if (!settings.isRough) {
            preferLeastNugget();
            preferNoiseToSpikes();
        }
    }
    result.logLikelihood = optima.best().value;
    result.isGivenUp = !optima.best().isMaximum;
    result.lengthBounds = variables.boundsOf(optima.best().point);
    result.nuggetBound = variables.isNuggetLargest(optima.best().point)
                             ? KrigingReport::Bound::Upper
                             : KrigingReport::Bound::None;
    result.parameters = objective->parameters(optima.best().point);
    result.evaluations = objective->evaluations();
    return result;
}

/** In multiplications. */
double expectedWork(std::size_t cases, const std::optional<int>& steps)
{
    const auto n = static_cast<double>(cases);
    if (steps) {
        return (0.5 + 0.5 * *steps) * n * n * n; // each a likelihood and its gradient
    }
    const auto m = static_cast<double>(std::min(cases, casesToCompete));
    return 50.0 * m * m * m + 6.0 * n * n * n;
}

} // namespace

double KrigingSearch::smallestLength()
{
    return 0.01;
}

double KrigingSearch::largestLength()
{
    return 300.0;
}

KrigingSearch::Result KrigingSearch::run(const std::shared_ptr<const KrigingData>& data,
                                         const Settings& settings)
{
    constexpr double raise = 10.0;
    constexpr double hopeless = 1.0;

    Settings attempt = settings;
    attempt.smallestNugget = std::max(attempt.smallestNugget, attempt.soundNugget);
    const FitProgress::Portion progress(0.0, 1.0, "Searching for the correlation lengths",
                                        expectedWork(data->cases, settings.mostSteps));
    bool isRaised = false;
    for (;;) {
        Result result = Search(data, attempt).run();
        if (std::isfinite(result.logLikelihood)) {
            result.isNuggetRaised = isRaised;
            return result;
        }
        if (attempt.smallestNugget > hopeless) {
            throw SurrogateModelInterface::Error(
                "The correlation matrix of the cases cannot be factorised.");
        }
        attempt.smallestNugget *= raise;
        isRaised = true;
    }
}
