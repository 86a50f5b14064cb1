#include "session/xml/XmlDom.h"

#include <mirel_serialization/storableText.h>

#include <QDomDocument>
#include <QDomElement>

namespace {
QDomElement makeElement(QDomDocument& document, const XmlNode& node)
{
    QDomElement element = document.createElement(storableText(node.name));
    for (const auto& [name, value] : node.attributes) {
        element.setAttribute(storableText(name), storableText(value));
    }
    for (const XmlNode& child : node.children) {
        if (child.kind == XmlNode::Element) {
            element.appendChild(makeElement(document, child));
        } else if (child.kind == XmlNode::Text) {
            element.appendChild(document.createTextNode(storableText(child.text)));
        }
    }
    return element;
}
} // namespace

QDomElement makeDomRoot(QDomDocument& document, const XmlNode& element)
{
    QDomElement root = makeElement(document, element);
    document.appendChild(root);
    return root;
}

XmlNode nodeOf(const QDomElement& element)
{
    XmlNode node = XmlNode::element(element.tagName().toStdString());
    const QDomNamedNodeMap attributes = element.attributes();
    for (int i = 0; i < attributes.size(); ++i) {
        const QDomAttr attribute = attributes.item(i).toAttr();
        node.attributes[attribute.name().toStdString()] = attribute.value().toStdString();
    }
    for (QDomNode child = element.firstChild(); !child.isNull(); child = child.nextSibling()) {
        if (child.isElement()) {
            node.children.push_back(nodeOf(child.toElement()));
        } else if (child.isText() && !child.nodeValue().isEmpty()) {
            node.children.push_back(XmlNode::textNode(child.nodeValue().toStdString()));
        }
    }
    return node;
}
