#pragma once

#include <mirel_property/ValidationResult.h>

namespace veska {

/** Decides whether a property may take a candidate value. */
template <class T>
class ValidatorInterface
{
public:
    /** Accepted, or refused with a text for the user. */
    virtual ValidationResult validate(const T& value) const = 0;

    virtual ~ValidatorInterface() = default;
};

} // namespace veska
