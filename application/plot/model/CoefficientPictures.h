#pragma once

#include <mirel_fitting/OutputTransform.h>
#include <plot/data/CoefficientPicture.h>

#include <surrogate_plot/Export.h>

#include <string>
#include <vector>

struct ResponseSurfaceStatistics;

/**
 * The coefficients of an output for inputs coded to [-1, 1], the largest first.
 * @param inputs    their names.
 * @param transform of the output, whose unit the coefficients then have.
 * @param unit      of the output; empty if it is not known.
 * @throw SurrogateModelInterface::Error if there is none but the constant, or they cannot be drawn.
 */
SURROGATE_PLOT_EXPORT CoefficientPicture
coefficientPicture(const ResponseSurfaceStatistics& statistics,
                   const std::vector<std::string>& inputs, const std::string& output,
                   OutputTransform transform = OutputTransform::None, const std::string& unit = {});
