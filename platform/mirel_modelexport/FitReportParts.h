#pragma once

#include <mirel_modelexport/Export.h>

#include <cstddef>
#include <string>
#include <vector>

struct ResponseSurfaceStatistics;

/** What reports of a fit have in common, those for people and those for programs. */
namespace FitReportParts {
/**
 * A term of a polynomial with the names of its inputs: "Pressure^2", "Pressure * H2/WF6", and
 * "intercept" without factors.
 * @param factors positions of inputs, two at most.
 */
MIREL_MODELEXPORT_EXPORT std::string termName(const std::vector<std::size_t>& factors,
                                              const std::vector<std::string>& inputs);

/** Positions in statistics.cases of the largest externally studentised residuals, the largest
 * first; five at most. */
MIREL_MODELEXPORT_EXPORT std::vector<std::size_t>
largestResiduals(const ResponseSurfaceStatistics& statistics);

/** Why the lack of fit cannot be tested, a sentence; empty where it can. */
MIREL_MODELEXPORT_EXPORT std::string lackOfFitNote(const ResponseSurfaceStatistics& statistics);

/** Why there is no canonical analysis of a polynomial with second-order terms, a sentence; empty
 *  unless the cases cannot separate these. */
MIREL_MODELEXPORT_EXPORT std::string canonicalNote(const ResponseSurfaceStatistics& statistics);
} // namespace FitReportParts
