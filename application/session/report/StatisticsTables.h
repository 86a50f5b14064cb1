#pragma once

#include "session/report/ReportJson.h"

#include <mirel_fitting/ResponseSurfaceStatistics.h>

#include <string>
#include <vector>

/** The statistics of a response surface as tables for people and as JSON for programs. */
namespace StatisticsTables {
/** A table to be set in whatever form: a heading, and rows of cells; the first column is text. */
struct Table
{
    std::string title;
    std::vector<std::string> heading;
    std::vector<std::vector<std::string>> rows;
};

/** The coefficients in the inputs' units, then coded, then the analysis of variance. */
std::vector<Table> tables(const ResponseSurfaceStatistics& statistics,
                          const std::vector<std::string>& inputs);

/** Where the stationary point is and what it is, a sentence; says so if there is none. */
std::string stationaryPointText(const ResponseSurfaceStatistics& statistics,
                                const std::vector<std::string>& inputs);

/** All of it, indented by two blanks. */
std::string text(const ResponseSurfaceStatistics& statistics,
                 const std::vector<std::string>& inputs);

/** The members "coefficients" and "codedCoefficients" of the terms that are kept, "anova",
 *  "leverage", "stationaryPoint" and "droppedTerms". */
ReportJson::Json json(const ResponseSurfaceStatistics& statistics,
                      const std::vector<std::string>& inputs);
} // namespace StatisticsTables
