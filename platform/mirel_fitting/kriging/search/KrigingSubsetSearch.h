#pragma once

#include <mirel_fitting/kriging/search/KrigingSearch.h>

#include <cstddef>
#include <memory>
#include <optional>

/** Searches for more cases than can be searched with in about a minute. */
class KrigingSubsetSearch
{
public:
    /**
     * The search with a space-filling subset alone. The terms of its trend are chosen anew: those
     * of all cases need not be independent at the subset's.
     * @param trendOrder the highest.
     * @throw SurrogateModelInterface::Error like KrigingSearch::run().
     */
    static KrigingSearchResult ofSubset(const KrigingData& data, int trendOrder,
                                        const KrigingSearchSettings& settings, std::size_t size);

    /**
     * The nugget that suits fewer cases is too much for more of them if the output is smooth: then
     * the least one is worth a trial, too.
     * @param estimated with fewer cases.
     */
    static std::optional<double> nuggetToTry(const KrigingSearchSettings& settings,
                                             double estimated);

    /**
     * Lengths and nugget of the subset; nuggetToTry() where that is likelier with all cases. From
     * there so many steps with all cases, each of which costs a likelihood and its gradient; one
     * that does not gain is not taken.
     */
    static KrigingSearchResult run(const std::shared_ptr<const KrigingData>& data, int trendOrder,
                                   const KrigingSearchSettings& settings, std::size_t size,
                                   int steps);
};
