#pragma once

#include <session/xml/XmlNode.h>

#include <mirel_property/ExceptionBase.h>

#include <surrogate_session/Export.h>

#include <string>
#include <string_view>

/**
 * What is wrong with a document, as a sentence that begins in lower case, and where. Whoever knows
 * the file puts its name before it.
 */
class SURROGATE_SESSION_EXPORT XmlFault : public veska::ExceptionBase
{
public:
    XmlFault(const XmlPosition& position, const std::string& message);
    ~XmlFault() override;

    /** Line 0: nowhere in particular. */
    const XmlPosition& position() const;

private:
    XmlPosition place;
};

/** Elements are nested no deeper than this, so that whoever walks a document may recurse. */
constexpr std::size_t deepestXmlNesting = 200;

/** More attributes of one element than these are refused: checking that their names differ takes a
 *  time that grows with the square of their number. */
constexpr std::size_t mostXmlAttributes = 200;

/** Whether the bytes are UTF-8 of characters that an XML 1.0 document can carry. */
SURROGATE_SESSION_EXPORT bool isXmlText(std::string_view bytes);

/**
 * Reads a document: UTF-8, well-formed to its last byte, without a document type declaration, and
 * within the bounds above. Blanks between elements are layout and left out; comments and processing
 * instructions are kept inside the root and left out around it.
 * @return the root element.
 * @throw XmlFault with line and column for everything else.
 */
SURROGATE_SESSION_EXPORT XmlNode readXml(std::string_view bytes);

/**
 * Writes a document that readXml() reads back as the same: UTF-8, indented, a newline at the end.
 * The same elements give the same bytes in every process.
 * @throw XmlFault without a place for what XML cannot carry: control characters, U+FFFE, bytes that
 *        are no UTF-8, names that are none.
 */
SURROGATE_SESSION_EXPORT std::string writeXml(const XmlNode& root);
