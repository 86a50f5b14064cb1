#pragma once

#include <mirel_fitting/KrigingReport.h>
#include <mirel_fitting/OutputTransform.h>
#include <session/comparison/PairedErrors.h>

#include <cstddef>
#include <limits>
#include <map>
#include <optional>
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
    double looRmse = none;            ///< leave-one-out, of the fit to all cases
    OutputTransform transform = OutputTransform::None; ///< in the fit to all cases
    std::optional<KrigingReport> kriging;              ///< likewise, if it is Kriging
    /** In so many folds each was modelled. */
    std::map<OutputTransform, std::size_t> transforms;
    std::vector<Failure> failures; ///< the folds in which the model cannot be fitted
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
        Either, ///< nothing that matters speaks for one of the two
        Neither ///< no better than the mean of the cases
    };

    /** In standard deviations of the output: smaller errors make no practical difference. */
    static constexpr double negligibleError = 1e-6;

    std::string name;
    CrossValidationMetrics responseSurface;
    CrossValidationMetrics kriging;

    PairedErrors errors;

    Verdict verdict = Either;
    bool isClear = false; ///< of a verdict for one model: significant at 5 %, more than a lean
    std::string recommendation; ///< a sentence
};
