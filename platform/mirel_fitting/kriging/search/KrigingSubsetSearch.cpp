#include <mirel_fitting/kriging/search/KrigingSubsetSearch.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/cases/SpaceFillingSubset.h>
#include <mirel_fitting/kriging/likelihood/KrigingTrend.h>
#include <mirel_fitting/kriging/search/SearchPolicy.h>

KrigingSearchResult KrigingSubsetSearch::ofSubset(const KrigingData& data, int trendOrder,
                                                  const KrigingSearchSettings& settings,
                                                  std::size_t size)
{
    constexpr double choosing = 0.1; // of the work

    auto few = std::make_shared<KrigingData>();
    {
        const FitProgress::Portion portion(0.0, choosing);
        *few = data.subset(spaceFillingSubset(data, size));
    }
    const FitProgress::Portion portion(choosing, 1.0);
    const std::size_t otherParameters = few->inputs + 1; // lengths and variance
    KrigingTrend::of(*few, trendOrder, otherParameters);
    return KrigingSearch::run(few, settings);
}

std::optional<double> KrigingSubsetSearch::nuggetToTry(const KrigingSearchSettings& settings,
                                                       double estimated)
{
    const double least = settings.leastNugget();
    if (settings.isNuggetFixed || estimated <= least ||
        estimated >= SearchPolicy::smoothSubsetNugget) {
        return std::nullopt;
    }
    return least;
}

KrigingSearchResult KrigingSubsetSearch::run(const std::shared_ptr<const KrigingData>& data,
                                             int trendOrder, const KrigingSearchSettings& settings,
                                             std::size_t size, int steps)
{
    constexpr double searching = 0.4; // of the work

    KrigingSearchResult found;
    {
        const FitProgress::Portion portion(0.0, searching);
        found = ofSubset(*data, trendOrder, settings, size);
    }

    const FitProgress::Portion portion(searching, 1.0);
    KrigingSearchSettings nearby = settings;
    nearby.continuation = {{found.parameters}, steps};
    if (const auto least = nuggetToTry(settings, found.parameters.nugget)) {
        nearby.continuation->starts.push_back({found.parameters.lengths, *least});
    }
    if (settings.isNuggetFixed) {
        nearby.requestedNugget = found.parameters.nugget; // it may have been raised
    }
    KrigingSearchResult result = KrigingSearch::run(data, nearby);
    result.isNuggetRaised = result.isNuggetRaised || found.isNuggetRaised;
    result.nuggetBound = found.nuggetBound;
    const double share = static_cast<double>(data->cases) / static_cast<double>(size);
    result.gapToSecond = share * found.gapToSecond;
    return result;
}
