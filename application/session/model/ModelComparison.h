#pragma once

#include <surrogate_session/Export.h>

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

class CaseSession;

/** What one model predicts of cases that it has not seen. */
struct LeftOutFigures
{
    struct Failure
    {
        std::size_t fold; ///< from 0
        std::string sentence;
    };

    static constexpr double none = std::numeric_limits<double>::quiet_NaN();

    std::size_t cases = 0;            ///< those that the figures rest on
    double q2 = none;                 ///< 1 - sum of squared errors / that about the mean
    double rmse = none;               ///< in the unit of the output
    double largestError = none;       ///< its size, likewise
    std::size_t largestErrorCase = 0; ///< where, as a position in the case file, from 0
    double fitSeconds = none;         ///< wall-clock time of one fit, mean of the folds
    std::vector<Failure> failures;    ///< the folds in which the model cannot be fitted
    std::vector<std::string> remarks; ///< where its fits are others than that of all cases
};

/** Both models of one output, held against the same cases. */
struct OutputComparison
{
    enum Verdict
    {
        ResponseSurface,
        Kriging,
        Either, ///< no difference that the cases bear out
        Neither ///< no better than the mean of the cases
    };

    std::string name;
    LeftOutFigures responseSurface;
    LeftOutFigures kriging;

    /** Squared errors of the response surface minus those of Kriging, case by case: their mean, and
     *  its standard error; NaN where there are less than two cases that both have predicted. */
    double difference = LeftOutFigures::none;
    double differenceError = LeftOutFigures::none;

    Verdict verdict = Either;
    std::string recommendation; ///< a sentence
};

/**
 * Response surface and Kriging by cross-validation: the valid cases are parted into folds, and each
 * fold is predicted by models of the other cases, made as a session makes them. The figures of both
 * models rest on the same cases, those in whose folds both could be fitted. Where the session
 * selects terms, so does each response surface, from the cases of its own. The choices of the
 * session play no other part but for the cases, the inputs and the outputs, and stay as they are.
 *
 * The verdict is for one model if the paired difference of squared errors, over the cases, is
 * larger than the 97.5 % point of Student's t times its standard error; this takes the cases as
 * independent, which they are not quite, as the fits of different folds share most of theirs.
 */
struct SURROGATE_SESSION_EXPORT ModelComparison
{
    /** As many as are made where the caller does not say, if there are as many cases. */
    static constexpr std::size_t usualFolds = 10;

    /** How many folds the valid cases of the session can be parted into; copies stay together. */
    static std::size_t mostFolds(const CaseSession& session);

    /**
     * Fits each model of each output `folds` times. It reports to the FitProgress of the thread.
     * @param folds from 2 to mostFolds().
     * @throw SurrogateModelInterface::Error if there are less than two cases that are no copies, or
     *        the FitProgress cancels, and still does when it is asked again.
     */
    static ModelComparison of(const CaseSession& session, std::size_t folds);

    std::size_t folds = 0;
    double seconds = 0.0;                  ///< wall-clock time of all
    std::vector<OutputComparison> outputs; ///< in the order of the roles
};
