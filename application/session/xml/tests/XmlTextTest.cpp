#include <session/xml/XmlText.h>

#include <gtest/gtest.h>

#include <string>

namespace {
/** Text that somebody or something has put into a name. */
const std::string awkward = "a \"b\" 'c' <d> &amp; ]]> \n\t\r\r\n <!-- --> <![CDATA[ Größe 温度 "
                            "\xF0\x9F\x98\x80 \xEF\xBB\xBF \xC2\x85 \xE2\x80\xA8 %1%";

std::string refusalOf(const std::string& bytes)
{
    try {
        readXml(bytes);
    } catch (const XmlFault& fault) {
        return std::to_string(fault.position().line) + ':' +
               std::to_string(fault.position().column) + ' ' + fault.what();
    }
    return "read";
}

std::string refusalOf(const XmlNode& root)
{
    try {
        writeXml(root);
    } catch (const XmlFault& fault) {
        EXPECT_EQ(fault.position().line, 0u);
        return fault.what();
    }
    return "written";
}

std::string nested(std::size_t levels)
{
    std::string text;
    for (std::size_t i = 0; i < levels; ++i) {
        text += "<a>";
    }
    for (std::size_t i = 0; i < levels; ++i) {
        text += "</a>";
    }
    return text;
}

std::string withAttributes(std::size_t count)
{
    std::string text = "<a";
    for (std::size_t i = 0; i < count; ++i) {
        text += " b" + std::to_string(i) + "='='";
    }
    return text + "/>";
}

void expectRefused(const std::string& bytes, const std::string& part)
{
    const std::string refusal = refusalOf(bytes);
    EXPECT_NE(refusal.find(part), std::string::npos) << refusal;
}
} // namespace

TEST(XmlText, IsIndentedWithSortedAttributesAndEndsWithANewline)
{
    XmlNode root = XmlNode::element("Root");
    XmlNode child = XmlNode::element("Child");
    child.attributes["b"] = "2";
    child.attributes["ä"] = "4";
    child.attributes["B"] = "1";
    child.attributes["c"] = "3";
    child.attributes["b"] = "5";
    child.children.push_back(XmlNode::textNode("text"));
    root.children = {child, XmlNode::element("Empty")};

    EXPECT_EQ(writeXml(root), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                              "<Root>\n"
                              "  <Child B=\"1\" b=\"5\" c=\"3\" ä=\"4\">text</Child>\n"
                              "  <Empty/>\n"
                              "</Root>\n");
}

TEST(XmlText, CarriesAwkwardTextsByteForByte)
{
    XmlNode root = XmlNode::element("Root");
    for (const std::string& text : {awkward, std::string("\xEF\xBB\xBF") + awkward,
                                    std::string("\r"), std::string(" "), std::string("\n")}) {
        XmlNode child = XmlNode::element("Child");
        child.attributes["Name"] = text;
        child.children.push_back(XmlNode::textNode(text));
        root.children.push_back(child);
    }

    const XmlNode read = readXml(writeXml(root));

    EXPECT_TRUE(read == root);
    EXPECT_EQ(*read.children[0].attribute("Name"), awkward);
    EXPECT_EQ(read.children[0].content(), awkward);
}

TEST(XmlText, KeepsTextBesideElementsCommentsAndInstructions)
{
    const std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                             "<a>\n"
                             "  <!-- comment -->\n"
                             "  <b>one <c/> two<!--x--></b>\n"
                             "  <?target data?>\n"
                             "  <x:y x:z=\"1\" xmlns:x=\"uri\"/>\n"
                             "</a>\n";

    EXPECT_EQ(writeXml(readXml(text)), text);
}

TEST(XmlText, JoinsCharacterDataAndTakesBlanksBetweenElementsForLayout)
{
    EXPECT_EQ(readXml("<a>x<![CDATA[<y>]]>&lt;&#x41;&#66;</a>").content(), "x<y><AB");
    EXPECT_TRUE(readXml("<a>\n  <b/>\t<c> </c></a>") == readXml("<a><b></b><c> </c></a>"));
    EXPECT_FALSE(readXml("<a><c> </c></a>") == readXml("<a><c/></a>"));
    EXPECT_TRUE(readXml("\xEF\xBB\xBF<?xml version='1.0' encoding='utf-8'?>\n<!-- c -->\n<?p d?>\n"
                        "<a/>\n<!-- d -->\n\n") == XmlNode::element("a"));
}

TEST(XmlText, ElementsKnowWhereTheyBegin)
{
    const XmlNode root = readXml("<?xml version='1.0'?>\n<a><b/> 温\xF0\x9F\x98\x80<c\n/><d/>"
                                 "</a>");

    const auto placeOf = [&](const char* tag) {
        const XmlPosition& position = root.child(tag)->position;
        return std::make_pair(position.line, position.column);
    };
    EXPECT_EQ(root.position.line, 2u);
    EXPECT_EQ(placeOf("b"), std::make_pair(std::size_t(2), std::size_t(4)));
    EXPECT_EQ(placeOf("c"), std::make_pair(std::size_t(2), std::size_t(11)));
    EXPECT_EQ(placeOf("d"), std::make_pair(std::size_t(3), std::size_t(3)));
}

TEST(XmlText, RefusesWhatIsNotWellFormedWithLineAndColumn)
{
    EXPECT_EQ(refusalOf("<a>\n  <b></c>\n</a>"),
              "2:9 the document is damaged or no XML: Opening and ending tag mismatch.");
    for (const char* text : {"",
                             " ",
                             "text",
                             "<a",
                             "<a>",
                             "<a/>x",
                             "<a/><b/>",
                             "<a b='1' b='2'/>",
                             "<a b='<'/>",
                             "<a>]]></a>",
                             "<a>&b;</a>",
                             "<a>&#1;</a>",
                             "<a>&#xFFFE;</a>",
                             "<a>&#xD800;</a>",
                             "<a>&#0;</a>",
                             "<a><!-- -- --></a>",
                             "<?xml version='1.1'?><a/>",
                             "<1/>",
                             "</a>",
                             " <?xml version='1.0'?><a/>",
                             "<a b=''c=''/>",
                             "<a b/>"}) {
        expectRefused(text, "the document is damaged or no XML: ");
    }
}

TEST(XmlText, RefusesBytesThatAreNoTextWhereTheyStand)
{
    EXPECT_EQ(refusalOf("<a>\nä\xFF</a>"),
              "2:2 a project document is UTF-8 text, and the byte \"\\xFF\" here cannot be part of "
              "it.");
    for (const std::string& text :
         {std::string("<a>\0</a>", 8), std::string("<a>\x01</a>"), std::string("<a b='\x1F'/>"),
          std::string("<a>\xEF\xBF\xBE</a>"), std::string("<a>\xEF\xBF\xBF</a>"),
          std::string("<a>\xED\xA0\x80</a>"), std::string("<a>\xC3"),
          std::string("\xFF\xFE<\0a\0/\0>\0", 10), std::string("\xFE\xFF\0<\0a\0/\0>", 10),
          std::string("<\0a\0/\0>\0", 8)}) {
        expectRefused(text, "cannot be part of it.");
    }
}

TEST(XmlText, RefusesOtherEncodings)
{
    EXPECT_EQ(refusalOf("<?xml version='1.0' encoding='ISO-8859-1'?><a/>"),
              "1:1 the encoding must be UTF-8, not \"ISO-8859-1\".");
}

TEST(XmlText, RefusesDeclarationsBeforeTheyDefineAnything)
{
    const std::string refusal = " a document type declaration is not accepted; remove it.";
    EXPECT_EQ(refusalOf("<!DOCTYPE a><a/>"), "1:1" + refusal);
    EXPECT_EQ(refusalOf("<?xml version='1.0'?>\n  <!DOCTYPE a [\n<!ENTITY b 'bb'>\n"
                        "<!ENTITY c '&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;'>]>\n<a>&c;</a>"),
              "2:3" + refusal);
    EXPECT_EQ(refusalOf("<!DOCTYPE a [<!ENTITY b SYSTEM 'file:///etc/hostname'>]><a>&b;</a>"),
              "1:1" + refusal);
    EXPECT_EQ(refusalOf("<!DOCTYPE a SYSTEM 'http://localhost/a.dtd'><a/>"), "1:1" + refusal);

    const XmlNode root =
        readXml("<a b='>'><!-- <!DOCTYPE a> --><?p <!DOCTYPE a> ?><![CDATA[<!DOCTYPE a>]]></a>");

    EXPECT_EQ(root.content(), "<!DOCTYPE a>");
}

TEST(XmlText, RefusesElementsNestedDeeperOrWithMoreAttributesThanTwoHundred)
{
    EXPECT_EQ(refusalOf(nested(200)), "read");
    EXPECT_EQ(refusalOf(nested(201)), "1:601 elements are nested deeper than 200 levels.");
    EXPECT_EQ(refusalOf(nested(100000)), "1:601 elements are nested deeper than 200 levels.");
    EXPECT_EQ(readXml(withAttributes(200)).attributes.size(), 200u);
    EXPECT_EQ(refusalOf(withAttributes(201)), "1:1 an element has more than 200 attributes.");
    EXPECT_EQ(refusalOf(withAttributes(100000)), "1:1 an element has more than 200 attributes.");
}

TEST(XmlText, ReadsAnAttributeOfMegabytes)
{
    const std::string value(4000000, '=');

    EXPECT_EQ(*readXml("<a b='" + value + "'/>").attribute("b"), value);
}

TEST(XmlText, RefusesToWriteWhatXmlCannotCarry)
{
    for (const std::string& text :
         {std::string("\x01"), std::string("\0", 1), std::string("\x1F"),
          std::string("\xEF\xBF\xBE"), std::string("\xED\xA0\x80"), std::string("\xFF")}) {
        XmlNode root = XmlNode::element("Root");
        root.attributes["Name"] = "x" + text;
        EXPECT_NE(refusalOf(root).find("XML cannot carry the text \"x\\x"), std::string::npos);

        root = XmlNode::element("Root");
        root.children.push_back(XmlNode::textNode("x" + text));
        EXPECT_NE(refusalOf(root).find("XML cannot carry the text \"x\\x"), std::string::npos);
    }
}

TEST(XmlText, RefusesToWriteElementsNestedTooDeep)
{
    XmlNode root = XmlNode::element("Root");
    for (int i = 0; i < 200; ++i) {
        XmlNode outer = XmlNode::element("Root");
        outer.children.push_back(std::move(root));
        root = std::move(outer);
    }

    EXPECT_EQ(refusalOf(root), "the element \"Root\" is nested deeper than 200 levels.");
}
