#pragma once

#include <surrogate_session/Export.h>

struct OutputComparison;

/** Sets the verdict, how clear it is and the recommendation from the metrics and the errors, and
 *  remarks where the fit of a model to all cases contradicts its folds. */
SURROGATE_SESSION_EXPORT void judge(OutputComparison& comparison);
