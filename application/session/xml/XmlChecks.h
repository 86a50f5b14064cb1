#pragma once

#include <session/text/QuotedText.h>
#include <session/text/Word.h>
#include <session/xml/XmlFault.h>
#include <session/xml/XmlNode.h>

#include <array>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <vector>

/** Strict reading of elements: what is missing, faulty or not known is an XmlFault at the element,
 *  with a sentence that says what to do. */
namespace XmlChecks {
[[noreturn]] void refuse(const XmlNode& element, const std::string& message);

/** A child that this version does not know. */
[[noreturn]] void refuseElement(const XmlNode& element, const XmlNode& parent);

/** An element may hold no others. */
void refuseElements(const XmlNode& element);

/** An element may hold these attributes. */
void allowAttributes(const XmlNode& element, std::initializer_list<const char*> known);

/** An element may hold these attributes and nothing else. */
void allowOnlyAttributes(const XmlNode& element, std::initializer_list<const char*> known);

/** An element may hold no text but blanks. */
void refuseText(const XmlNode& element);

/** The elements of a list, all of one name, with these attributes only. */
std::vector<const XmlNode*> entriesOf(const XmlNode& list, const std::string& tag,
                                      std::initializer_list<const char*> known);

/** "the attribute "Path" of the element "CaseFile"". */
std::string described(const XmlNode& element, const std::string& attribute);

const std::string& required(const XmlNode& element, const std::string& name);
/** Not empty. */
const std::string& requiredText(const XmlNode& element, const std::string& name);
/** Empty without the attribute, else as requiredText(). */
std::string optionalText(const XmlNode& element, const std::string& name);
std::size_t requiredNumber(const XmlNode& element, const std::string& name, std::size_t least,
                           std::size_t most);
double finiteNumber(const XmlNode& element, const std::string& name);

template <class Value, std::size_t count>
Value requiredWord(const XmlNode& element, const std::string& name,
                   const std::array<Word<Value>, count>& words)
{
    const std::string& text = required(element, name);
    std::string allowed;
    for (std::size_t i = 0; i < count; ++i) {
        if (text == words[i].text) {
            return words[i].value;
        }
        allowed += (i == 0 ? "" : i + 1 == count ? " or " : ", ") + quotedText(words[i].text);
    }
    refuse(element,
           described(element, name) + " must be " + allowed + ", not " + quotedText(text) + '.');
}
} // namespace XmlChecks
