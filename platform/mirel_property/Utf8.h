#pragma once

#include <mirel_property/Export.h>

#include <cstddef>
#include <string_view>

/** Whether XML can carry a character, surrogates aside. */
constexpr bool canBeInXml(char32_t code)
{
    const bool isBlank = code == '\t' || code == '\n' || code == '\r';
    return isBlank || (code >= 0x20 && code != 0xFFFE && code != 0xFFFF);
}

/** Whether a byte of UTF-8 text is the second or a later one of its character. */
constexpr bool continuesCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/** The first character of a UTF-8 text. */
struct Utf8Character
{
    char32_t code = 0;      ///< the Unicode code point; 0 where `length` is 0
    std::size_t length = 0; ///< in bytes; 0 where the text is empty or not well-formed
};

/** Decodes the first character; surrogates and overlong forms are not well-formed. */
MIREL_PROPERTY_EXPORT Utf8Character firstCharacter(std::string_view bytes);

/** The start of a UTF-8 text, `most` bytes at most, cut between characters. */
inline std::string_view cutUtf8(std::string_view text, std::size_t most)
{
    while (most > 0 && most < text.size() && continuesCharacter(text[most])) {
        --most;
    }
    return text.substr(0, most);
}

/** How many bytes at the start are UTF-8 text: well-formed and without NUL. */
MIREL_PROPERTY_EXPORT std::size_t utf8PrefixLength(std::string_view bytes);

/** Whether that is all of them. */
MIREL_PROPERTY_EXPORT bool isUtf8Text(std::string_view bytes);
