#include <session/text/QuotedText.h>

#include <gtest/gtest.h>

#include <string>

TEST(QuotedText, ShowsTextAsItIs)
{
    EXPECT_EQ(quotedText("Größe 温度 \xF0\x9F\x98\x80 <b>\"%1%"),
              "\"Größe 温度 \xF0\x9F\x98\x80 <b>\"%1%\"");
    EXPECT_EQ(quotedText(""), "\"\"");
}

TEST(QuotedText, SpellsOutWhatWouldBreakTheLine)
{
    EXPECT_EQ(quotedText(std::string("a\nb\x1B\0c\x7F", 7)), "\"a\\x0Ab\\x1B\\x00c\\x7F\"");
    EXPECT_EQ(quotedText("\xC2\x9B\xC2\xA0"), "\"\\xC2\\x9B\xC2\xA0\"");
    EXPECT_EQ(quotedText("\xEF\xBF\xBE\xEF\xBF\xBD"), "\"\\xEF\\xBF\\xBE\xEF\xBF\xBD\"");
}

TEST(QuotedText, SpellsOutBytesThatAreNoUtf8)
{
    EXPECT_EQ(quotedText("a\xFF\xC3(\xED\xA0\x80\xF0\x9F"),
              "\"a\\xFF\\xC3(\\xED\\xA0\\x80\\xF0\\x9F\"");
}

TEST(QuotedText, CutsLongTextsBetweenCharacters)
{
    std::string text;
    for (int i = 0; i < 1000; ++i) {
        text += "温";
    }

    EXPECT_EQ(shownText(text), text.substr(0, 201) + "...");
}

TEST(QuotedText, MakesALineOfALongTextWithoutACut)
{
    EXPECT_EQ(oneLineText(std::string(1000, 'x') + '\n'), std::string(1000, 'x') + "\\x0A");
}
