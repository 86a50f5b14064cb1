#pragma once

#include <mirel_fitting/numerics/NumberText.h>

#include <optional>
#include <string>

/** Below, 1 - PRESS / SST is hardly more than 0. */
constexpr double flatQ2 = 0.1;

/** Of a model of any kind that predicts left-out cases hardly better than their mean does, or no
 *  better; none if q2 = 1 - PRESS / SST is at least flatQ2 or NaN. */
inline std::optional<std::string> leftOutCasesWarning(double q2)
{
    if (q2 <= 0.0) {
        return "Left-out cases are predicted no better than by the mean of the cases: do not rely "
               "on "
               "this model.";
    }
    if (q2 < flatQ2) {
        return "Left-out cases are predicted hardly better than by the mean of the cases (" +
               NumberText::percent(q2) +
               " of the variance): noise dominates, or more cases are needed to show how the "
               "output changes between them.";
    }
    return std::nullopt;
}
