#include "session/xml/XmlDom.h"

#include "session/xml/XmlFault.h"

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

/** @throw XmlFault for half of a surrogate pair, which has no UTF-8. */
std::string toUtf8Text(const QString& text)
{
    const std::string bytes = text.toStdString();
    if (QString::fromStdString('.' + bytes) != QLatin1Char('.') + text) {
        throw XmlFault(XmlPosition(), "XML cannot carry the text \"" + bytes +
                                          "\": it holds half of a surrogate pair.");
    }
    return bytes;
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
    XmlNode node = XmlNode::element(toUtf8Text(element.tagName()));
    const QDomNamedNodeMap attributes = element.attributes();
    for (int i = 0; i < attributes.size(); ++i) {
        const QDomAttr attribute = attributes.item(i).toAttr();
        node.attributes[toUtf8Text(attribute.name())] = toUtf8Text(attribute.value());
    }
    for (QDomNode child = element.firstChild(); !child.isNull(); child = child.nextSibling()) {
        if (child.isElement()) {
            node.children.push_back(nodeOf(child.toElement()));
        } else if (child.isText() && !child.nodeValue().isEmpty()) {
            node.children.push_back(XmlNode::textNode(toUtf8Text(child.nodeValue())));
        }
    }
    return node;
}
