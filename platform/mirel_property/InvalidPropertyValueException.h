#pragma once

#include <mirel_property/ExceptionBase.h>

namespace veska {

/** A property's validator refused a value; the message is the validator's, the value is kept. */
class MIREL_PROPERTY_EXPORT InvalidPropertyValueException : public ExceptionBase
{
public:
    explicit InvalidPropertyValueException(const std::string& message);
    ~InvalidPropertyValueException() override;

    InvalidPropertyValueException(const InvalidPropertyValueException&) noexcept;
    InvalidPropertyValueException& operator=(const InvalidPropertyValueException&) noexcept;
};

} // namespace veska
