#pragma once

#include <surrogatemodel/Export.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <mirel_serialization/Serializer.h>
#include <property/PropertyAbstract.h>

#include <boost/shared_ptr.hpp>

#include <memory>

/**
 * A collection of distribution texts as an element
 * "SurrogateModelUserDefinedVariableDistribution", with one child for each variable, in ascending
 * byte order of the names:
 *
 *     <Variable Mode="UserDefined" Distribution="0 - 1 : 3" Name="x"/>    or Mode="Auto"
 *
 * Texts are written unchanged, faulty ones too. Names that the open project does not have are left
 * out.
 *
 * Reading sets the property at most once, at the end: entries that the element does not mention
 * stay, of several children for one name the last valid one counts, and a tag other than "Variable"
 * is read like it. A child without "Mode" means UserDefined. Any other mode ends the read with
 * std::out_of_range, with the text "bimap<>: invalid key", and leaves the property as it was; so
 * does one for a variable that the project does not have, since the mode is read first. A child
 * without "Name", or for an unknown variable, is skipped.
 *
 * A text with a fault (the empty one is one) is skipped as well and the former entry stays; the
 * user is warned, once for each such child, by a modal message box if the program has a
 * QApplication, else by the same text on standard error. The box runs an event loop within
 * deserialize(): this serializer must outlive it; the property is kept alive.
 */
class SURROGATEMODEL_EXPORT SurrogateModelUserDistCollectionSerializer : public Serializer
{
public:
    /** What the element is written from and read into. */
    using CollectionProperty = veska::PropertyAbstract<SurrogateModelUserDistCollection>;

    /**
     * @param property shared from now on.
     * @throw std::invalid_argument if `property` is null.
     */
    explicit SurrogateModelUserDistCollectionSerializer(
        boost::shared_ptr<CollectionProperty> property);
    ~SurrogateModelUserDistCollectionSerializer() override;

private:
    void serializeSelf(QDomElement& block) const override;
    void deserializeSelf(QDomElement& block) const override;

    class Impl;
    std::unique_ptr<Impl> impl;
};
