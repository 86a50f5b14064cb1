#pragma once

#include <mirel_fitting/Export.h>

/**
 * Limits the threads that a fit or an evaluation may use inside one call, for the whole process.
 * @param count 0 (the default): all cores; otherwise at least 1. Less than 0 counts as 0.
 */
MIREL_FITTING_EXPORT void setThreadCount(int count);

/** The limit in force: what setThreadCount() was given, or the number of cores for 0. */
MIREL_FITTING_EXPORT int threadCount();
