#include "session/report/TermName.h"

std::string termName(const std::vector<std::size_t>& factors,
                     const std::vector<std::string>& inputs)
{
    if (factors.empty()) {
        return "intercept";
    }
    const std::string& first = inputs.at(factors.front());
    if (factors.size() == 1) {
        return first;
    }
    return factors[0] == factors[1] ? first + "^2" : first + " * " + inputs.at(factors[1]);
}
