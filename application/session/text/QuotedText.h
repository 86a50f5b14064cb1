#pragma once

#include <surrogate_session/Export.h>

#include <string>
#include <string_view>

/**
 * A text as a message can show it: one line of UTF-8 whatever the bytes (control characters and
 * bytes that are not UTF-8 are shown as \xHH), cut after 200 bytes.
 */
SURROGATE_SESSION_EXPORT std::string shownText(std::string_view text);

/** The same in full length. */
SURROGATE_SESSION_EXPORT std::string oneLineText(std::string_view text);

/** As shownText(), in quotes. */
SURROGATE_SESSION_EXPORT std::string quotedText(std::string_view text);
