#include "session/xml/XmlNode.h"

#include <algorithm>

XmlNode XmlNode::element(std::string name, std::map<std::string, std::string> attributes)
{
    XmlNode node;
    node.name = std::move(name);
    node.attributes = std::move(attributes);
    return node;
}

XmlNode XmlNode::textNode(std::string text)
{
    XmlNode node;
    node.kind = Text;
    node.text = std::move(text);
    return node;
}

const std::string* XmlNode::attribute(const std::string& attribute) const
{
    const auto found = attributes.find(attribute);
    return found == attributes.end() ? nullptr : &found->second;
}

const XmlNode* XmlNode::child(const std::string& tag) const
{
    const auto found = std::find_if(children.begin(), children.end(), [&](const XmlNode& node) {
        return node.kind == Element && node.name == tag;
    });
    return found == children.end() ? nullptr : &*found;
}

std::vector<const XmlNode*> XmlNode::elements() const
{
    std::vector<const XmlNode*> elements;
    for (const XmlNode& node : children) {
        if (node.kind == Element) {
            elements.push_back(&node);
        }
    }
    return elements;
}

std::string XmlNode::content() const
{
    std::string joined;
    for (const XmlNode& node : children) {
        joined += node.kind == Text ? node.text : std::string();
    }
    return joined;
}

bool operator==(const XmlNode& left, const XmlNode& right)
{
    return left.kind == right.kind && left.name == right.name && left.text == right.text &&
           left.attributes == right.attributes && left.children == right.children;
}
