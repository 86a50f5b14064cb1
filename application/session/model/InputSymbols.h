#pragma once

#include <surrogate_session/Export.h>

#include <string>
#include <vector>

/**
 * A sentence of the fitting library with the inputs' names, in quotes, where it has its symbols for
 * them: V1, V2, ... in the order of the inputs. Two symbols side by side are a product; names may
 * hold blanks, so it gets its sign.
 */
SURROGATE_SESSION_EXPORT std::string withInputNames(const std::string& sentence,
                                                    const std::vector<std::string>& inputs);
