#include <mirel_datamanagement/VariableName.h>

#include <mirel_datamanagement/ProjectError.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace {

struct Character
{
    /** Number of bytes; 0 when the bytes at this place are no UTF-8. */
    std::size_t length;
    std::uint32_t code;
};

constexpr Character notUtf8 = {0, 0};

std::uint32_t byteAt(const std::string& text, std::size_t position)
{
    return static_cast<unsigned char>(text[position]);
}

/** The length that a first byte announces and the payload bits that it brings. */
Character leadingByte(std::uint32_t byte)
{
    if (byte < 0x80) {
        return {1, byte};
    }
    if (byte >= 0xC2 && byte <= 0xDF) {
        return {2, byte & 0x1F};
    }
    if (byte >= 0xE0 && byte <= 0xEF) {
        return {3, byte & 0x0F};
    }
    if (byte >= 0xF0 && byte <= 0xF4) {
        return {4, byte & 0x07};
    }
    return notUtf8;
}

/** The character that starts at `position`; the shortest form only, and no surrogates. */
Character characterAt(const std::string& text, std::size_t position)
{
    Character character = leadingByte(byteAt(text, position));
    if (character.length == 0 || text.size() - position < character.length) {
        return notUtf8;
    }
    for (std::size_t i = 1; i < character.length; ++i) {
        const std::uint32_t byte = byteAt(text, position + i);
        if ((byte & 0xC0) != 0x80) {
            return notUtf8;
        }
        character.code = (character.code << 6) | (byte & 0x3F);
    }
    const std::uint32_t smallestOfLength[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = character.code >= 0xD800 && character.code <= 0xDFFF;
    if (character.code < smallestOfLength[character.length] || isSurrogate ||
        character.code > 0x10FFFF) {
        return notUtf8;
    }
    return character;
}

bool canBeInXml(std::uint32_t code)
{
    const bool isBlank = code == '\t' || code == '\n' || code == '\r';
    return isBlank || (code >= 0x20 && code != 0xFFFE && code != 0xFFFF);
}

template <class Value>
std::string formatted(const char* format, Value value)
{
    char text[32];
    std::snprintf(text, sizeof text, format, static_cast<unsigned>(value));
    return text;
}

} // namespace

void checkVariableName(const std::string& name)
{
    if (name.empty()) {
        throw ProjectError("A variable needs a name, but the name given is empty.");
    }
    for (std::size_t position = 0; position < name.size();) {
        const Character character = characterAt(name, position);
        if (character.length == 0) {
            throw ProjectError("The variable name " + quotedName(name) +
                               " is not valid UTF-8: byte " +
                               formatted("0x%02X", byteAt(name, position)) + " at position " +
                               std::to_string(position + 1) + ".");
        }
        if (!canBeInXml(character.code)) {
            throw ProjectError("The variable name " + quotedName(name) +
                               " contains the character " + formatted("U+%04X", character.code) +
                               ", which project documents cannot store.");
        }
        position += character.length;
    }
}

std::string quotedName(const std::string& name)
{
    std::string shown = "\"";
    for (std::size_t position = 0; position < name.size();) {
        const Character character = characterAt(name, position);
        const bool isReadable =
            character.length > 0 && character.code >= 0x20 && canBeInXml(character.code);
        if (isReadable) {
            shown.append(name, position, character.length);
            position += character.length;
        } else {
            shown += formatted("\\x%02X", byteAt(name, position));
            ++position;
        }
    }
    return shown + "\"";
}
