#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

/** How the bytes of a text file stand for characters. */
enum class TextEncoding
{
    Utf8,
    Windows1252, ///< of which the letters of Latin-1 are a part
    Utf16Little,
    Utf16Big
};

/** What UTF-8 text may begin with. */
inline constexpr std::string_view utf8ByteOrderMark = "\xEF\xBB\xBF";

/**
 * The encoding of a file whose first bytes are `sample`. A byte-order mark decides; without one,
 * text of which nearly every second byte is 0 is UTF-16, and text that is not well-formed UTF-8 is
 * Windows-1252.
 * @param isWholeFile whether the sample cannot end inside a character.
 */
TextEncoding recogniseEncoding(std::string_view sample, bool isWholeFile);

/** Reads text of any encoding as UTF-8. What cannot be decoded becomes U+FFFD. */
class TextDecoder
{
public:
    /** Fills a buffer with the next bytes, at most `capacity`; returns how many, 0 at the end. */
    using Read = std::function<std::size_t(char* buffer, std::size_t capacity)>;

    /** @param reader what it throws comes out of read(). */
    TextDecoder(Read reader, TextEncoding encoding);

    /** The next bytes of UTF-8, at most `capacity`; 0 at the end only. A byte-order mark at the
     *  beginning is not part of them unless the encoding is UTF-8. */
    std::size_t read(char* buffer, std::size_t capacity);

private:
    void decodeBlock();
    void appendUtf16(char32_t unit);

    Read reader;
    TextEncoding encoding;
    std::string encoded; ///< bytes that do not make a character yet
    std::string decoded; ///< what read() has not delivered yet begins at `position`
    std::size_t position = 0;
    char32_t leadSurrogate = 0;
    bool isFirst = true;
    bool isInputRead = false;
};
