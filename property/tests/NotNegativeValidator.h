#pragma once

#include <property/ValidatorInterface.h>

/** For tests: refuses negative numbers and counts how often it is asked. */
class NotNegativeValidator : public virtual veska::ValidatorInterface<int>
{
public:
    veska::ValidationResult validate(const int& value) const override
    {
        ++calls;
        return value < 0 ? veska::ValidationResult("must not be negative")
                         : veska::ValidationResult();
    }

    mutable int calls = 0;
};
