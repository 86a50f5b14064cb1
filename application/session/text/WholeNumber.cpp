#include "session/text/WholeNumber.h"

#include "session/text/SessionErrors.h"

#include <charconv>
#include <system_error>

std::size_t readWholeNumber(const std::string& what, const std::string& text, std::size_t least,
                            std::size_t most)
{
    std::size_t number = 0;
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    if (read.ec != std::errc() || read.ptr != end || number < least || number > most) {
        throw UsageError(what + " needs a whole number from " + std::to_string(least) + " to " +
                         std::to_string(most) + ", not \"" + text + "\".");
    }
    return number;
}
