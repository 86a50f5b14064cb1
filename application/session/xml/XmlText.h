#pragma once

#include <session/xml/XmlFault.h>
#include <session/xml/XmlNode.h>

#include <surrogate_session/Export.h>

#include <string>
#include <string_view>

/** Deepest nesting of elements that is accepted, so that functions may recurse over a document. */
constexpr std::size_t maxXmlNesting = 200;

/** More attributes of one element are refused: the parser compares their names in pairs, a time
 * that grows with the square of their number. */
constexpr std::size_t maxXmlAttributes = 200;

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
 * @param root its names are XML names, its comments and instructions such as readXml() delivers.
 * @throw XmlFault without a place for texts that XML cannot carry (control characters, U+FFFE,
 * bytes that are no UTF-8) and for elements nested too deep.
 */
SURROGATE_SESSION_EXPORT std::string writeXml(const XmlNode& root);
