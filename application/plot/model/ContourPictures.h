#pragma once

#include <plot/data/ContourPicture.h>

#include <surrogate_plot/Export.h>

#include <cstddef>

struct ModelSlice;

/**
 * An output over the two swept inputs of a slice, each of their values once and ascending.
 * @throw UsageError for less than two values of one; SurrogateModelInterface::Error if it cannot be
 *        drawn.
 */
SURROGATE_PLOT_EXPORT ContourPicture contourPicture(const ModelSlice& slice, std::size_t output);
