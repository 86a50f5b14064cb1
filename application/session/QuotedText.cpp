#include "session/QuotedText.h"

#include "session/Utf8.h"

#include <cstddef>

namespace {
/** In bytes; enough for every name that somebody types. */
constexpr std::size_t longestShown = 200;

bool isControl(char character)
{
    return static_cast<unsigned char>(character) < 0x20 || character == 0x7F;
}

void appendEscaped(std::string& shown, char character)
{
    constexpr char digits[] = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(character);
    shown += "\\x";
    shown += digits[byte / 16];
    shown += digits[byte % 16];
}
} // namespace

std::string quotedText(std::string_view text)
{
    std::string shown = "\"";
    while (!text.empty() && shown.size() < longestShown) {
        // A character at a time: the first that is complete within four bytes.
        std::size_t length = 1;
        while (length < 4 && length < text.size() && !isUtf8Text(text.substr(0, length))) {
            ++length;
        }
        if (isUtf8Text(text.substr(0, length)) && !isControl(text.front())) {
            shown += text.substr(0, length);
        } else {
            length = 1;
            appendEscaped(shown, text.front());
        }
        text.remove_prefix(length);
    }
    return shown + (text.empty() ? "\"" : "...\"");
}
