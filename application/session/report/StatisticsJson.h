#pragma once

#include "session/report/ReportJson.h"

#include <string>
#include <vector>

struct ResponseSurfaceStatistics;

/** The statistics of a response surface for programs. */
namespace StatisticsJson {
/** The members "coefficients" and "codedCoefficients" of the terms that are kept, "anova",
 *  "lackOfFitNote" where it cannot be tested, "partialTests", "leverage", "residuals" with the
 *  largest studentised ones, "stationaryPoint", "canonicalDirections", "ascent", "descent" and
 *  "droppedTerms". */
ReportJson::Json of(const ResponseSurfaceStatistics& statistics,
                    const std::vector<std::string>& inputs);
} // namespace StatisticsJson
