#pragma once

#include <mirel_serialization/SerializerInterface.h>

#include <QDomDocument>
#include <QDomElement>

#include <string>
#include <utility>
#include <vector>

/** Writes an element made of what it is given, and notes what it is given to read. */
class ElementSerializer : public SerializerInterface
{
public:
    struct Child
    {
        std::string tag;
        std::string text; ///< none if empty
        std::vector<std::pair<std::string, std::string>> attributes;
    };

    ElementSerializer(std::string tag, std::vector<Child> children)
        : tag(std::move(tag)), children(std::move(children))
    {}

    void addText(const QString& added) { text = added; }
    void addAttribute(const std::string& attribute) { attributes.push_back(attribute); }

    std::string name() const override { return tag; }

    QDomElement serialize(QDomDocument& document) const override
    {
        QDomElement element = document.createElement(string(tag));
        for (const std::string& attribute : attributes) {
            element.setAttribute(string(attribute), QString());
        }
        if (!text.isEmpty()) {
            element.appendChild(document.createTextNode(text));
        }
        for (const Child& child : children) {
            QDomElement added = document.createElement(string(child.tag));
            for (const auto& attribute : child.attributes) {
                added.setAttribute(string(attribute.first), string(attribute.second));
            }
            added.appendChild(document.createTextNode(string(child.text)));
            element.appendChild(added);
        }
        return element;
    }

    void deserialize(QDomElement& element) const override
    {
        const bool isParent = element.tagName() != string(tag);
        noted = described(isParent ? element.firstChildElement(string(tag)) : element);
    }

    /** What it writes and what it was given to read, spelled out in the same way. */
    std::string written() const
    {
        QDomDocument document;
        return described(serialize(document));
    }
    const std::string& received() const { return noted; }

private:
    /** All of it: QString's own conversion takes a leading U+FEFF away, for a byte order mark. */
    static QString string(const std::string& text)
    {
        return QString::fromStdString('x' + text).mid(1);
    }

    static std::string described(const QDomElement& element)
    {
        std::string all = '(' + element.tagName().toStdString();
        for (const char* attribute : {"Name", "Mode", "Distribution"}) {
            all += ' ' + element.attribute(attribute, "none").toStdString();
        }
        for (QDomNode node = element.firstChild(); !node.isNull(); node = node.nextSibling()) {
            all += node.isElement() ? described(node.toElement()) : node.nodeValue().toStdString();
        }
        return all + ')';
    }

    std::string tag;
    std::vector<Child> children;
    QString text;
    std::vector<std::string> attributes;
    mutable std::string noted;
};
