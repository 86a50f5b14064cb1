#pragma once

#include <surrogate_session/Export.h>

#include <string>
#include <string_view>

/** The text, or its two ends with "..." between them where it has more than 200 bytes: for names in
 *  messages, pages and pictures. Data keeps the whole. */
SURROGATE_SESSION_EXPORT std::string shortText(std::string_view text);

/**
 * A text as a message can show it: one line of UTF-8 whatever the bytes (control characters, those
 * that change the direction of writing, and bytes that are not UTF-8 are shown as \xHH), shortened
 * like shortText().
 */
SURROGATE_SESSION_EXPORT std::string shownText(std::string_view text);

/** The same in full length. */
SURROGATE_SESSION_EXPORT std::string oneLineText(std::string_view text);

/** The same with its line ends and tabs: a report, or whatever else is written to a terminal. */
SURROGATE_SESSION_EXPORT std::string terminalText(std::string_view text);

/** The same, with what stands in quotes on a line shortened like shortText(): sentences that name
 *  columns and files. */
SURROGATE_SESSION_EXPORT std::string messageText(std::string_view text);

/** As shownText(), in quotes. */
SURROGATE_SESSION_EXPORT std::string quotedText(std::string_view text);
