#include <session/xml/XmlChecks.h>

#include "MessageOf.h"

#include <session/xml/XmlText.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>

TEST(XmlChecks, PassWhatIsAllowed)
{
    const XmlNode list = readXml("<List><Entry Name='a' Count='3' Size='-1.5'/></List>");
    const XmlNode& entry =
        *XmlChecks::entriesOf(list, "Entry", {"Name", "Count", "Size", "Unit"}).at(0);

    EXPECT_EQ(XmlChecks::requiredText(entry, "Name"), "a");
    EXPECT_EQ(XmlChecks::requiredNumber(entry, "Count", 2, 9), 3u);
    EXPECT_EQ(XmlChecks::finiteNumber(entry, "Size"), -1.5);
    EXPECT_EQ(XmlChecks::optionalText(entry, "Unit"), "");
}

TEST(XmlChecks, WordsStandForValuesInBothDirections)
{
    const std::array<Word<int>, 2> words = {{{"one", 1}, {"two", 2}}};

    EXPECT_EQ(XmlChecks::requiredWord(readXml("<a b='two'/>"), "b", words), 2);
    EXPECT_EQ(wordFor(1, words), "one");
    EXPECT_EQ(wordFor(3, words), "");
    EXPECT_EQ(
        messageOf<XmlFault>([&] { XmlChecks::requiredWord(readXml("<a b='six'/>"), "b", words); }),
        "the attribute \"b\" of the element \"a\" must be \"one\" or \"two\", not \"six\".");
}

TEST(XmlChecks, RefuseTheRestAtItsElement)
{
    const XmlNode root = readXml("<List>\n  <Entry Name=''>text<Inner/></Entry></List>");
    const XmlNode& entry = *root.child("Entry");
    const std::pair<std::function<void()>, const char*> rows[] = {
        {[&] { XmlChecks::entriesOf(root, "Other", {}); },
         "the element \"Entry\" inside \"List\" is not known to this version; remove it, or open "
         "the document with the program that wrote it."},
        {[&] { XmlChecks::refuseText(entry); },
         "the element \"Entry\" holds the text \"text\", where there is none to be."},
        {[&] { XmlChecks::required(entry, "Count"); },
         "the element \"Entry\" lacks the attribute \"Count\"."},
        {[&] { XmlChecks::optionalText(entry, "Name"); },
         "the attribute \"Name\" of the element \"Entry\" must not be empty."},
        {[&] { XmlChecks::finiteNumber(entry, "Name"); },
         "the attribute \"Name\" of the element \"Entry\" needs a finite number with a decimal "
         "point, not \"\"."},
    };
    for (const auto& [check, sentence] : rows) {
        try {
            check();
            FAIL() << sentence;
        } catch (const XmlFault& fault) {
            EXPECT_STREQ(fault.what(), sentence);
            EXPECT_EQ(fault.position().line, 2u);
        }
    }
}
