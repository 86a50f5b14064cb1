#pragma once

#include <cstddef>
#include <string>
#include <vector>

/**
 * Refuses what would be drawn as an empty frame.
 * @param owner of the values, the subject of the message.
 * @throw SurrogateModelInterface::Error for a value that is not finite or too large for an axis.
 */
void requireDrawable(const std::vector<double>& values, const std::string& owner);

/** @param different values of a swept input. @throw UsageError if there are less than two. */
void requireTwoValues(std::size_t different, const std::string& input);
