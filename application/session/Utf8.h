#pragma once

#include <surrogate_session/Export.h>

#include <string_view>

/** Whether the bytes are UTF-8 text: well-formed, no surrogates, no overlong forms, no NUL. */
SURROGATE_SESSION_EXPORT bool isUtf8Text(std::string_view bytes);
