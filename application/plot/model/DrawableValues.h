#pragma once

#include <string>
#include <vector>

/**
 * A drawing of infinities would be an empty frame that says nothing.
 * @param owner of the values, the subject of the message.
 * @throw SurrogateModelInterface::Error for a value that is not finite or too large for an axis.
 */
void requireDrawable(const std::vector<double>& values, const std::string& owner);
