#pragma once

#include <mirel_fitting/cases/KrigingCases.h>
#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/kriging/likelihood/KrigingTrend.h>
#include <mirel_fitting/kriging/prediction/FittedKriging.h>
#include <mirel_fitting/kriging/report/KrigingFit.h>
#include <mirel_fitting/kriging/report/KrigingFitReport.h>
#include <mirel_fitting/kriging/report/OutputScale.h>
#include <mirel_fitting/kriging/search/KrigingSearchSettings.h>

#include <cstddef>
#include <memory>
#include <vector>

/** The arguments of a fit of one output, borrowed for life, and what every way of fitting takes
 *  from them. */
struct KrigingFitInput
{
    const KrigingCases& cases;
    const std::vector<double>& output;
    const KrigingFitOptions& options;
    OutputScale scale;

    KrigingFitReport report() const { return {cases, output, scale}; }

    KrigingSearchSettings searchSettings() const;

    /** Whether the lower bound of the nugget stands for noise. Up to the least nugget that keeps
     *  the factorisation stable it does not. */
    bool isNuggetNoise() const;

    /** The trend of the highest order that the cases of `data` allow; `data` receives its terms. */
    std::shared_ptr<const KrigingTrend> addTrend(KrigingData& data) const;

    /** Adds to `fit` why the trend has a lower order, and which terms it lacks.
     *  @param distinct number of cases that the trend was chosen for. */
    void warnOfTrend(const KrigingTrend& trend, std::size_t distinct, KrigingFit& fit) const;

    /** A model without coefficients, weights and variance. */
    FittedKriging emptyModel(std::shared_ptr<const KrigingTrend> trend,
                             std::shared_ptr<const KrigingData> data) const;
};
