#pragma once

#include <mirel_serialization/Export.h>

#include <string>

class QDomDocument;
class QDomElement;

/**
 * Writes some settings as one XML element and reads them back. Inherited virtually, since an
 * object may get it from several of its interfaces.
 */
class MIREL_SERIALIZATION_EXPORT SerializerInterface
{
public:
    virtual ~SerializerInterface();

    /** The tag of the element. */
    virtual std::string name() const = 0;

    /** A new element of `document` named name(), which the caller inserts where it belongs. */
    virtual QDomElement serialize(QDomDocument& document) const = 0;

    /**
     * Sets what `element` holds. What it does not hold stays as it is.
     * @param element the element named name(), or the parent of it; neither is changed.
     */
    virtual void deserialize(QDomElement& element) const = 0;
};
