#include <mirel_fitting/KrigingSearch.h>

#include <mirel_fitting/BoundedSearch.h>
#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/KrigingLikelihood.h>
#include <mirel_fitting/SurrogateModelInterface.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <string>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

constexpr double largestNugget = 100.0;
constexpr double smoothNugget = 1e-6; // where starts for smooth and for noisy data begin
constexpr double noisyNugget = 0.05;

// Starts compete on so many cases: enough to tell the optima apart, and sixty times cheaper than
// the thousand that follow.
constexpr std::size_t casesToCompete = 250;

// The likelihood of fewer has more false optima, and costs so little that more starts are made.
constexpr std::size_t fewCases = 120;

/** Counts the work done, in multiplications, and tells FitProgress. */
class Progress
{
public:
    explicit Progress(double expected) : expectedWork(expected) {}

    void add(double work)
    {
        done += work;
        // Nobody knows how many steps are left: the fraction comes close to 1 without reaching it.
        constexpr double mostOfIt = 0.98;
        FitProgress::report(mostOfIt * (1.0 - std::exp(-2.0 * done / expectedWork)),
                            "Searching for the correlation lengths");
    }

private:
    double expectedWork;
    double done = 0.0;
};

/** The likelihood as a function of the logarithms of what is searched for. */
class LogLikelihood : public BoundedObjective
{
public:
    LogLikelihood(const std::shared_ptr<const KrigingData>& data,
                  const KrigingSearch::Settings& settings, Progress& progress)
        : likelihood(data), settings(settings), progress(progress), inputs(data->inputs)
    {
        const auto n = static_cast<double>(data->cases);
        work = n * n * n / 3.0;
    }

    KrigingParameters parameters(const std::vector<double>& point) const
    {
        KrigingParameters result;
        result.lengths = settings.fixedLengths;
        if (result.lengths.empty()) {
            for (std::size_t k = 0; k < inputs; ++k) {
                result.lengths.push_back(std::exp(point[k]));
            }
        }
        // At the bound exactly the bound: its logarithm does not lead back to the same number.
        const bool isLeast =
            settings.isNuggetFixed || point.back() <= std::log(settings.smallestNugget);
        result.nugget = isLeast ? settings.smallestNugget : std::exp(point.back());
        return result;
    }

    double value(const std::vector<double>& point) override
    {
        progress.add(work);
        ++evaluations;
        const KrigingParameters at = parameters(point);
        lastNugget = at.nugget;
        return likelihood.evaluate(at.lengths, at.nugget);
    }

    void gradient(std::vector<double>& result) override
    {
        likelihood.gradient(result);
        if (settings.isNuggetFixed) {
            result.pop_back();
        }
        if (!settings.fixedLengths.empty()) {
            result.erase(result.begin(), result.begin() + static_cast<std::ptrdiff_t>(inputs));
        }
        progress.add(2.0 * work);
    }

    /** What the nugget stands for at the point of the last value, which was finite: the output is
     *  standardised. */
    double noiseVariance() const { return lastNugget * likelihood.processVariance(); }

    std::size_t evaluations = 0;

private:
    KrigingLikelihood likelihood;
    const KrigingSearch::Settings& settings;
    Progress& progress;
    std::size_t inputs;
    double work;
    double lastNugget = 0.0;
};

/** Bounds and starts of the variables that are searched for. */
class Variables
{
public:
    Variables(const KrigingData& data, const KrigingSearch::Settings& settings)
        : lengths(settings.fixedLengths.empty() ? data.inputs : 0), areFew(data.cases <= fewCases),
          hasNugget(!settings.isNuggetFixed)
    {
        lower.assign(lengths, std::log(KrigingSearch::smallestLength()));
        upper.assign(lengths, std::log(KrigingSearch::largestLength()));
        if (hasNugget) {
            lower.push_back(std::log(settings.smallestNugget));
            upper.push_back(std::log(std::max(largestNugget, 10.0 * settings.smallestNugget)));
        }
    }

    std::size_t size() const { return lower.size(); }

    std::vector<double> uniform(double length, double nugget) const
    {
        std::vector<double> start(lengths, std::log(length));
        if (hasNugget) {
            start.push_back(std::log(nugget));
        }
        return start;
    }

    std::vector<std::vector<double>> starts(double initialLength) const
    {
        // Half the range suits most data; twice the range smooth functions of many inputs.
        std::vector<std::vector<double>> result = {uniform(initialLength, smoothNugget),
                                                   uniform(4.0 * initialLength, smoothNugget)};
        if (hasNugget) {
            result.push_back(uniform(initialLength, noisyNugget));
        }
        if (lengths == 0) {
            return result;
        }
        // Inputs of unlike influence: lengths between a fifth of the range and ten ranges.
        const int scattered = areFew ? 10 : 4;
        constexpr std::uint64_t seed = 20180;
        std::mt19937_64 generator(seed);
        for (int start = 0; start < scattered; ++start) {
            std::vector<double> point = uniform(1.0, start % 2 == 0 ? smoothNugget : noisyNugget);
            for (std::size_t k = 0; k < lengths; ++k) {
                const double share = static_cast<double>(generator() >> 11) * 0x1.0p-53;
                point[k] = std::log(10.0) * (1.7 * share - 0.7);
            }
            result.push_back(point);
        }
        return result;
    }

    std::size_t lengths;
    bool areFew;
    bool hasNugget;
    std::vector<double> lower;
    std::vector<double> upper;
};

bool hasHigherValue(const BoundedSearch& a, const BoundedSearch& b)
{
    return a.value() > b.value();
}

void sortByValue(std::vector<BoundedSearch*>& searches)
{
    // Stable: of equals the earlier start leads, run after run.
    std::stable_sort(
        searches.begin(), searches.end(),
        [](const BoundedSearch* a, const BoundedSearch* b) { return hasHigherValue(*a, *b); });
}

/** A few cases in random order: the cases come sorted, so that every part of them is lopsided. */
std::vector<std::size_t> sample(std::size_t cases, std::size_t size)
{
    std::vector<std::size_t> indices(cases);
    std::iota(indices.begin(), indices.end(), std::size_t{0});
    std::mt19937_64 generator(cases);
    for (std::size_t i = 0; i < size; ++i) {
        std::swap(indices[i], indices[i + generator() % (cases - i)]);
    }
    indices.resize(size);
    std::sort(indices.begin(), indices.end());
    return indices;
}

double expectedWork(const KrigingData& data)
{
    const auto n = static_cast<double>(data.cases);
    const double m = std::min<double>(n, casesToCompete);
    return 100.0 * m * m * m + 20.0 * n * n * n;
}

class Search
{
public:
    Search(const std::shared_ptr<const KrigingData>& data, const KrigingSearch::Settings& settings,
           Progress& progress)
        : data(data), settings(settings), progress(progress), variables(*data, settings)
    {}

    KrigingSearch::Result run();

private:
    std::size_t competitors() const;
    void compete();
    void escapeDroppedInputs(LogLikelihood& objective, BoundedSearch*& best);
    void finish(KrigingSearch::Result& result);
    std::vector<double> preferLeastNugget(LogLikelihood& objective, const BoundedSearch& search,
                                          double& value) const;
    double smallestGain(std::size_t cases) const
    {
        // The quasi-Newton model knows only the directions that the search has taken, and expects
        // too little of the others.
        constexpr double trust = 0.1;
        return trust * settings.tolerance * static_cast<double>(cases);
    }

    std::shared_ptr<const KrigingData> data;
    const KrigingSearch::Settings& settings;
    Progress& progress;
    Variables variables;
    std::vector<std::unique_ptr<BoundedSearch>> searches;
    std::vector<std::vector<double>> candidates; // best first
    std::vector<double> curvature;               // of the best, for `curvatureCases` cases
    std::size_t curvatureCases = 0;
    double secondGap = infinity; // between the two best optima
};

std::size_t Search::competitors() const
{
    const std::size_t wanted = std::max(casesToCompete, 3 * (data->terms + data->inputs + 1));
    // A little more than that is searched whole.
    return data->cases < wanted + wanted / 2 ? data->cases : wanted;
}

void Search::compete()
{
    const std::size_t size = competitors();
    std::shared_ptr<const KrigingData> few = data;
    if (size < data->cases) {
        few = std::make_shared<KrigingData>(data->subset(sample(data->cases, size)));
    }
    LogLikelihood objective(few, settings, progress);
    const double gain = smallestGain(size);

    std::vector<BoundedSearch*> running;
    for (const std::vector<double>& start : variables.starts(settings.initialLength)) {
        searches.push_back(
            std::make_unique<BoundedSearch>(objective, variables.lower, variables.upper, start));
        if (searches.back()->isFeasible()) {
            running.push_back(searches.back().get());
        }
    }
    if (running.empty()) {
        return;
    }

    // The weaker part gives up after a few steps, most of the rest after some more.
    struct Heat
    {
        int steps;
        std::size_t survivors;
    };
    const std::size_t more = variables.areFew ? 2 : 0;
    for (const Heat heat : {Heat{6, 4 + more}, Heat{10, 2 + more}, Heat{100, 2}}) {
        for (BoundedSearch* search : running) {
            search->advance(heat.steps, gain);
        }
        sortByValue(running);
        running.resize(std::min(running.size(), heat.survivors));
    }

    BoundedSearch* best = running.front();
    escapeDroppedInputs(objective, best);
    for (BoundedSearch* search : running) {
        const double apart = best->value() - search->value();
        if (search != best && apart > gain) {
            secondGap = std::min(secondGap, apart);
        }
    }
    candidates.push_back(best->point());
    curvature = best->curvature();
    curvatureCases = size;
}

/**
 * An input whose length has run far out is flat there: if it matters after all, no gradient leads
 * back. It is brought back once, together with every other such input.
 */
void Search::escapeDroppedInputs(LogLikelihood& objective, BoundedSearch*& best)
{
    const double dropped = std::log(10.0);
    std::vector<double> start = best->point();
    bool isAnyDropped = false;
    for (std::size_t k = 0; k < variables.lengths; ++k) {
        if (start[k] > dropped) {
            start[k] = std::log(1.0);
            isAnyDropped = true;
        }
    }
    if (!isAnyDropped) {
        return;
    }
    searches.push_back(
        std::make_unique<BoundedSearch>(objective, variables.lower, variables.upper, start));
    BoundedSearch* again = searches.back().get();
    again->advance(100, smallestGain(competitors()));
    if (again->isFeasible() && again->value() > best->value()) {
        best = again;
    }
}

void Search::finish(KrigingSearch::Result& result)
{
    searches.clear();
    LogLikelihood objective(data, settings, progress);
    const std::vector<double> start = candidates.empty()
                                          ? variables.uniform(settings.initialLength, noisyNugget)
                                          : candidates.front();
    BoundedSearch search(objective, variables.lower, variables.upper, start);
    if (curvatureCases > 0) {
        for (double& element : curvature) {
            element *= static_cast<double>(data->cases) / static_cast<double>(curvatureCases);
        }
        search.setCurvature(curvature);
    }
    search.advance(100, smallestGain(data->cases));
    double value = search.value();
    result.parameters = objective.parameters(preferLeastNugget(objective, search, value));
    result.logLikelihood = value;
    result.secondLogLikelihood = value - secondGap;
    result.evaluations = objective.evaluations;
}

/**
 * The likelihood of smooth data does not feel a nugget of, say, a millionth, and the search leaves
 * it where it is. Users expect such data to be met at the cases: where the likelihood is
 * indifferent, the least nugget is taken. A nugget that stands for less than a hundredth of the
 * output's deviation has to be significant at 1 %; at the end of its range that is half of the
 * chi-squared distribution. Self, Liang: Asymptotic properties of maximum likelihood estimators and
 * likelihood ratio tests under nonstandard conditions, J. Am. Stat. Assoc. 82 (1987).
 */
std::vector<double> Search::preferLeastNugget(LogLikelihood& objective, const BoundedSearch& search,
                                              double& value) const
{
    constexpr double evidence = 0.1; // less in the likelihood speaks for nothing
    constexpr double significance = 2.7;
    constexpr double slightNoise = 1e-4; // its variance
    constexpr std::size_t casesPerLength = 5;

    std::vector<double> point = search.point();
    if (!variables.hasNugget || !search.isFeasible() || point.back() <= variables.lower.back()) {
        return point;
    }
    objective.value(point);
    const double needed = objective.noiseVariance() < slightNoise ? significance : evidence;
    const double enough = value - std::max(needed, smallestGain(data->cases));
    point.back() = variables.lower.back();
    double withLeast = objective.value(point);
    if (withLeast < enough && data->cases <= casesPerLength * (data->inputs + 1)) {
        // So few cases hardly tell noise from short lengths: other lengths may do as well.
        for (const double length : {settings.initialLength, std::exp(variables.lower.front())}) {
            std::vector<double> upper = variables.upper;
            upper.back() = variables.lower.back();
            BoundedSearch smooth(objective, variables.lower, upper,
                                 variables.uniform(length, settings.smallestNugget));
            smooth.advance(30, smallestGain(data->cases));
            if (smooth.value() > withLeast) {
                withLeast = smooth.value();
                point = smooth.point();
            }
        }
    }
    if (withLeast < enough) {
        return search.point();
    }
    value = withLeast;
    return point;
}

KrigingSearch::Result Search::run()
{
    KrigingSearch::Result result;
    if (variables.size() > 0) {
        compete();
    }
    finish(result);
    return result;
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
    Progress progress(expectedWork(*data));
    bool isRaised = false;
    for (;;) {
        Result result = Search(data, attempt, progress).run();
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
