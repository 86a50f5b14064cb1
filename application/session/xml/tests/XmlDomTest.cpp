#include <session/xml/XmlDom.h>

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
    return root;
}
} // namespace

TEST(XmlDom, AnElementComesBackAsItWas)
{
    QDomDocument document;

    EXPECT_TRUE(nodeOf(makeDomRoot(document, sample())) == sample());
}
