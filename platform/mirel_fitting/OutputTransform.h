#pragma once

#include <mirel_fitting/Export.h>

#include <cstddef>
#include <optional>
#include <string>

/** The function of a positive output that a model is fitted to in the place of the output itself.
 */
enum class OutputTransform
{
    None,       ///< y itself
    SquareRoot, ///< y^(1/2)
    Logarithm   ///< ln y
};

/** What can be done with an OutputTransform. */
namespace OutputTransforms {

/** @param y positive. */
MIREL_FITTING_EXPORT double apply(OutputTransform transform, double y);

/**
 * The output whose transform is `value`. A square root below 0, which only predictions reach, gives
 * 0. Increasing, so that medians and quantiles of the transform give those of the output.
 */
MIREL_FITTING_EXPORT double invert(OutputTransform transform, double value);

/** The same of `count` values, in place. */
MIREL_FITTING_EXPORT void invert(OutputTransform transform, double* values, std::size_t count);

/** "none", "sqrt", "log": in files and on command lines. */
MIREL_FITTING_EXPORT const char* word(OutputTransform transform);

/** None for another word. */
MIREL_FITTING_EXPORT std::optional<OutputTransform> ofWord(const std::string& word);

} // namespace OutputTransforms
