#pragma once

#include <surrogate_session/Export.h>

struct OutputComparison;

/** Sets the verdict, how clear it is and the recommendation from the metrics and the errors. */
SURROGATE_SESSION_EXPORT void judge(OutputComparison& comparison);
