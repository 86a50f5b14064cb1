#include "session/text/QuotedText.h"

#include <mirel_property/Utf8.h>

#include <cstddef>

namespace {
/** In bytes; longer than any name that is typed. */
constexpr std::size_t longestShown = 200;

/** Whether a terminal shows the character and XML can carry it. */
bool isReadable(char32_t code)
{
    const bool isControl = code < 0x20 || (code >= 0x7F && code < 0xA0);
    return !isControl && code != 0xFFFE && code != 0xFFFF;
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
        const Utf8Character character = firstCharacter(text);
        if (character.length > 0 && isReadable(character.code)) {
            shown += text.substr(0, character.length);
            text.remove_prefix(character.length);
        } else {
            appendEscaped(shown, text.front());
            text.remove_prefix(1);
        }
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
