#pragma once

#include <property/ValidatorInterface.h>

namespace veska {

/** Accepts every value. */
template <class T>
class AllowAnyValueValidator : public virtual ValidatorInterface<T>
{
public:
    ValidationResult validate(const T&) const override { return ValidationResult(); }
};

} // namespace veska
