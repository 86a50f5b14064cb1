#pragma once

#include <mirel_fitting/OutputTransform.h>
#include <mirel_fitting/ResponseSurfaceStatistics.h>

#include <string>
#include <vector>

/** The statistics of a response surface as tables for people. */
namespace StatisticsTables {
/** A table to be set in whatever form: a heading, and rows of cells; the first column is text. */
struct Table
{
    std::string title;
    std::vector<std::string> heading;
    std::vector<std::vector<std::string>> rows = {};
    std::string note = {}; ///< a sentence below it; empty for none
};

/** The coefficients in the inputs' units, then coded, the analysis of variance, sequential and term
 *  by term, the cases that stand out, the canonical analysis and the ridges; no empty ones.
 *  @param transform of the output that was modelled: residuals and curvatures are those of it. */
std::vector<Table> tables(const ResponseSurfaceStatistics& statistics,
                          const std::vector<std::string>& inputs, OutputTransform transform);

/** Where the stationary point is and what it is, a sentence; says so if there is none. */
std::string stationaryPointText(const ResponseSurfaceStatistics& statistics,
                                const std::vector<std::string>& inputs);

/** All of it, indented by two blanks. */
std::string text(const ResponseSurfaceStatistics& statistics,
                 const std::vector<std::string>& inputs, OutputTransform transform);
} // namespace StatisticsTables
