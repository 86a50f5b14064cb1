#pragma once

#include <surrogate_session/Export.h>

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

class Workspace;

/** How well models of one type predict the cases of the folds that are left out of their fits. */
struct CrossValidationMetrics
{
    struct Failure
    {
        std::size_t fold; ///< from 0
        std::string sentence;
    };

    static constexpr double none = std::numeric_limits<double>::quiet_NaN();

    std::size_t cases = 0;            ///< that the metrics are computed from
    double q2 = none;                 ///< 1 - sum of squared errors / that about the mean
    double rmse = none;               ///< in the unit of the output
    double largestError = none;       ///< absolute, likewise
    std::size_t largestErrorCase = 0; ///< its position in the case file, from 0
    double fitSeconds = none;         ///< wall-clock time of one fit, mean of the folds
    std::vector<Failure> failures;    ///< the folds in which the model cannot be fitted
    std::vector<std::string>
        remarks; ///< how fits differ from the fit to all cases, a sentence each
};

/** Both models of one output, compared on the same cases. */
struct OutputComparison
{
    enum Verdict
    {
        ResponseSurface,
        Kriging,
        Either, ///< the difference is not significant
        Neither ///< no better than the mean of the cases
    };

    std::string name;
    CrossValidationMetrics responseSurface;
    CrossValidationMetrics kriging;

    /** Squared errors of the response surface minus those of Kriging, case by case: their mean, and
     *  its standard error; NaN where there are less than two cases that both have predicted. */
    double difference = CrossValidationMetrics::none;
    double differenceError = CrossValidationMetrics::none;

    Verdict verdict = Either;
    std::string recommendation; ///< a sentence
};

/**
 * Response surface and Kriging compared by cross-validation: the valid cases are split into folds,
 * and each fold is predicted by models of the other cases, made by the model factory of the
 * workspace, so that its terms hold for each response surface. The metrics of both models are
 * computed from the same cases, those in whose folds both could be fitted. Of the workspace it
 * takes the cases, the roles and the terms, and changes nothing.
 *
 * The verdict is for one model if the mean of the paired differences of squared errors is larger
 * than the 97.5 % quantile of Student's t times its standard error. This assumes independent
 * cases, which holds approximately: the fits of different folds share most of their cases.
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
