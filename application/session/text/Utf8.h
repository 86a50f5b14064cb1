#pragma once

#include <surrogate_session/Export.h>

#include <cstddef>
#include <string_view>

/** How many bytes at the start are UTF-8 text: well-formed, no surrogates, no overlong forms, no
 *  NUL. */
SURROGATE_SESSION_EXPORT std::size_t utf8PrefixLength(std::string_view bytes);

/** Whether that is all of them. */
SURROGATE_SESSION_EXPORT bool isUtf8Text(std::string_view bytes);
