#include "session/text/QuotedText.h"

#include <mirel_property/Utf8.h>

#include <algorithm>
#include <cstddef>

namespace {
/** In bytes; longer than any name that is typed. */
constexpr std::size_t maxShownBytes = 200;

/** Of scripts that are written from the right: they can make a text look like another one. */
bool changesDirection(char32_t code)
{
    return code == 0x061C || code == 0x200E || code == 0x200F ||
           (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

/** Whether a terminal shows the character and XML can carry it. */
bool isReadable(char32_t code)
{
    const bool isControl = code < 0x20 || (code >= 0x7F && code < 0xA0);
    return !isControl && !changesDirection(code) && code != 0xFFFE && code != 0xFFFF;
}

void appendEscaped(std::string& shown, char character)
{
    constexpr char digits[] = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(character);
    shown += "\\x";
    shown += digits[byte / 16];
    shown += digits[byte % 16];
}

/** @param kept further characters that stay as they are. */
std::string readable(std::string_view text, std::string_view kept)
{
    std::string shown;
    while (!text.empty()) {
        const Utf8Character character = firstCharacter(text);
        if (character.length > 0 &&
            (isReadable(character.code) || kept.find(text.front()) != std::string_view::npos)) {
            shown += text.substr(0, character.length);
            text.remove_prefix(character.length);
        } else {
            appendEscaped(shown, text.front());
            text.remove_prefix(1);
        }
    }
    return shown;
}

} // namespace

std::string shortText(std::string_view text)
{
    if (text.size() <= maxShownBytes) {
        return std::string(text);
    }
    std::size_t right = text.size() - maxShownBytes / 2;
    while (right < text.size() && continuesCharacter(text[right])) {
        ++right;
    }
    return std::string(cutUtf8(text, maxShownBytes / 2)) + "..." + std::string(text.substr(right));
}

std::string shownText(std::string_view text)
{
    return oneLineText(shortText(text));
}

std::string oneLineText(std::string_view text)
{
    return readable(text, "");
}

std::string terminalText(std::string_view text)
{
    return readable(text, "\n\t");
}

std::string messageText(std::string_view text)
{
    std::string message;
    while (!text.empty()) {
        const std::size_t begin = std::min(text.find('"'), text.size());
        const std::size_t end = std::min(text.find_first_of("\"\n", begin + 1), text.size());
        message += text.substr(0, begin);
        message += shortText(text.substr(begin, end - begin));
        message += text.substr(end, 1);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return terminalText(message);
}

std::string quotedText(std::string_view text)
{
    return '"' + shownText(text) + '"';
}
