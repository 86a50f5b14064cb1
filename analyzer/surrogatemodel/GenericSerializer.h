#pragma once

#include <mirel_serialization/Serializer.h>
#include <mirel_serialization/storableText.h>

#include <QDomDocument>

#include <cstddef>
#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

/** How values of type T are written as text, UTF-8. Specialise it for further types. */
template <class T>
struct SerializedText;

template <>
struct SerializedText<std::string>
{
    static std::string toText(const std::string& value) { return value; }
    static std::string toValue(const std::string& text) { return text; }
};

/**
 * An element that holds one value as its text, or one to three values as attributes. Values come
 * from getters when it is written and go to setters when it is read, in their order.
 *
 * XML readers drop a text of blanks only between the tags of an element; attributes keep it.
 */
template <class T>
class GenericSerializer : public Serializer
{
public:
    using Getter = std::function<T()>;
    using Setter = std::function<void(const T&)>;
    using Accessors = std::pair<Getter, Setter>;

    /**
     * One value.
     * @param name           the tag of the element, see Serializer.
     * @param attributeNames empty: the value is the text of the element; one name: it is that
     *                       attribute.
     * @throw std::invalid_argument for an empty function, more names, an empty name.
     */
    GenericSerializer(const std::string& name, Getter getter, Setter setter,
                      const std::vector<std::string>& attributeNames = {})
        : Serializer(name), values{{std::move(getter), std::move(setter)}},
          attributeNames(attributeNames)
    {
        check();
    }

    /**
     * One to three values, each an attribute.
     * @param attributeNames as many as there are values; none for a single value that is the text.
     * @throw std::invalid_argument for other numbers, an empty function, an empty or repeated name.
     */
    GenericSerializer(const std::string& name, const std::vector<Accessors>& values,
                      const std::vector<std::string>& attributeNames)
        : Serializer(name), values(values), attributeNames(attributeNames)
    {
        check();
    }

private:
    using Text = SerializedText<T>;

    static constexpr std::size_t mostValues = 3;

    void serializeSelf(QDomElement& element) const override
    {
        if (attributeNames.empty()) {
            const QString text = storableText(Text::toText(values.front().first()));
            element.appendChild(element.ownerDocument().createTextNode(text));
            return;
        }
        for (std::size_t i = 0; i < values.size(); ++i) {
            element.setAttribute(attribute(i), storableText(Text::toText(values[i].first())));
        }
    }

    /** An attribute that is absent leaves its value as it is. */
    void deserializeSelf(QDomElement& element) const override
    {
        if (attributeNames.empty()) {
            values.front().second(Text::toValue(element.text().toStdString()));
            return;
        }
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (element.hasAttribute(attribute(i))) {
                values[i].second(Text::toValue(element.attribute(attribute(i)).toStdString()));
            }
        }
    }

    QString attribute(std::size_t value) const
    {
        return QString::fromStdString(attributeNames[value]);
    }

    void check() const
    {
        if (values.empty() || values.size() > mostValues) {
            refuse("holds one to three values, but got " + std::to_string(values.size()));
        }
        const bool isText = values.size() == 1 && attributeNames.empty();
        if (!isText && attributeNames.size() != values.size()) {
            refuse("needs an attribute name for each of its values, but got " +
                   std::to_string(attributeNames.size()) + " for " + std::to_string(values.size()));
        }
        for (const Accessors& value : values) {
            if (!value.first || !value.second) {
                refuse("needs a getter and a setter for each value, but got an empty function");
            }
        }
        const std::set<std::string> distinct(attributeNames.begin(), attributeNames.end());
        if (distinct.size() != attributeNames.size() || distinct.count("") != 0) {
            refuse("needs attribute names that differ and are not empty");
        }
    }

    [[noreturn]] void refuse(const std::string& reason) const
    {
        throw std::invalid_argument("The element \"" + name() + "\" " + reason + ".");
    }

    std::vector<Accessors> values;
    std::vector<std::string> attributeNames;
};
