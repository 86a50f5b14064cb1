#pragma once

#include <surrogate_session/Export.h>

#include <cstddef>
#include <string>

/**
 * Reads a whole number within bounds, both included.
 * @param what names the text at the beginning of the message ("The count").
 * @throw UsageError for anything else.
 */
SURROGATE_SESSION_EXPORT std::size_t readWholeNumber(const std::string& what,
                                                     const std::string& text, std::size_t least,
                                                     std::size_t most);
