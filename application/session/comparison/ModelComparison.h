#pragma once

#include <session/comparison/OutputComparison.h>

#include <surrogate_session/Export.h>

#include <cstddef>
#include <vector>

class Workspace;

/**
 * Response surface and Kriging compared by cross-validation: the valid cases are split into folds,
 * and each fold is predicted by models of the other cases, made by the model factory of the
 * workspace, so that its terms, weights and blocks hold for each response surface; a left-out case
 * is predicted with the effect of its block, if that is known, and errors are weighted for both
 * models. The metrics of both models are
 * computed from the same cases, those in whose folds both could be fitted. Of the workspace it
 * takes the cases, the roles and the terms, and changes nothing.
 *
 * The verdict is for one model where a test of its errors, paired fold by fold, is significant at 5
 * % (PairedErrors), and leans to it where the test is not, but points the same way as the RMSE.
 */
struct SURROGATE_SESSION_EXPORT ModelComparison
{
    /** The number of folds for callers that have no reason for another. */
    static constexpr std::size_t defaultFolds = 10;

    /** Into how many folds the valid cases can be split: exact copies stay together. */
    static std::size_t maxFolds(const Workspace& workspace);

    /**
     * Fits each model of each output `folds` times. It reports to the FitProgress of the thread.
     * @param folds from 2 to maxFolds().
     * @throw SurrogateModelInterface::Error if there are less than two cases that are no copies, or
     *        the FitProgress cancels, and still does when it is asked again.
     */
    static ModelComparison of(const Workspace& workspace, std::size_t folds);

    std::size_t folds = 0;
    double seconds = 0.0;                  ///< wall-clock time of all
    std::vector<OutputComparison> outputs; ///< in the order of the roles
};
