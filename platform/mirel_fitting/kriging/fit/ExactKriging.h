#pragma once

#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/fit/KrigingFitInput.h>
#include <mirel_fitting/kriging/likelihood/KrigingLikelihood.h>
#include <mirel_fitting/kriging/likelihood/KrigingTrend.h>
#include <mirel_fitting/kriging/prediction/FittedKriging.h>
#include <mirel_fitting/kriging/search/KrigingSearchSettings.h>

#include <memory>

/** The model of cases that one correlation matrix holds, at the parameters that a search found. */
struct ExactKriging
{
    /** @param trend of `data`. */
    ExactKriging(const KrigingFitInput& input, std::shared_ptr<const KrigingTrend> trend,
                 std::shared_ptr<const KrigingData> data, const KrigingSearchResult& found);

    KrigingLikelihood likelihood; ///< evaluated at the parameters
    FittedKriging model;
};
