#pragma once

#include <mirel_property/Export.h>

#include <string>

namespace veska {

/** What a validator says of a candidate value: accepted, or refused with a text for the user. */
class MIREL_PROPERTY_EXPORT ValidationResult
{
public:
    /** Accepted. */
    ValidationResult();

    /** Refused because of `error`, also when that text is empty. */
    explicit ValidationResult(std::string error);

    /** Whether the value was accepted. */
    bool isValid() const;

    /** Why the value was refused; empty for an accepted one. */
    std::string errorString() const;

private:
    bool accepted;
    std::string error;
};

} // namespace veska
