#include "session/xml/XmlFault.h"

XmlFault::XmlFault(const XmlPosition& position, const std::string& message)
    : ExceptionBase(message), place(position)
{}

// The destructor stands here so that the type information exists once, in this library.
XmlFault::~XmlFault() = default;

const XmlPosition& XmlFault::position() const
{
    return place;
}
