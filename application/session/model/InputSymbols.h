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

/**
 * A term of a polynomial with the inputs' names: "V1^2" becomes "Pressure^2", "V1 V2" "Pressure *
 * H2/WF6", and "1" "intercept".
 */
SURROGATE_SESSION_EXPORT std::string termWithInputNames(const std::string& term,
                                                        const std::vector<std::string>& inputs);
