#include "session/xml/XmlDom.h"

#include "session/text/QuotedText.h"
#include "session/xml/XmlFault.h"
#include "session/xml/XmlText.h"

#include <mirel_serialization/storableText.h>

#include <QDomDocument>
#include <QDomElement>

namespace {
QDomElement makeElement(QDomDocument& document, const XmlNode& node);

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

QDomNode makeNode(QDomDocument& document, const XmlNode& node)
{
    switch (node.kind) {
    case XmlNode::Text:
        return document.createTextNode(storableText(node.text));
    case XmlNode::Comment:
        return document.createComment(storableText(node.text));
    case XmlNode::Instruction:
        return document.createProcessingInstruction(storableText(node.name),
                                                    storableText(node.text));
    default:
        return makeElement(document, node);
    }
}

QDomElement makeElement(QDomDocument& document, const XmlNode& node)
{
    QDomElement element = document.createElement(storableText(node.name));
    for (const auto& attribute : node.attributes) {
        element.setAttribute(storableText(attribute.first), storableText(attribute.second));
    }
    for (const XmlNode& child : node.children) {
        element.appendChild(makeNode(document, child));
    }
    return element;
}

void appendText(XmlNode& parent, const std::string& text)
{
    if (text.empty()) {
        return;
    }
    if (!parent.children.empty() && parent.children.back().kind == XmlNode::Text) {
        parent.children.back().text += text;
    } else {
        parent.children.push_back(XmlNode::textNode(text));
    }
}

XmlNode nodeOf(const QDomElement& element, std::size_t depth)
{
    XmlNode node = XmlNode::element(toUtf8Text(element.tagName()));
    if (depth > maxXmlNesting) {
        throw XmlFault(XmlPosition(),
                       "the element " + quotedText(node.name) + " is nested too deep.");
    }
    const QDomNamedNodeMap attributes = element.attributes();
    for (int i = 0; i < attributes.size(); ++i) {
        const QDomAttr attribute = attributes.item(i).toAttr();
        node.attributes[toUtf8Text(attribute.name())] = toUtf8Text(attribute.value());
    }
    for (QDomNode child = element.firstChild(); !child.isNull(); child = child.nextSibling()) {
        if (child.isElement()) {
            node.children.push_back(nodeOf(child.toElement(), depth + 1));
        } else if (child.isText() || child.isCDATASection()) {
            appendText(node, toUtf8Text(child.nodeValue()));
        } else if (child.isComment()) {
            XmlNode comment = XmlNode::textNode(toUtf8Text(child.nodeValue()));
            comment.kind = XmlNode::Comment;
            node.children.push_back(std::move(comment));
        } else {
            throw XmlFault(XmlPosition(), "the element " + quotedText(node.name) +
                                              " holds something that is neither element nor text.");
        }
    }
    return node;
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
    return nodeOf(element, 1);
}
