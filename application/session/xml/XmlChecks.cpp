#include "session/xml/XmlChecks.h"

#include "session/text/SessionErrors.h"
#include "session/text/WholeNumber.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

void XmlChecks::refuse(const XmlNode& element, const std::string& message)
{
    throw XmlFault(element.position, message);
}

std::string XmlChecks::described(const XmlNode& element, const std::string& attribute)
{
    return "the attribute " + quotedText(attribute) + " of the element " + quotedText(element.name);
}

void XmlChecks::allowAttributes(const XmlNode& element, std::initializer_list<const char*> known)
{
    for (const auto& attribute : element.attributes) {
        if (std::find(known.begin(), known.end(), attribute.first) == known.end()) {
            refuse(element, described(element, attribute.first) +
                                " is not known to this version; remove it, or open the document "
                                "with the program that wrote it.");
        }
    }
}

void XmlChecks::refuseText(const XmlNode& element)
{
    const std::string text = element.content();
    if (text.find_first_not_of(" \t\r\n") != std::string::npos) {
        refuse(element, "the element " + quotedText(element.name) + " holds the text " +
                            quotedText(text) + ", where there is none to be.");
    }
}

void XmlChecks::refuseElement(const XmlNode& element, const XmlNode& parent)
{
    refuse(element, "the element " + quotedText(element.name) + " inside " +
                        quotedText(parent.name) +
                        " is not known to this version; remove it, or open the document with the "
                        "program that wrote it.");
}

void XmlChecks::refuseElements(const XmlNode& element)
{
    for (const XmlNode* const inner : element.elements()) {
        refuseElement(*inner, element);
    }
}

void XmlChecks::allowOnlyAttributes(const XmlNode& element,
                                    std::initializer_list<const char*> known)
{
    allowAttributes(element, known);
    refuseText(element);
    refuseElements(element);
}

std::vector<const XmlNode*> XmlChecks::entriesOf(const XmlNode& list, const std::string& tag,
                                                 std::initializer_list<const char*> known)
{
    allowAttributes(list, {});
    refuseText(list);
    std::vector<const XmlNode*> entries = list.elements();
    for (const XmlNode* const entry : entries) {
        if (entry->name != tag) {
            refuseElement(*entry, list);
        }
        allowOnlyAttributes(*entry, known);
    }
    return entries;
}

const std::string& XmlChecks::required(const XmlNode& element, const std::string& name)
{
    const std::string* const value = element.attribute(name);
    if (value == nullptr) {
        refuse(element, "the element " + quotedText(element.name) + " lacks the attribute " +
                            quotedText(name) + '.');
    }
    return *value;
}

const std::string& XmlChecks::requiredText(const XmlNode& element, const std::string& name)
{
    const std::string& value = required(element, name);
    if (value.empty()) {
        refuse(element, described(element, name) + " must not be empty.");
    }
    return value;
}

std::string XmlChecks::optionalText(const XmlNode& element, const std::string& name)
{
    return element.attributes.count(name) > 0 ? requiredText(element, name) : std::string();
}

std::size_t XmlChecks::requiredNumber(const XmlNode& element, const std::string& name,
                                      std::size_t least, std::size_t most)
{
    const std::string& text = required(element, name);
    try {
        return readWholeNumber(name, text, least, most);
    } catch (const UsageError&) {
        refuse(element, described(element, name) + " needs a whole number from " +
                            std::to_string(least) + " to " + std::to_string(most) + ", not " +
                            quotedText(text) + '.');
    }
}

double XmlChecks::finiteNumber(const XmlNode& element, const std::string& name)
{
    const std::string& text = required(element, name);
    double number = 0.0;
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    if (read.ec != std::errc() || read.ptr != end || !std::isfinite(number)) {
        refuse(element, described(element, name) + " needs a finite number with a decimal point, " +
                            "not " + quotedText(text) + '.');
    }
    return number;
}
