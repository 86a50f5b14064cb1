#include "session/text/QuotedText.h"

#include "session/text/Utf8.h"

#include <cstddef>

namespace {
/** In bytes; enough for every name that somebody types. */
constexpr std::size_t longestShown = 200;

/** Of whole characters; what a terminal would act upon or XML not carry. */
bool isReadable(std::string_view character)
{
    const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(character[i]); };
    const bool isControl = byteAt(0) < 0x20 || byteAt(0) == 0x7F ||
                           (byteAt(0) == 0xC2 && byteAt(1) < 0xA0); // U+0080 to U+009F
    const bool isNoCharacter =
        byteAt(0) == 0xEF && byteAt(1) == 0xBF && byteAt(2) >= 0xBE; // U+FFFE, U+FFFF
    return !isControl && !isNoCharacter;
}

void appendEscaped(std::string& shown, char character)
{
    constexpr char digits[] = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(character);
    shown += "\\x";
    shown += digits[byte / 16];
    shown += digits[byte % 16];
}

/** As much as takes `most` bytes. */
std::string readable(std::string_view text, std::size_t most)
{
    std::string shown;
    while (!text.empty() && shown.size() < most) {
        // A character at a time: the first that is complete within four bytes.
        std::size_t length = 1;
        while (length < 4 && length < text.size() && !isUtf8Text(text.substr(0, length))) {
            ++length;
        }
        if (isUtf8Text(text.substr(0, length)) && isReadable(text.substr(0, length))) {
            shown += text.substr(0, length);
        } else {
            length = 1;
            appendEscaped(shown, text.front());
        }
        text.remove_prefix(length);
    }
    return text.empty() ? shown : shown + "...";
}
} // namespace

std::string shownText(std::string_view text)
{
    return readable(text, longestShown);
}

std::string oneLineText(std::string_view text)
{
    return readable(text, std::string::npos);
}

std::string quotedText(std::string_view text)
{
    return '"' + shownText(text) + '"';
}
