#include <mirel_property/ExceptionBase.h>

#include <utility>

namespace veska {

ExceptionBase::ExceptionBase(std::string text)
    : message(std::make_shared<const std::string>(std::move(text)))
{}

// Copies, not moves: a moved-from exception would have no text to show.
ExceptionBase::ExceptionBase(const ExceptionBase&) noexcept = default;
ExceptionBase& ExceptionBase::operator=(const ExceptionBase&) noexcept = default;
ExceptionBase::~ExceptionBase() = default;

const char* ExceptionBase::what() const noexcept
{
    return message->c_str();
}

} // namespace veska
