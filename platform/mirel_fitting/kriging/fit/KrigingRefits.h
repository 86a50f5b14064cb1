#pragma once

#include <mirel_fitting/kriging/fit/KrigingFitInput.h>
#include <mirel_fitting/kriging/prediction/FittedKriging.h>

#include <cstddef>
#include <vector>

/**
 * Cross-validation of a Kriging model with the parameters estimated anew: with those of all cases,
 * which depend on the case left out too, leave-one-out errors are too small.
 */
class KrigingRefits
{
public:
    /**
     * The points are split into folds at random, rows with the same inputs together. Each fold is
     * predicted by a model of the others, whose lengths and nugget one step of the search adapts,
     * from those of all points. Reports to FitProgress.
     * @param model of all points, with a correlation and without neighbours.
     * @param folds at most as many as points.
     * @return one per row: residual over the standard error of an observation. NaN where the
     *         outputs of the other folds are all the same, or their cases too few for the trend.
     * @throw SurrogateModelInterface::Error like KrigingSearch::run().
     */
    static std::vector<double> residuals(const KrigingFitInput& input, const FittedKriging& model,
                                         std::size_t folds);
};
