#include <session/text/AsciiText.h>

#include <gtest/gtest.h>

TEST(AsciiText, HasLettersAndDigitsOfAscii)
{
    EXPECT_EQ(lowerCaseText(u8"AbZ 1\u00C4"), u8"abz 1\u00C4");
    EXPECT_TRUE(isLetter('q') && isLetter('Z') && isDigit('9'));
    EXPECT_FALSE(isLetter('1') || isLetter('\xE4') || isDigit('a'));
    EXPECT_TRUE(beginsAsNumber("-x") && beginsAsNumber(".5"));
    EXPECT_FALSE(beginsAsNumber("") || beginsAsNumber("a1"));
}

TEST(AsciiText, IsSplitAtCommasAndTrimmed)
{
    EXPECT_EQ(trimmedText(" \ta b\t"), "a b");
    EXPECT_EQ(trimmedText(" \t"), "");
    EXPECT_EQ(partsBetweenCommas("a, b ,,"), (std::vector<std::string_view>{"a", "b", "", ""}));
    EXPECT_EQ(partsBetweenCommas(""), std::vector<std::string_view>{""});
}

TEST(AsciiText, IsComparedWithBeginningsAndWords)
{
    EXPECT_TRUE(beginsWith("abc", "ab") && beginsWith("abc", ""));
    EXPECT_FALSE(beginsWith("ab", "abc"));
    EXPECT_TRUE(isOneOf("b", {"a", "b"}));
    EXPECT_FALSE(isOneOf("", {"a", "b"}));
}
