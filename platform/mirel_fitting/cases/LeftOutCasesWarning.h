#pragma once

namespace LeftOutCasesWarning {

/** Of a model of any kind whose 1 - PRESS / SST is not above 0. */
constexpr const char* noBetterThanMean =
    "Left-out cases are predicted no better than by the mean of the cases: do not rely on this "
    "model.";

} // namespace LeftOutCasesWarning
