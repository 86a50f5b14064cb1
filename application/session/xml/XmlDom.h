#pragma once

#include <session/xml/XmlNode.h>

class QDomDocument;
class QDomElement;

/** Makes the root of an empty document from an element; the answer is valid as long as the
 *  document. */
QDomElement makeDomRoot(QDomDocument& document, const XmlNode& element);

/** The way back. @throw XmlFault for a text that is no Unicode, and for an element that holds more
 *  than elements, texts and comments or is nested too deep. */
XmlNode nodeOf(const QDomElement& element);
