#include "session/files/TextEncoding.h"

#include <mirel_property/Utf8.h>

#include <boost/locale/utf.hpp>

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace {
constexpr std::size_t blockSize = 1 << 16;
constexpr std::size_t longestUtf8Character = 4;
constexpr char32_t byteOrderMark = 0xFEFF;
constexpr char32_t replacement = 0xFFFD;

/** The characters of the bytes 0x80 to 0x9F; the other bytes are those of Latin-1. */
constexpr std::array<char32_t, 32> windows1252 = {
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

void appendUtf8(std::string& text, char32_t code)
{
    boost::locale::utf::utf_traits<char>::encode(code, std::back_inserter(text));
}

/** The share of NUL among every second byte. */
double nulShare(std::string_view bytes, std::size_t first)
{
    std::size_t count = 0;
    for (std::size_t i = first; i < bytes.size(); i += 2) {
        count += bytes[i] == '\0' ? 1 : 0;
    }
    return 2.0 * static_cast<double>(count) / static_cast<double>(bytes.size());
}
} // namespace

TextEncoding recogniseEncoding(std::string_view sample, bool isWholeFile)
{
    const std::string_view mark = sample.substr(0, 2);
    if (mark == "\xFF\xFE" || mark == "\xFE\xFF") {
        return mark == "\xFF\xFE" ? TextEncoding::Utf16Little : TextEncoding::Utf16Big;
    }
    if (sample.find('\0') != std::string_view::npos) {
        constexpr double nearlyAll = 0.8; // A few characters may not be Latin.
        return nulShare(sample, 1) > nearlyAll   ? TextEncoding::Utf16Little
               : nulShare(sample, 0) > nearlyAll ? TextEncoding::Utf16Big
                                                 : TextEncoding::Utf8;
    }
    const std::size_t rest = sample.size() - utf8PrefixLength(sample);
    const bool isCut = !isWholeFile && rest < longestUtf8Character;
    return rest == 0 || isCut ? TextEncoding::Utf8 : TextEncoding::Windows1252;
}

TextDecoder::TextDecoder(Read reader, TextEncoding encoding)
    : reader(std::move(reader)), encoding(encoding)
{}

std::size_t TextDecoder::read(char* buffer, std::size_t capacity)
{
    if (encoding == TextEncoding::Utf8) {
        return reader(buffer, capacity);
    }
    while (position == decoded.size() && !isInputRead) {
        decodeBlock();
    }
    const std::size_t count = decoded.copy(buffer, capacity, position);
    position += count;
    return count;
}

void TextDecoder::decodeBlock()
{
    decoded.clear();
    position = 0;
    const std::size_t kept = encoded.size();
    encoded.resize(kept + blockSize);
    const std::size_t count = reader(encoded.data() + kept, blockSize);
    encoded.resize(kept + count);
    isInputRead = count == 0;

    if (encoding == TextEncoding::Windows1252) {
        for (const char byte : encoded) {
            const auto code = static_cast<unsigned char>(byte);
            appendUtf8(decoded, code >= 0x80 && code < 0xA0 ? windows1252[code - 0x80] : code);
        }
        encoded.clear();
        return;
    }
    const std::size_t low = encoding == TextEncoding::Utf16Little ? 0 : 1;
    for (std::size_t i = 0; i + 1 < encoded.size(); i += 2) {
        appendUtf16(static_cast<char32_t>(static_cast<unsigned char>(encoded[i + low]) |
                                          static_cast<unsigned char>(encoded[i + 1 - low]) << 8));
    }
    encoded.erase(0, encoded.size() / 2 * 2);
}

void TextDecoder::appendUtf16(char32_t unit)
{
    const bool isMark = std::exchange(isFirst, false) && unit == byteOrderMark;
    const bool isLead = unit >= 0xD800 && unit < 0xDC00;
    const bool isTrail = unit >= 0xDC00 && unit < 0xE000;
    const char32_t lead = std::exchange(leadSurrogate, isLead ? unit : 0);
    if (lead != 0 && isTrail) {
        appendUtf8(decoded, 0x10000 + ((lead - 0xD800) << 10) + (unit - 0xDC00));
        return;
    }
    if (lead != 0) {
        appendUtf8(decoded, replacement);
    }
    if (!isMark && !isLead) {
        appendUtf8(decoded, isTrail ? replacement : unit);
    }
}
