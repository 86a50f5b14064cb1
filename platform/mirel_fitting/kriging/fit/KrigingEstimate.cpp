#include <mirel_fitting/kriging/fit/KrigingEstimate.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/kriging/search/KrigingSearch.h>
#include <mirel_fitting/kriging/search/KrigingSubsetSearch.h>
#include <mirel_fitting/kriging/search/KrigingTrendChoice.h>

#include <cmath>
#include <numeric>
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
        allCases->averageReplicates();
        const FitProgress::Portion portion(once, 1.0);
        search();
    }
}

void KrigingEstimate::search()
{
    const KrigingSizes& sizes = input.options.sizes;
    if (usesSubset(sizes, allCases->cases)) {
        found = KrigingSubsetSearch::run(allCases, chosenTrend->order(), input.searchSettings(),
                                         sizes.searched, refinements());
    } else if (input.options.correlationLengths.empty() &&
               KrigingTrendChoice::isNeeded(*chosenTrend, *allCases)) {
        searchWithTrends();
    } else {
        found = KrigingSearch::run(allCases, input.searchSettings());
    }
}

bool KrigingEstimate::usesSubset(const KrigingSizes& sizes, std::size_t cases)
{
    return cases > sizes.maxSearched;
}

/** Number of steps with all cases after the search with a subset: by size, not by time, so that the
 *  same cases give the same model on every machine. */
int KrigingEstimate::refinements() const
{
    const KrigingSizes& sizes = input.options.sizes;
    if (allCases->cases > sizes.maxRefined) {
        return 0;
    }
    return allCases->cases > sizes.maxRefinedTwice ? 1 : 2;
}

void KrigingEstimate::searchWithTrends()
{
    const int highest = chosenTrend->order();
    const KrigingTrendChoice::Result choice =
        KrigingTrendChoice::run(allCases, chosenTrend, input.searchSettings());
    chosenTrend = choice.trend;
    allCases = choice.data;
    found = choice.found;
    if (chosenTrend->order() < highest) {
        const double rows = allCases->rowCount();
        const auto inUnits = [&](KrigingTrendChoice::Quality quality) {
            quality.akaike += 2.0 * rows * std::log(input.scale.scale);
            quality.leaveOneOutError *= input.scale.scale;
            return quality;
        };
        lowered = {highest, chosenTrend->order(), inUnits(choice.quality),
                   inUnits(choice.qualityOfHighest)};
    }
}

void KrigingEstimate::warn(KrigingFit& fit) const
{
    const KrigingSizes& sizes = input.options.sizes;
    if (usesSubset(sizes, allCases->cases)) {
        const bool isRefined = refinements() > 0 && input.options.correlationLengths.empty();
        fit.warnings.push_back(
            KrigingWarnings::ofSubset(sizes.maxSearched, sizes.searched, isRefined));
    }
    input.warnOfTrend(*chosenTrend, allCases->cases, fit, lowered);
    if (found.isNuggetRaised) {
        fit.warnings.push_back(KrigingWarnings::ofRaisedNugget(found.parameters.nugget));
    }
}

bool KrigingEstimate::isPureErrorNegligible(const KrigingFitInput& input, const KrigingData& data,
                                            const KrigingSearchResult& found)
{
    return data.hasPureError() && found.parameters.nugget <= input.searchSettings().leastNugget();
}
