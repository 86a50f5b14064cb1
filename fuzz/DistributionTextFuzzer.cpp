// A typed distribution text: either a fault with its message, or values that, typed again, are the
// same.
#include "FuzzCheck.h"

#include <surrogatemodel/SurrogateModelUserDist.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace {

std::string typed(const std::vector<double>& values)
{
    std::string text;
    for (const double value : values) {
        char number[40];
        std::snprintf(number, sizeof(number), "%s%.17g", text.empty() ? "" : " ,", value);
        text += number;
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    SurrogateModelUserDist distribution(std::string(bytes, bytes + size));
    // More are valid, too, and take seconds.
    if (distribution.valueCount() > 1000000) {
        return 0;
    }
    const std::vector<double> before = {3.0, 1.0};
    std::vector<double> values = before;
    distribution.get(values);

    const bool isValid = distribution.validate() == SurrogateModelUserDist::NoError;
    FUZZ_CHECK(distribution.isValid() == isValid);
    FUZZ_CHECK(distribution.errorString().empty() == isValid);
    if (!isValid) {
        FUZZ_CHECK(values == before);
        return 0;
    }
    FUZZ_CHECK(!values.empty());
    FUZZ_CHECK(values.size() <= distribution.valueCount());
    FUZZ_CHECK(
        std::all_of(values.begin(), values.end(), [](double v) { return std::isfinite(v); }));
    FUZZ_CHECK(std::adjacent_find(values.begin(), values.end(), std::greater_equal<>()) ==
               values.end());
    if (values.size() <= 1000) {
        std::vector<double> again;
        SurrogateModelUserDist(typed(values)).get(again);
        FUZZ_CHECK(again == values);
    }
    return 0;
}
