#pragma once

#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/search/KrigingSearchSettings.h>

#include <memory>

/** The search for the parameters of greatest likelihood. */
class KrigingSearch
{
public:
    /**
     * Multi-start on at most a few hundred of the cases, then the best optima on ever more of them.
     * Reports to FitProgress.
     * @throw SurrogateModelInterface::Error if the fit is cancelled, or no nugget makes the
     *        correlation matrix positive definite.
     */
    static KrigingSearchResult run(const std::shared_ptr<const KrigingData>& data,
                                   const KrigingSearchSettings& settings);
};
