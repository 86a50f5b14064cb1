#pragma once

#include <mirel_modelexport/Export.h>

#include <mirel_fitting/BoxCoxProfile.h>
#include <mirel_fitting/CalibrationReport.h>
#include <mirel_fitting/FitMetrics.h>
#include <mirel_fitting/KrigingReport.h>

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

struct ResponseSurfaceStatistics;

/** The figures of a fit for programs: objects. */
namespace FitJson {
using Json = nlohmann::ordered_json;

/** "cases", "terms", "r2", ..., and of a response surface "aicc" and "residualDegreesOfFreedom".
 *  @param statistics of a response surface; null: without these. */
MIREL_MODELEXPORT_EXPORT Json of(const FitMetrics& metrics,
                                 const ResponseSurfaceStatistics* statistics = nullptr);

/** The parameters, "criterion", the likelihoods, "condition", the trend and "worstCases". */
MIREL_MODELEXPORT_EXPORT Json of(const KrigingReport& report);

/** "penalisedRestrictedLikelihood": what the estimated parameters maximise. */
MIREL_MODELEXPORT_EXPORT const char* criterionWord(KrigingReport::Criterion criterion);

MIREL_MODELEXPORT_EXPORT Json of(const BoxCoxProfile& profile);

MIREL_MODELEXPORT_EXPORT Json of(const CalibrationReport& calibration);

/** The members "coefficients" and "codedCoefficients" of the terms that are kept, "anova",
 *  "lackOfFitNote" where it cannot be tested, "partialTests", "leverage", "residuals" with the
 *  largest studentised ones, "stationaryPoint", "canonicalDirections", "ascent", "descent" and
 *  "droppedTerms".
 *  @param inputs the names of the model's inputs. */
MIREL_MODELEXPORT_EXPORT Json of(const ResponseSurfaceStatistics& statistics,
                                 const std::vector<std::string>& inputs);
} // namespace FitJson
