#include <mirel_datamanagement/VariableName.h>

#include <mirel_datamanagement/ProjectError.h>
#include <mirel_property/Utf8.h>

#include <cstddef>
#include <cstdio>
#include <string_view>

namespace {

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
        const Utf8Character character = firstCharacter(std::string_view(name).substr(position));
        if (character.length == 0) {
            throw ProjectError("The variable name " + quotedName(name) +
                               " is not valid UTF-8: byte " +
                               formatted("0x%02X", static_cast<unsigned char>(name[position])) +
                               " at position " + std::to_string(position + 1) + ".");
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
        const Utf8Character character = firstCharacter(std::string_view(name).substr(position));
        const bool isReadable =
            character.length > 0 && character.code >= 0x20 && canBeInXml(character.code);
        if (isReadable) {
            shown.append(name, position, character.length);
            position += character.length;
        } else {
            shown += formatted("\\x%02X", static_cast<unsigned char>(name[position]));
            ++position;
        }
    }
    return shown + "\"";
}
