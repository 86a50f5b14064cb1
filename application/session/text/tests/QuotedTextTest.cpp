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

TEST(QuotedText, SpellsOutWhatChangesTheDirectionOfWriting)
{
    EXPECT_EQ(shownText("a\u202Eb\u2066c\u200Fd"),
              "a\\xE2\\x80\\xAEb\\xE2\\x81\\xA6c\\xE2\\x80\\x8Fd");
}

TEST(QuotedText, ShortensLongTextsInTheMiddleBetweenCharacters)
{
    std::string text;
    for (int i = 0; i < 1000; ++i) {
        text += "温";
    }
    const std::string end = text.substr(0, 99);

    EXPECT_EQ(shortText(text), end + "..." + end);
    EXPECT_EQ(shownText(text), end + "..." + end);
    EXPECT_EQ(shortText(text.substr(0, 198)), text.substr(0, 198));
}

TEST(QuotedText, ShowsTextsOnTerminalsWithoutWhatControlsThem)
{
    EXPECT_EQ(terminalText("a\tb\n\x1B[31m\x7F\xC2\x9B\u202E\n"),
              "a\tb\n\\x1B[31m\\x7F\\xC2\\x9B\\xE2\\x80\\xAE\n");
    EXPECT_EQ(terminalText(std::string(1000, 'x')), std::string(1000, 'x'));
}

TEST(QuotedText, ShortensTheLongNamesOfMessages)
{
    const std::string name(1000, 'x');
    const std::string shown = '"' + std::string(99, 'x') + "..." + std::string(100, 'x') + '"';
    EXPECT_EQ(messageText("There is no variable \"" + name + "\"; \"a\" or \"" + name + "\"."),
              "There is no variable " + shown + "; \"a\" or " + shown + '.');
    EXPECT_EQ(messageText("\"" + name), shown.substr(0, shown.size() - 1));
}

TEST(QuotedText, MakesALineOfALongTextWithoutACut)
{
    EXPECT_EQ(oneLineText(std::string(1000, 'x') + '\n'), std::string(1000, 'x') + "\\x0A");
}
