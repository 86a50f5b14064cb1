#include <mirel_modelexport/ExportText.h>

#include <mirel_property/Utf8.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <string_view>
#include <vector>

namespace {

/** What the text reads as. */
double valueOf(const std::string& text)
{
    double value = 0.0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

struct Character
{
    char32_t code;
    std::string bytes;
};

/** The characters of UTF-8 text; a byte that is none stands for U+FFFD. */
std::vector<Character> charactersOf(const std::string& text)
{
    std::vector<Character> characters;
    for (std::size_t i = 0; i < text.size();) {
        const Utf8Character first = firstCharacter(std::string_view(text).substr(i));
        characters.push_back(first.length > 0 ? Character{first.code, text.substr(i, first.length)}
                                              : Character{0xFFFD, "\xEF\xBF\xBD"});
        i += std::max<std::size_t>(first.length, 1);
    }
    return characters;
}

/** Ends lines, moves the cursor, or turns the direction of reading. */
bool isControl(char32_t code)
{
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0x61C ||
           (code >= 0x200B && code <= 0x200F) || (code >= 0x2028 && code <= 0x202E) ||
           (code >= 0x2060 && code <= 0x206F) || code == 0xFEFF;
}

std::string codeText(const char* format, char32_t code)
{
    std::array<char, 16> buffer;
    std::snprintf(buffer.data(), buffer.size(), format, static_cast<unsigned>(code));
    return buffer.data();
}

} // namespace

std::string realNumber(double value)
{
    const std::string text = NumberText::shortest(value);
    return text.find_first_of(".en") == std::string::npos ? text + ".0" : text;
}

std::string formulaNumber(double value)
{
    constexpr int keptDigits = 15;
    constexpr double roundsToInfinity = 1e307;
    const std::string leading = NumberText::rounded(value, keptDigits);
    const double rest = std::fabs(value) < roundsToInfinity ? value - valueOf(leading) : 0.0;
    std::string text = leading;
    if (rest != 0.0) {
        text = "(" + leading + (rest < 0.0 ? "-" : "+") +
               NumberText::rounded(std::fabs(rest), keptDigits) + ")";
    }
    std::replace(text.begin(), text.end(), 'e', 'E');
    return text;
}

std::string signedNumber(double value, std::string (*text)(double))
{
    return (std::signbit(value) ? " - " : " + ") + text(std::fabs(value));
}

std::string commentName(const std::string& name)
{
    std::string text = "\"";
    for (const Character& character : charactersOf(name)) {
        const char before = text.back();
        if (isControl(character.code)) {
            text += codeText("<U+%04X>", character.code);
            continue;
        }
        const bool isComment =
            (before == '*' && character.code == '/') || (before == '/' && character.code == '*');
        const bool isTrigraph = before == '?' && character.code == '?';
        text += (isComment || isTrigraph ? " " : "") + character.bytes;
    }
    return text + '"';
}

std::string pythonName(const std::string& name)
{
    std::string text = "\"";
    for (const Character& character : charactersOf(name)) {
        if (character.code == '"' || character.code == '\\') {
            text += '\\' + character.bytes;
        } else if (character.code >= 0x20 && character.code < 0x7F) {
            text += character.bytes;
        } else {
            text += codeText(character.code < 0x10000 ? "\\u%04x" : "\\U%08x", character.code);
        }
    }
    return text + '"';
}

std::string lineName(const std::string& name)
{
    std::string text;
    for (const Character& character : charactersOf(name)) {
        text += isControl(character.code) ? codeText("<U+%04X>", character.code) : character.bytes;
    }
    return text;
}
