#include "session/xml/XmlFault.h"

XmlFault::XmlFault(const XmlPosition& position, const std::string& message)
    : ExceptionBase(message), place(position)
{}

XmlFault::~XmlFault() = default;

const XmlPosition& XmlFault::position() const
{
    return place;
}
