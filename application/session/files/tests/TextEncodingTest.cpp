#include <session/files/TextEncoding.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace {
std::string decoded(std::string_view bytes, TextEncoding encoding, std::size_t most)
{
    const auto read = [bytes, most](char* buffer, std::size_t capacity) mutable {
        const std::size_t count = bytes.copy(buffer, std::min(most, capacity));
        bytes.remove_prefix(count);
        return count;
    };
    TextDecoder decoder(read, encoding);
    std::string text;
    char buffer[3];
    for (std::size_t count = 1; count > 0;) {
        count = decoder.read(buffer, sizeof buffer);
        text.append(buffer, count);
    }
    return text;
}
} // namespace

TEST(TextEncoding, IsRecognisedByMarksAndBytes)
{
    const auto encodingOf = [](std::string_view bytes) { return recogniseEncoding(bytes, true); };

    EXPECT_EQ(encodingOf(""), TextEncoding::Utf8);
    EXPECT_EQ(encodingOf(u8"Köln"), TextEncoding::Utf8);
    EXPECT_EQ(encodingOf("K\xF6ln"), TextEncoding::Windows1252);
    EXPECT_EQ(encodingOf(std::string_view("\xFF\xFEx\0", 4)), TextEncoding::Utf16Little);
    EXPECT_EQ(encodingOf(std::string_view("\xFE\xFF\0x", 4)), TextEncoding::Utf16Big);
    EXPECT_EQ(encodingOf(std::string_view("x\0,\0y\0\n\0", 8)), TextEncoding::Utf16Little);
    EXPECT_EQ(encodingOf(std::string_view("x,y\n1,\0\n", 8)), TextEncoding::Utf8);
    EXPECT_EQ(recogniseEncoding("K\xC3", false), TextEncoding::Utf8);
    EXPECT_EQ(recogniseEncoding("K\xC3", true), TextEncoding::Windows1252);
}

TEST(TextEncoding, TextIsDecodedWhereverTheBlocksEnd)
{
    const std::string_view little("\xFF\xFE\xE4\0\x3D\xD8\x00\xDE\x3D\xD8x\0", 12);
    for (const std::size_t most : {1, 2, 3, 100}) {
        EXPECT_EQ(decoded("\x80 \xE4", TextEncoding::Windows1252, most), u8"€ ä");
        EXPECT_EQ(decoded(little, TextEncoding::Utf16Little, most), u8"ä\U0001F600\uFFFDx");
        EXPECT_EQ(decoded("\xC3\xA4", TextEncoding::Utf8, most), u8"ä");
    }
}
