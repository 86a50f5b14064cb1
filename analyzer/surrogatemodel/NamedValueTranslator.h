#pragma once

#include <boost/bimap.hpp>

#include <stdexcept>
#include <string>

/**
 * The values of an enumeration and the texts that stand for them in documents, one to one. Texts
 * are compared byte by byte.
 */
template <class E>
class NamedValueTranslator
{
public:
    // The virtual operations keep this order: it is the order of their slots.

    virtual ~NamedValueTranslator() = default;

    /**
     * Adds a pair; one that is held already changes nothing.
     * @throw std::invalid_argument if the value has another text or the text another value.
     */
    virtual void add(E value, const std::string& text)
    {
        const auto added = pairs.insert(typename Pairs::value_type(value, text));
        if (!added.second && (added.first->left != value || added.first->right != text)) {
            throw std::invalid_argument("The text \"" + text +
                                        "\" or its value is already part of another pair.");
        }
    }

    /** @throw std::out_of_range, with the text "bimap<>: invalid key", for a value not held. */
    virtual std::string toText(E value) const { return pairs.left.at(value); }

    /** @throw std::out_of_range, with the text "bimap<>: invalid key", for a text not held. */
    virtual E toValue(const std::string& text) const { return pairs.right.at(text); }

private:
    using Pairs = boost::bimap<E, std::string>;

    Pairs pairs;
};
