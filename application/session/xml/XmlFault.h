#pragma once

#include <session/xml/XmlNode.h>

#include <mirel_property/ExceptionBase.h>

#include <surrogate_session/Export.h>

#include <string>

/**
 * A fault of a document and its position. The message is a sentence that begins in lower case; the
 * caller puts the name of the file before it.
 */
class SURROGATE_SESSION_EXPORT XmlFault : public veska::ExceptionBase
{
public:
    XmlFault(const XmlPosition& position, const std::string& message);
    ~XmlFault() override;

    /** Line 0 if the fault has no position. */
    const XmlPosition& position() const;

private:
    XmlPosition place;
};
