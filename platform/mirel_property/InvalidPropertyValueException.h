#pragma once

#include <mirel_property/ExceptionBase.h>

namespace veska {

/** A property's validator refused a value; the message is the validator's, the value is kept. */
class MIREL_PROPERTY_EXPORT InvalidPropertyValueException : public ExceptionBase
{
public:
    /** @param message why the value is refused, for the user, in UTF-8. */
    explicit InvalidPropertyValueException(const std::string& message);
    ~InvalidPropertyValueException() override;

    InvalidPropertyValueException(
        const InvalidPropertyValueException&) noexcept; ///< shares the text
    InvalidPropertyValueException&
    operator=(const InvalidPropertyValueException&) noexcept; ///< shares the text
};

} // namespace veska
