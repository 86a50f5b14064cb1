#pragma once

#include <surrogate_session/Export.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/**
 * Position of the text that a user most likely means: the shortest one that begins with `wanted`,
 * else one that differs in the case of ASCII letters only or begins so, else the one with the
 * fewest characters to insert, delete or replace and neighbours to exchange, case ignored, if these
 * are at most a third of `wanted`. The first of several; none if there is no such text. Damerau: A
 * Technique for Computer Detection and Correction of Spelling Errors, Commun. ACM 7 (1964).
 */
SURROGATE_SESSION_EXPORT std::optional<std::size_t>
nearestText(const std::string& wanted, const std::vector<std::string>& known);
