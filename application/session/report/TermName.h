#pragma once

#include <surrogate_session/Export.h>

#include <cstddef>
#include <string>
#include <vector>

/**
 * A term of a polynomial with the names of its inputs: "Pressure^2", "Pressure * H2/WF6", and
 * "intercept" without factors.
 * @param factors positions of inputs, two at most.
 */
SURROGATE_SESSION_EXPORT std::string termName(const std::vector<std::size_t>& factors,
                                              const std::vector<std::string>& inputs);
