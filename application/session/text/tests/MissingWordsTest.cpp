#include <session/text/MissingWords.h>

#include <gtest/gtest.h>

namespace {
bool contains(const MissingWords& words, const char* text)
{
    return words.contains(text, CellValue::read(text, false));
}
} // namespace

TEST(MissingWords, AreWordsAsSpelledAndNumbersByValue)
{
    const MissingWords words("failed, -999 ,,9e3");

    EXPECT_TRUE(contains(words, "failed"));
    EXPECT_TRUE(contains(words, "-999.0"));
    EXPECT_TRUE(contains(words, "9000"));
    EXPECT_FALSE(contains(words, "Failed"));
    EXPECT_FALSE(contains(words, "999"));
    EXPECT_FALSE(contains(words, ""));
    EXPECT_EQ(words.text(), "failed, -999 ,,9e3");
}

TEST(MissingWords, AreNoneAtFirst)
{
    EXPECT_TRUE(MissingWords().isEmpty());
    EXPECT_TRUE(MissingWords(" , ").isEmpty());
    EXPECT_FALSE(contains(MissingWords(), "1"));
}
