#pragma once

#include <surrogate_session/Export.h>

#include <cstddef>
#include <string>
#include <vector>

/**
 * Single characters to insert, delete or replace to turn one text into the other.
 * Wagner, Fischer: The String-to-String Correction Problem, J. ACM 21 (1974).
 */
SURROGATE_SESSION_EXPORT std::size_t editDistance(const std::string& left,
                                                  const std::string& right);

/** Position of the text with the smallest edit distance, the first of several.
 *  @param known at least one. */
SURROGATE_SESSION_EXPORT std::size_t nearestText(const std::string& wanted,
                                                 const std::vector<std::string>& known);
