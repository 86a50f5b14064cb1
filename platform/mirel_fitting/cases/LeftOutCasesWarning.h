#pragma once

#include <mirel_fitting/numerics/NumberText.h>

#include <optional>
#include <string>

/** R2, or Q2 = 1 - PRESS / SST, below which a model is hardly better than the mean. */
constexpr double flatShare = 0.1;

/** Of a model of any kind that predicts left-out cases hardly better than their mean does, or no
 *  better; none if q2 = 1 - PRESS / SST is at least flatShare or NaN. */
inline std::optional<std::string> leftOutCasesWarning(double q2)
{
    if (q2 <= 0.0) {
        return "Left-out cases are predicted no better than by the mean of the cases: do not "
               "rely on this model.";
    }
    if (q2 < flatShare) {
        return "Left-out cases are predicted hardly better than by the mean of the cases (" +
               NumberText::percent(q2) +
               " of the variance): noise dominates, or more cases are needed to show how the "
               "output changes between them.";
    }
    return std::nullopt;
}
