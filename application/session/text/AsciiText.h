#pragma once

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

/*
 * The basics of texts: letters, digits and blanks are those of ASCII, whatever the locale.
 */

using WordList = std::initializer_list<std::string_view>;

inline bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

inline bool isLetter(char character)
{
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
}

inline std::string lowerCaseText(std::string_view text)
{
    std::string lower(text);
    for (char& character : lower) {
        if (character >= 'A' && character <= 'Z') {
            character = static_cast<char>(character - 'A' + 'a');
        }
    }
    return lower;
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

inline bool beginsWith(std::string_view text, std::string_view beginning)
{
    return text.substr(0, beginning.size()) == beginning;
}

/** Whether a text begins like a number: with a digit, a sign or a point. */
inline bool beginsAsNumber(std::string_view text)
{
    return !text.empty() &&
           std::string_view("0123456789+-.").find(text.front()) != std::string_view::npos;
}

inline bool isOneOf(std::string_view text, WordList words)
{
    return std::find(words.begin(), words.end(), text) != words.end();
}

/** The parts between commas, without the blanks around them; one for a text without a comma. */
inline std::vector<std::string_view> partsBetweenCommas(std::string_view text)
{
    std::vector<std::string_view> parts;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        parts.push_back(trimmedText(text.substr(begin, end - begin)));
        begin = end + 1;
    }
    return parts;
}
