#pragma once

#include <plot/data/ContourPicture.h>

#include <surrogate_plot/Export.h>

#include <cstddef>

struct ModelCut;

/**
 * An output over the two swept inputs of a cut, each of their values once and ascending.
 * @throw UsageError for less than two values of one; SurrogateModelInterface::Error if it cannot be
 *        drawn.
 */
SURROGATE_PLOT_EXPORT ContourPicture contourPicture(const ModelCut& cut, std::size_t output);
