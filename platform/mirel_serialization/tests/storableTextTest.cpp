#include <mirel_serialization/storableText.h>

#include "XmlText.h"

namespace {

std::string stored(const std::string& text)
{
    return storableText(text).toStdString();
}

constexpr char replacement[] = "\xEF\xBF\xBD";

} // namespace

TEST(storableText, KeepsWhatXmlCanCarry)
{
    EXPECT_EQ(stored(""), "");
    for (const std::string& text : textsThatXmlCanCarry()) {
        EXPECT_EQ(stored(text), text);
    }
}

TEST(storableText, ReplacesWhatXmlCannotCarry)
{
    for (const std::string& character :
         {std::string(1, '\0'), std::string("\x01"), std::string("\x0B"), std::string("\x1F"),
          std::string("\xEF\xBF\xBE"), std::string("\xEF\xBF\xBF")}) {
        EXPECT_EQ(stored("1" + character + "2"), std::string("1") + replacement + "2");
    }

    EXPECT_EQ(stored("1\xFF"), std::string("1") + replacement);
    // Half of a pair of surrogates.
    EXPECT_EQ(stored("1\xED\xA0\x80").substr(0, 4), std::string("1") + replacement);
}

TEST(storableText, KeepsTheDocumentReadable)
{
    QDomDocument document;
    QDomElement element = document.createElement("Text");
    element.setAttribute("Value", storableText("\xEF\xBF\xBE\x01"));
    document.appendChild(element);

    QDomDocument copy;

    EXPECT_TRUE(copy.setContent(document.toByteArray()));
    EXPECT_EQ(copy.documentElement().attribute("Value").size(), 2);
}
