#include <session/xml/XmlDom.h>

#include <session/xml/XmlFault.h>

#include <QDomDocument>
#include <QDomElement>
#include <gtest/gtest.h>

namespace {
/** An element with everything that serializers write. */
XmlNode sample()
{
    XmlNode root = XmlNode::element("Root", {{"b", "2 <&>"}, {"a", "\xC3\xA4\r\n"}});
    root.children.push_back(XmlNode::element("Empty"));
    XmlNode child = XmlNode::element("Child");
    child.children.push_back(XmlNode::textNode("\xEF\xBB\xBFtext"));
    root.children.push_back(child);
    XmlNode comment = XmlNode::textNode(" a comment ");
    comment.kind = XmlNode::Comment;
    root.children.push_back(comment);
    return root;
}
} // namespace

TEST(XmlDom, AnElementComesBackAsItWas)
{
    QDomDocument document;

    EXPECT_TRUE(nodeOf(makeDomRoot(document, sample())) == sample());
}

TEST(XmlDom, TextsAndSectionsBesideEachOtherAreOne)
{
    QDomDocument document;
    QDomElement element = document.createElement("a");
    element.appendChild(document.createTextNode("x"));
    element.appendChild(document.createCDATASection("<y>"));

    EXPECT_EQ(nodeOf(element).content(), "x<y>");
    EXPECT_EQ(nodeOf(element).children.size(), 1u);
}

TEST(XmlDom, RefusesWhatXmlTextsCannotHold)
{
    QDomDocument document;
    QDomElement half = document.createElement("a");
    half.appendChild(document.createTextNode(QString(QChar(0xD83D))));
    EXPECT_THROW(nodeOf(half), XmlFault);

    QDomElement instruction = document.createElement("a");
    instruction.appendChild(document.createProcessingInstruction("p", "d"));
    EXPECT_THROW(nodeOf(instruction), XmlFault);

    QDomElement deep = document.createElement("a");
    for (int i = 0; i < 200; ++i) {
        QDomElement outer = document.createElement("a");
        outer.appendChild(deep);
        deep = outer;
    }
    EXPECT_THROW(nodeOf(deep), XmlFault);
}
