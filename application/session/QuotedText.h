#pragma once

#include <string>
#include <string_view>

/**
 * A text in quotes for a message: one line of UTF-8 whatever the bytes (control characters and
 * bytes that are no UTF-8 are shown as \xHH), and cut where nobody would read on.
 */
std::string quotedText(std::string_view text);
