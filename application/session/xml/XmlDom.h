#pragma once

#include <session/xml/XmlNode.h>

class QDomDocument;
class QDomElement;

/** Makes the root of an empty document from the elements and texts of an element, which are what
 *  serializers read; the answer is valid as long as the document. */
QDomElement makeDomRoot(QDomDocument& document, const XmlNode& element);

/** The way back, of elements and texts that serializers have written.
 *  @throw XmlFault for a text with half of a surrogate pair. */
XmlNode nodeOf(const QDomElement& element);
