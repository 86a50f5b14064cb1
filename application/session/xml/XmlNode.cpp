#include "session/xml/XmlNode.h"

#include <algorithm>

namespace {
bool comesBefore(const XmlNode::Attribute& attribute, const std::string& name)
{
    return attribute.first < name;
}
} // namespace

XmlNode XmlNode::element(std::string name)
{
    XmlNode node;
    node.name = std::move(name);
    return node;
}

XmlNode XmlNode::textNode(std::string text)
{
    XmlNode node;
    node.kind = Text;
    node.text = std::move(text);
    return node;
}

void XmlNode::setAttribute(const std::string& attribute, std::string value)
{
    const auto at = std::lower_bound(attributes.begin(), attributes.end(), attribute, comesBefore);
    if (at != attributes.end() && at->first == attribute) {
        at->second = std::move(value);
    } else {
        attributes.emplace(at, attribute, std::move(value));
    }
}

const std::string* XmlNode::attribute(const std::string& attribute) const
{
    const auto at = std::lower_bound(attributes.begin(), attributes.end(), attribute, comesBefore);
    return at != attributes.end() && at->first == attribute ? &at->second : nullptr;
}

const XmlNode* XmlNode::child(const std::string& tag) const
{
    const auto found = std::find_if(children.begin(), children.end(), [&](const XmlNode& node) {
        return node.kind == Element && node.name == tag;
    });
    return found == children.end() ? nullptr : &*found;
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
