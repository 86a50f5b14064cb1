#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

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
    double held95 = none;             ///< the fraction of them inside of the 95 % intervals
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
