#pragma once

#include <mirel_fitting/kriging/fit/DistinctCases.h>
#include <mirel_fitting/kriging/fit/KrigingFitInput.h>
#include <mirel_fitting/kriging/report/KrigingFit.h>

/**
 * Fits more cases than one correlation matrix can hold, by LargeKriging; by the trend alone if that
 * explains them. Reports to FitProgress.
 * @throw SurrogateModelInterface::Error like KrigingSearch::run().
 */
KrigingFit fitLargeKriging(const KrigingFitInput& input, const DistinctCases& distinct);
