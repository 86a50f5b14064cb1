#include <session/xml/XmlString.h>

#include <session/xml/XmlFault.h>

#include <gtest/gtest.h>

#include <string>

TEST(XmlString, BringsTextsBackByteForByte)
{
    for (const std::string& text : {std::string(), std::string("a\nb"),
                                    std::string("\xEF\xBB\xBF\xC3\xA4\xF0\x9F\x98\x80")}) {
        EXPECT_EQ(toUtf8Text(toQString(text)), text);
    }
}

TEST(XmlString, ReplacesWhatXmlCannotCarry)
{
    EXPECT_EQ(toUtf8Text(toQString("a\x01\xFF")), "a\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(XmlString, RefusesHalfOfASurrogatePair)
{
    EXPECT_THROW(toUtf8Text(QString(QChar(0xD83D))), XmlFault);
}
