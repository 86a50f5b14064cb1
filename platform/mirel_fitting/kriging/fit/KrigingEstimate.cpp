#include <mirel_fitting/kriging/fit/KrigingEstimate.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/kriging/report/KrigingWarnings.h>
#include <mirel_fitting/kriging/search/KrigingSearch.h>
#include <mirel_fitting/kriging/search/KrigingSubsetSearch.h>
#include <mirel_fitting/kriging/search/SearchPolicy.h>

#include <utility>

KrigingEstimate::KrigingEstimate(const KrigingFitInput& input,
                                 std::shared_ptr<const KrigingTrend> trend,
                                 std::shared_ptr<KrigingData> data)
    : input(input), chosenTrend(std::move(trend)), allCases(std::move(data))
{
    const double once = allCases->hasPureError() ? 0.5 : 1.0; // of the work
    {
        const FitProgress::Portion portion(0.0, once);
        search();
    }
    if (isPureErrorNegligible(input, *allCases, found)) {
        // That likelihood has also lowered the order of the trend.
        chosenTrend = input.addTrend(*allCases);
        isSmooth = false;
        allCases->averageReplicates();
        const FitProgress::Portion portion(once, 1.0);
        search();
    }
}

void KrigingEstimate::search()
{
    const KrigingSizes& sizes = input.options.sizes;
    if (usesSubset(sizes, allCases->cases)) {
        // By size, not by time, so that the same cases give the same model on every machine.
        const int steps = allCases->cases > sizes.maxRefinedTwice ? 1 : 2;
        found = KrigingSubsetSearch::run(allCases, chosenTrend->order(), input.searchSettings(),
                                         sizes.searched, steps);
    } else {
        searchWithAll();
    }
}

bool KrigingEstimate::usesSubset(const KrigingSizes& sizes, std::size_t cases)
{
    return cases > sizes.maxSearched;
}

/** With few cases per term the trend becomes constant unless there is noise; with very few its
 * order is lowered whatever they show. */
void KrigingEstimate::searchWithAll()
{
    constexpr double first = 0.5; // of the work, if there is a second search

    const KrigingSearchSettings settings = input.searchSettings();
    const auto hasFewer = [&](double casesPerTerm) {
        return input.options.correlationLengths.empty() && chosenTrend->order() > 0 &&
               static_cast<double>(allCases->cases) <
                   casesPerTerm * static_cast<double>(chosenTrend->size());
    };
    while (hasFewer(SearchPolicy::minCasesPerTerm)) {
        lowerTrend(chosenTrend->order() - 1);
    }
    const bool areFewCases = hasFewer(SearchPolicy::casesPerTerm);
    {
        const FitProgress::Portion portion(0.0, areFewCases ? first : 1.0);
        found = KrigingSearch::run(allCases, settings);
    }
    const bool isSmoothOutput =
        !input.isNuggetNoise() &&
        (found.isNuggetRaised || found.parameters.nugget <= settings.leastNugget());
    if (areFewCases && isSmoothOutput) {
        isSmooth = true;
        const FitProgress::Portion portion(first, 1.0);
        lowerTrend(0);
        found = KrigingSearch::run(allCases, settings);
    }
}

void KrigingEstimate::lowerTrend(int order)
{
    const std::size_t otherParameters = allCases->inputs + 1; // lengths and variance
    chosenTrend = KrigingTrend::of(*allCases, order, otherParameters);
}

void KrigingEstimate::warn(KrigingFit& fit) const
{
    const KrigingSizes& sizes = input.options.sizes;
    if (usesSubset(sizes, allCases->cases)) {
        const bool areRefined = input.options.correlationLengths.empty();
        fit.addNote(KrigingWarnings::ofSubset(sizes.maxSearched, sizes.searched, areRefined));
    }
    if (isSmooth) {
        fit.addNote(KrigingWarnings::ofSmoothOutput(input.options.trendOrder, allCases->cases));
    } else {
        input.warnOfTrend(*chosenTrend, allCases->cases, fit);
    }
    if (found.isNuggetRaised) {
        fit.warnings.push_back(KrigingWarnings::ofRaisedNugget(found.parameters.nugget));
    }
}

bool KrigingEstimate::isPureErrorNegligible(const KrigingFitInput& input, const KrigingData& data,
                                            const KrigingSearchResult& found)
{
    return data.hasPureError() && found.parameters.nugget <= input.searchSettings().leastNugget();
}
