#pragma once

#include <mirel_fitting/CalibrationReport.h>

#include <surrogate_session/Export.h>

#include <string>
#include <utility>
#include <vector>

struct OutputFit;
struct ResponseSurfaceStatistics;

/** How good the model of one output is, and its parameters, for people. */
namespace FitFigures {
/** Each with its name. */
using Figures = std::vector<std::pair<std::string, std::string>>;

/** @param inputs     the names of the model's inputs.
 *  @param statistics of a response surface; null if there are none. */
SURROGATE_SESSION_EXPORT Figures of(const OutputFit& fit, const std::vector<std::string>& inputs,
                                    const ResponseSurfaceStatistics* statistics);

/** What a reader of the figures should know and is no reason to doubt them: the transform that was
 *  modelled, and why figures are "-". @param statistics as for of(). */
SURROGATE_SESSION_EXPORT std::vector<std::string>
notes(const OutputFit& fit, const ResponseSurfaceStatistics* statistics);

/** Which transform of the output was modelled and why; empty for the output itself, unless a choice
 *  by Box and Cox took it. */
std::string transformNote(const OutputFit& fit);

/** How wide intervals are: "1.31 times as wide as by Student's t, calibrated by refits ...". */
std::string widthText(const CalibrationReport& calibration);
} // namespace FitFigures
