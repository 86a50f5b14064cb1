#pragma once

#include <mirel_property/Export.h>

#include <cstddef>
#include <string_view>

/** The first character of a UTF-8 text. */
struct Utf8Character
{
    char32_t code = 0;
    std::size_t length = 0; ///< in bytes; 0 where the text is empty or not well-formed
};

/** Decodes the first character; surrogates and overlong forms are not well-formed. */
MIREL_PROPERTY_EXPORT Utf8Character firstCharacter(std::string_view bytes);

/** How many bytes at the start are UTF-8 text: well-formed and without NUL. */
MIREL_PROPERTY_EXPORT std::size_t utf8PrefixLength(std::string_view bytes);

/** Whether that is all of them. */
MIREL_PROPERTY_EXPORT bool isUtf8Text(std::string_view bytes);
