#include <mirel_property/Utf8.h>

#include <gtest/gtest.h>

#include <string>

TEST(Utf8, DecodesCharactersOfOneToFourBytes)
{
    const auto decoded = [](std::string_view bytes) {
        const Utf8Character character = firstCharacter(bytes);
        return std::make_pair(static_cast<unsigned>(character.code), character.length);
    };

    EXPECT_EQ(decoded("ab"), std::make_pair(0x61U, std::size_t(1)));
    EXPECT_EQ(decoded("\xC2\x80"), std::make_pair(0x80U, std::size_t(2)));
    EXPECT_EQ(decoded("\xE6\xB8\xA9x"), std::make_pair(0x6E29U, std::size_t(3)));
    EXPECT_EQ(decoded("\xED\x9F\xBF"), std::make_pair(0xD7FFU, std::size_t(3)));
    EXPECT_EQ(decoded("\xEE\x80\x80"), std::make_pair(0xE000U, std::size_t(3)));
    EXPECT_EQ(decoded("\xF0\x9F\x98\x80"), std::make_pair(0x1F600U, std::size_t(4)));
    EXPECT_EQ(decoded("\xF4\x8F\xBF\xBF"), std::make_pair(0x10FFFFU, std::size_t(4)));
}

TEST(Utf8, RefusesWhatIsNotWellFormed)
{
    for (const char* bytes :
         {"", "\x80", "\xC1\xBF", "\xC3", "\xC3(", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xE6\xB8",
          "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80", "\xFF"}) {
        EXPECT_EQ(firstCharacter(bytes).length, 0u) << bytes;
    }
}

TEST(Utf8, TextEndsAtTheFirstByteThatIsNone)
{
    EXPECT_TRUE(isUtf8Text("Größe 温度"));
    EXPECT_EQ(utf8PrefixLength("ä\xFFz"), 2u);
    EXPECT_EQ(utf8PrefixLength(std::string_view("a\0b", 3)), 1u);
}

TEST(Utf8, IsCutBetweenCharacters)
{
    EXPECT_EQ(cutUtf8("a温", 4), "a温");
    EXPECT_EQ(cutUtf8("a温", 3), "a");
}
