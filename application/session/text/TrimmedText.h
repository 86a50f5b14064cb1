#pragma once

#include <string_view>

/** Of ASCII, whatever the locale. */
inline bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

/** A text without the blanks and tabs at its ends. */
inline std::string_view trimmedText(std::string_view text)
{
    const auto isBlank = [](char character) { return character == ' ' || character == '\t'; };
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}
