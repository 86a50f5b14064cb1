#include <mirel_property/Utf8.h>

Utf8Character firstCharacter(std::string_view bytes)
{
    // The Unicode Standard, version 15.0, tables 3-6 and 3-7.
    struct Form
    {
        unsigned char leadMask; // of the bits that encode the length
        unsigned char lead;
        char32_t least; // smaller codes have shorter forms
    };
    constexpr Form forms[] = {
        {0x80, 0x00, 0x0}, {0xE0, 0xC0, 0x80}, {0xF0, 0xE0, 0x800}, {0xF8, 0xF0, 0x10000}};

    for (std::size_t length = 1; length <= 4 && length <= bytes.size(); ++length) {
        const Form& form = forms[length - 1];
        const auto lead = static_cast<unsigned char>(bytes[0]);
        if ((lead & form.leadMask) != form.lead) {
            continue;
        }
        char32_t code = lead & static_cast<unsigned char>(~form.leadMask);
        for (const char byte : bytes.substr(1, length - 1)) {
            if (!continuesCharacter(byte)) {
                return {};
            }
            code = (code << 6) | (static_cast<unsigned char>(byte) & 0x3F);
        }
        const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
        return code < form.least || code > 0x10FFFF || isSurrogate ? Utf8Character()
                                                                   : Utf8Character{code, length};
    }
    return {};
}

std::size_t utf8PrefixLength(std::string_view bytes)
{
    std::size_t position = 0;
    while (position < bytes.size() && bytes[position] != '\0') {
        const std::size_t length = firstCharacter(bytes.substr(position)).length;
        if (length == 0) {
            break;
        }
        position += length;
    }
    return position;
}

bool isUtf8Text(std::string_view bytes)
{
    return utf8PrefixLength(bytes) == bytes.size();
}
