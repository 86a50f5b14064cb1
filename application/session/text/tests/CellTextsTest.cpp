#include <session/text/CellTexts.h>

#include <gtest/gtest.h>

#include <string>

TEST(CellTexts, GivesBackEachTextAsItWas)
{
    CellTexts texts;
    texts.append("a");
    texts.append("");
    texts.append(std::string("b\0c", 3));
    texts.append("\xC3\xA4, \"x\"");

    ASSERT_EQ(texts.size(), 4u);
    EXPECT_EQ(texts[0], "a");
    EXPECT_EQ(texts[1], "");
    EXPECT_EQ(texts[2], std::string("b\0c", 3));
    EXPECT_EQ(texts[3], "\xC3\xA4, \"x\"");
}

TEST(CellTexts, KeepsItsTextsWhenRoomIsMade)
{
    CellTexts texts;
    texts.reserve(5);
    texts.append("ab");
    texts.reserve(1000);
    texts.append("c");

    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[0], "ab");
    EXPECT_EQ(texts[1], "c");
}
