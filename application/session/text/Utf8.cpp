#include "session/text/Utf8.h"

namespace {
/** Length of the well-formed sequence at the start of `bytes`, 0 if there is none.
 *  The Unicode Standard, version 15.0, table 3-7. */
std::size_t sequenceLength(std::string_view bytes)
{
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const auto within = [&](std::size_t i, unsigned low, unsigned high) {
        return i < bytes.size() && at(i) >= low && at(i) <= high;
    };

    const unsigned lead = at(0);
    if (lead < 0x80) {
        return lead == 0 ? 0 : 1;
    }
    if (lead >= 0xC2 && lead <= 0xDF) {
        return within(1, 0x80, 0xBF) ? 2 : 0;
    }
    if (lead >= 0xE0 && lead <= 0xEF) {
        const unsigned low = lead == 0xE0 ? 0xA0 : 0x80;
        const unsigned high = lead == 0xED ? 0x9F : 0xBF;
        return within(1, low, high) && within(2, 0x80, 0xBF) ? 3 : 0;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        const unsigned low = lead == 0xF0 ? 0x90 : 0x80;
        const unsigned high = lead == 0xF4 ? 0x8F : 0xBF;
        return within(1, low, high) && within(2, 0x80, 0xBF) && within(3, 0x80, 0xBF) ? 4 : 0;
    }
    return 0;
}
} // namespace

std::size_t utf8PrefixLength(std::string_view bytes)
{
    std::size_t position = 0;
    while (position < bytes.size()) {
        const std::size_t length = sequenceLength(bytes.substr(position));
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
