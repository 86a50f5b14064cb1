#pragma once

#include <plot/data/ScatterPicture.h>
#include <plot/data/SweepPicture.h>
#include <plot/model/ConfidenceBand.h>

#include <mirel_fitting/ResponseSurfaceStatistics.h>

#include <surrogate_plot/Export.h>

#include <string>
#include <vector>

/**
 * The externally studentised residuals of a response surface, whose rows are positions of cases,
 * against the normal quantiles of their ranks; suspected outliers are numbered.
 * @throw SurrogateModelInterface::Error if there are none.
 */
SURROGATE_PLOT_EXPORT ScatterPicture normalPicture(const ResponseSurfaceStatistics& statistics,
                                                   const std::string& output);

/**
 * The values along the ridge of ascent or of descent.
 * @param inputs their names.
 * @param unit   of the output; empty if it is not known.
 * @param band   of the points along the ridge.
 * @throw SurrogateModelInterface::Error if there is none, or it cannot be drawn.
 */
SURROGATE_PLOT_EXPORT SweepPicture ridgePicture(const ResponseSurfaceStatistics& statistics,
                                                bool isAscent,
                                                const std::vector<std::string>& inputs,
                                                const std::string& output, const std::string& unit,
                                                const ConfidenceBand& band);
