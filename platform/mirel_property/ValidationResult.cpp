#include <mirel_property/ValidationResult.h>

#include <utility>

namespace veska {

ValidationResult::ValidationResult() : accepted(true) {}

ValidationResult::ValidationResult(std::string errorText)
    : accepted(false), error(std::move(errorText))
{}

bool ValidationResult::isValid() const
{
    return accepted;
}

std::string ValidationResult::errorString() const
{
    return error;
}

} // namespace veska
