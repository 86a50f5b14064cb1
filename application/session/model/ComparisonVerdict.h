#pragma once

#include <surrogate_session/Export.h>

struct OutputComparison;

/** Sets verdict and recommendation from the metrics and the difference of a comparison. */
SURROGATE_SESSION_EXPORT void judge(OutputComparison& comparison);
