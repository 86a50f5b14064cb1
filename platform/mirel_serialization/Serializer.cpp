#include <mirel_serialization/Serializer.h>

#include <QDomDocument>

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

bool isLetter(char character)
{
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
           character == '_';
}

bool isLaterCharacter(char character)
{
    return isLetter(character) || (character >= '0' && character <= '9') || character == '-' ||
           character == '.';
}

bool isElementName(const std::string& name)
{
    return !name.empty() && isLetter(name.front()) &&
           std::all_of(name.begin() + 1, name.end(), isLaterCharacter);
}

} // namespace

class MIREL_SERIALIZATION_NO_EXPORT Serializer::Impl
{
public:
    struct SubElement
    {
        boost::shared_ptr<SerializerInterface> serializer;
        bool isWritten;
    };

    explicit Impl(const std::string& name) : nameText(name) {}

    void add(const Serializer& owner, SubElement added)
    {
        check(owner, added.serializer);
        const std::string name = added.serializer->name();
        if (find(name) != subElements.end()) {
            throw std::invalid_argument("The element \"" + nameText +
                                        "\" already has a sub-element named \"" + name + "\".");
        }
        subElements.push_back(std::move(added));
    }

    void replace(const Serializer& owner, boost::shared_ptr<SerializerInterface> serializer)
    {
        check(owner, serializer);
        const std::string name = serializer->name();
        const auto replaced = find(name);
        if (replaced == subElements.end()) {
            throw std::invalid_argument("The element \"" + nameText +
                                        "\" has no sub-element named \"" + name + "\" to replace.");
        }
        replaced->serializer = std::move(serializer);
    }

    const std::string nameText;
    std::vector<SubElement> subElements;

private:
    void check(const Serializer& owner,
               const boost::shared_ptr<SerializerInterface>& serializer) const
    {
        if (!serializer) {
            throw std::invalid_argument("A sub-element of \"" + nameText +
                                        "\" needs a serializer, but got a null pointer.");
        }
        if (serializer.get() == &owner) {
            throw std::invalid_argument("The element \"" + nameText +
                                        "\" cannot be a sub-element of itself.");
        }
    }

    std::vector<SubElement>::iterator find(const std::string& name)
    {
        return std::find_if(subElements.begin(), subElements.end(),
                            [&name](const SubElement& subElement) {
                                return subElement.serializer->name() == name;
                            });
    }
};

Serializer::Serializer(const std::string& name) : impl(std::make_unique<Impl>(name))
{
    if (!isElementName(name)) {
        throw std::invalid_argument("A serializer needs the name of an XML element, but got \"" +
                                    name + "\".");
    }
}

Serializer::~Serializer() = default;

void Serializer::serializeSelf(QDomElement&) const {}

void Serializer::deserializeSelf(QDomElement&) const {}

std::string Serializer::name() const
{
    return impl->nameText;
}

QDomElement Serializer::serialize(QDomDocument& document) const
{
    QDomElement element = document.createElement(QString::fromStdString(name()));
    // A copy, here and below: what a sub-element calls may add to the list.
    const std::vector<Impl::SubElement> subElements = impl->subElements;
    for (const Impl::SubElement& subElement : subElements) {
        if (!subElement.isWritten) {
            continue;
        }
        const QDomElement child = subElement.serializer->serialize(document);
        if (!child.isNull()) {
            element.appendChild(child);
        }
    }
    serializeSelf(element);
    return element;
}

void Serializer::deserialize(QDomElement& element) const
{
    const QString tag = QString::fromStdString(name());
    QDomElement own = element.tagName() == tag ? element : element.firstChildElement(tag);
    if (own.isNull()) {
        return;
    }
    const std::vector<Impl::SubElement> subElements = impl->subElements;
    for (const Impl::SubElement& subElement : subElements) {
        QDomElement child =
            own.firstChildElement(QString::fromStdString(subElement.serializer->name()));
        if (!child.isNull()) {
            subElement.serializer->deserialize(child);
        }
    }
    deserializeSelf(own);
}

void Serializer::addSubElement(boost::shared_ptr<SerializerInterface> serializer)
{
    impl->add(*this, {std::move(serializer), true});
}

void Serializer::addDeserializeOnlySubElement(boost::shared_ptr<SerializerInterface> serializer)
{
    impl->add(*this, {std::move(serializer), false});
}

void Serializer::replaceSubElement(boost::shared_ptr<SerializerInterface> serializer)
{
    impl->replace(*this, std::move(serializer));
}
