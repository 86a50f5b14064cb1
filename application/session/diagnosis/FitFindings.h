#pragma once

#include <session/diagnosis/Finding.h>

#include <surrogate_session/Export.h>

#include <string>
#include <vector>

struct ResponseSurfaceStatistics;

/** What the fit of a response surface shows. */
namespace FitFindings {
/**
 * "suspectedOutliers": cases whose externally studentised residual exceeds the limit of Bonferroni;
 * two whose residuals the design makes equal in size are named together. "influentialCases": of a
 * leverage near 1 and a Cook's distance above 1. "poorPrediction": Q2 is far below R2.
 */
SURROGATE_SESSION_EXPORT std::vector<Finding> find(const std::string& output,
                                                   const ResponseSurfaceStatistics& statistics);
} // namespace FitFindings
