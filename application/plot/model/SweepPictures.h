#pragma once

#include <plot/data/SweepPicture.h>

#include <surrogate_plot/Export.h>

#include <cstddef>

struct ConfidenceBand;
struct ModelSlice;

/**
 * An output along the swept input of a slice, each of its values once and ascending.
 * @throw UsageError for less than two values; SurrogateModelInterface::Error if it cannot be drawn.
 */
SURROGATE_PLOT_EXPORT SweepPicture sweepPicture(const ModelSlice& slice, std::size_t output,
                                                const ConfidenceBand& band);
