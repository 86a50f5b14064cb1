#include <mirel_fitting/numerics/NumberText.h>

#include <charconv>
#include <cmath>

namespace {

constexpr std::size_t longest = 32; // "-2.2250738585072014e-308" has 24

} // namespace

std::string NumberText::shortest(double value)
{
    char text[longest];
    const std::to_chars_result end = std::to_chars(text, text + longest, value);
    return {text, end.ptr};
}

std::string NumberText::rounded(double value, int digits)
{
    char text[longest];
    const std::to_chars_result end =
        std::to_chars(text, text + longest, value, std::chars_format::general, digits);
    return {text, end.ptr};
}

std::string NumberText::percent(double share)
{
    return std::to_string(std::lround(100.0 * share)) + " %";
}
