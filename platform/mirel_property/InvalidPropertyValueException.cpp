#include <mirel_property/InvalidPropertyValueException.h>

namespace veska {

InvalidPropertyValueException::InvalidPropertyValueException(const std::string& message)
    : ExceptionBase(message)
{}

InvalidPropertyValueException::InvalidPropertyValueException(
    const InvalidPropertyValueException&) noexcept = default;
InvalidPropertyValueException&
InvalidPropertyValueException::operator=(const InvalidPropertyValueException&) noexcept = default;
InvalidPropertyValueException::~InvalidPropertyValueException() = default;

} // namespace veska
