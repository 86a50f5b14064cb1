#pragma once

#include <mirel_serialization/Export.h>
#include <mirel_serialization/SerializerInterface.h>

#include <boost/smart_ptr/shared_ptr.hpp>

#include <memory>
#include <string>

/**
 * A serializer that is made of others, its sub-elements, and of content of its own, which
 * subclasses write and read by overriding the private operations below.
 *
 * The element holds the sub-elements in the order in which they were added, then the own content;
 * reading follows the same order, whatever the order in the document. Only direct children are
 * looked at, so that an element deeper in the document is never taken for one of these.
 *
 * A serializer outlives its running serialize() and deserialize(). Sub-elements may be added and
 * replaced meanwhile, by a listener for example: a running call continues with those it began with.
 * What a sub-element or a subclass throws passes; what was read before it stays set.
 */
class MIREL_SERIALIZATION_EXPORT Serializer : public virtual SerializerInterface
{
    // The virtual operations that this class adds stay the first of its declarations, in this
    // order: it is the order of their slots.

    /** Adds the own content to `element`, which is named name() and holds the sub-elements. Empty
     *  here. New nodes come from the owner document of `element`. */
    virtual void serializeSelf(QDomElement& element) const;

    /** Reads the own content of `element`, which is named name(). Empty here. */
    virtual void deserializeSelf(QDomElement& element) const;

public:
    /**
     * @param name the tag of the element: an ASCII letter or '_', then ASCII letters, digits, '_',
     *             '-' or '.'.
     * @throw std::invalid_argument for any other name: the document could not be read back.
     */
    explicit Serializer(const std::string& name);
    ~Serializer() override;

    Serializer(const Serializer&) = delete;
    Serializer& operator=(const Serializer&) = delete;

    std::string name() const override;

    /** A sub-element that answers a null element is left out. */
    QDomElement serialize(QDomDocument& document) const override;

    /**
     * Reads `element` if it is named name(), else its first direct child that is; without either
     * nothing happens, as for a null element. A sub-element is handed its own element, the first
     * direct child with its name, and is left alone when there is none.
     */
    void deserialize(QDomElement& element) const override;

    /**
     * The three below share ownership of `serializer`.
     * @throw std::invalid_argument for null, for this serializer itself, and for a name that is
     *        already held here, be it read only: both would read the same element.
     */
    void addSubElement(boost::shared_ptr<SerializerInterface> serializer);

    /** Read but never written: settings as documents of older versions hold them. */
    void addDeserializeOnlySubElement(boost::shared_ptr<SerializerInterface> serializer);

    /**
     * Puts `serializer` in place of the sub-element with its name: in the same position, and read
     * only if that one was.
     * @throw std::invalid_argument also if no sub-element has that name.
     */
    void replaceSubElement(boost::shared_ptr<SerializerInterface> serializer);

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
