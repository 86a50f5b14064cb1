#include <session/xml/XmlNode.h>

#include <gtest/gtest.h>

TEST(XmlNode, AnswersAttributesAndChildrenOrNull)
{
    XmlNode root = XmlNode::element("Root", {{"a", "1"}});
    root.children = {XmlNode::textNode("Child"), XmlNode::element("Child", {{"b", "2"}}),
                     XmlNode::element("Child")};

    EXPECT_EQ(*root.attribute("a"), "1");
    EXPECT_EQ(root.attribute("A"), nullptr);
    EXPECT_EQ(root.child("Child"), &root.children[1]) << "the first element of that name";
    EXPECT_EQ(root.child("child"), nullptr);
}

TEST(XmlNode, ItsContentIsThatOfItsOwnTexts)
{
    XmlNode root = XmlNode::element("Root");
    XmlNode child = XmlNode::element("Child");
    child.children = {XmlNode::textNode("inner")};
    root.children = {XmlNode::textNode("a"), child, XmlNode::textNode("b")};

    EXPECT_EQ(root.content(), "ab");
}

TEST(XmlNode, IsEqualWhereverItWasRead)
{
    XmlNode node = XmlNode::textNode("a");
    XmlNode other = node;
    other.position = {3, 4};
    EXPECT_TRUE(node == other);

    other.kind = XmlNode::Comment;
    EXPECT_FALSE(node == other);
}
