#pragma once

#include <mirel_fitting/numerics/NumberText.h>

#include <string>

namespace LeftOutCasesWarning {

/** Of a model of any kind whose 1 - PRESS / SST is not above 0. */
constexpr const char* noBetterThanMean =
    "Left-out cases are predicted no better than by the mean of the cases: do not rely on this "
    "model.";

/** Below, 1 - PRESS / SST is hardly more than 0. */
constexpr double flat = 0.1;

/** Of a model whose 1 - PRESS / SST is above 0 and below `flat`. */
inline std::string hardlyBetterThanMean(double share)
{
    return "Left-out cases are predicted hardly better than by the mean of the cases (" +
           NumberText::percent(share) +
           " of the output's variance): noise dominates, or more cases are needed to show how the "
           "output changes between them.";
}

} // namespace LeftOutCasesWarning
