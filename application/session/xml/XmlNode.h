#pragma once

#include <surrogate_session/Export.h>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

/** A place in a document, line and column from 1, columns in characters; line 0: none. */
struct XmlPosition
{
    std::size_t line = 0;
    std::size_t column = 0;
};

/**
 * A piece of an XML document, a plain value: an element with what is in it, or a text, a comment, a
 * processing instruction. All texts are UTF-8.
 */
struct SURROGATE_SESSION_EXPORT XmlNode
{
    enum Kind
    {
        Element,
        Text,
        Comment,
        Instruction
    };

    static XmlNode element(std::string name, std::map<std::string, std::string> attributes = {});
    static XmlNode textNode(std::string text);

    /** Its value, valid until the next change; null if it is not there. */
    const std::string* attribute(const std::string& attribute) const;

    /** The first element of that name among the children, valid until the next change; or null. */
    const XmlNode* child(const std::string& tag) const;

    /** The children that are elements, in their order; valid until the next change. */
    std::vector<const XmlNode*> elements() const;

    /** The texts among the children, one after the other. */
    std::string content() const;

    /** Equal in everything but position. */
    friend SURROGATE_SESSION_EXPORT bool operator==(const XmlNode& left, const XmlNode& right);

    Kind kind = Element;
    std::string name; ///< tag of an element, target of an instruction
    std::string text; ///< of everything but an element
    std::map<std::string, std::string> attributes;
    std::vector<XmlNode> children;
    XmlPosition position; ///< where it was read
};
