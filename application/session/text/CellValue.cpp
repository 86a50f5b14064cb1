#include "session/text/CellValue.h"

#include "session/text/TrimmedText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <system_error>

namespace {
bool equalsLowerCase(std::string_view text, std::string_view lowerCase)
{
    const auto same = [](char left, char right) {
        return (left >= 'A' && left <= 'Z' ? static_cast<char>(left - 'A' + 'a') : left) == right;
    };
    return std::equal(text.begin(), text.end(), lowerCase.begin(), lowerCase.end(), same);
}

bool isMissing(std::string_view text)
{
    constexpr std::array<std::string_view, 17> words = {
        "na", "n/a",  "n.a.",    "nan",     "null",  "none",  "?",      "-",     "--",
        ".",  "#n/a", "#div/0!", "#value!", "#num!", "#ref!", "#name?", "#null!"};
    return std::any_of(words.begin(), words.end(),
                       [&](std::string_view word) { return equalsLowerCase(text, word); });
}

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

/**
 * The value of a number outside the range of a double: infinity or 0, which std::from_chars does
 * not distinguish. The decimal exponent of the first digit that is not 0 decides; an exponent that
 * does not fit an int outweighs any number of digits that a cell can hold.
 */
double outOfRangeValue(std::string_view text)
{
    const bool negative = text.front() == '-';
    const std::size_t exponentAt = std::min(text.find_first_of("eE"), text.size());
    const std::size_t pointAt = std::min(text.find('.'), exponentAt);
    const std::size_t firstDigitAt = text.find_first_of("123456789");

    long long exponent = 0;
    if (exponentAt < text.size()) {
        std::string_view digits = text.substr(exponentAt + 1);
        digits.remove_prefix(digits.front() == '+' ? 1 : 0);
        const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
        if (read.ec == std::errc::result_out_of_range) {
            exponent = digits.front() == '-' ? std::numeric_limits<int>::min()
                                             : std::numeric_limits<int>::max();
        }
    }
    exponent += static_cast<long long>(pointAt) - static_cast<long long>(firstDigitAt);

    const double magnitude = exponent > 0 ? std::numeric_limits<double>::infinity() : 0.0;
    return negative ? -magnitude : magnitude;
}

/** Reads a number with a decimal point; answers how many characters belong to it. */
std::size_t readNumber(std::string_view text, double& number)
{
    // std::from_chars does not accept a plus sign.
    const bool plus = text.size() > 1 && text[0] == '+' && text[1] != '-' && text[1] != '+';
    const std::string_view unsignedText = text.substr(plus ? 1 : 0);
    const auto read =
        std::from_chars(unsignedText.data(), unsignedText.data() + unsignedText.size(), number);
    const std::size_t used = static_cast<std::size_t>(read.ptr - text.data());
    if (read.ec == std::errc::invalid_argument) {
        return 0;
    }
    if (read.ec == std::errc::result_out_of_range) {
        number = outOfRangeValue(unsignedText.substr(0, used - (plus ? 1 : 0)));
    }
    return used;
}

/** Reads "1,5" as 1.5; a second mark makes it a text: 1.234,5 and 1,234,567 are no numbers. */
bool readDecimalComma(std::string_view text, std::size_t comma, double& number)
{
    const bool digitBeside = (comma > 0 && isDigit(text[comma - 1])) ||
                             (comma + 1 < text.size() && isDigit(text[comma + 1]));
    if (!digitBeside || text.find_first_of(".,", comma + 1) != std::string_view::npos ||
        text.substr(0, comma).find('.') != std::string_view::npos) {
        return false;
    }
    std::string withPoint(text);
    withPoint[comma] = '.';
    return readNumber(withPoint, number) == withPoint.size();
}
} // namespace

CellValue CellValue::read(std::string_view text, bool decimalComma)
{
    CellValue value;
    text = trimmedText(text);
    if (text.empty()) {
        return value;
    }

    value.kind = Number;
    const std::size_t used = readNumber(text, value.number);
    if (used == text.size()) {
        if (std::isnan(value.number)) {
            // Also with a sign or a payload, "-nan" or "nan(ind)".
            value.kind = Missing;
        } else if (decimalComma && text.find('.') != std::string_view::npos) {
            value.mark = Point;
        }
        return value;
    }

    const std::size_t comma = decimalComma ? text.find(',') : std::string_view::npos;
    if (comma != std::string_view::npos && readDecimalComma(text, comma, value.number)) {
        value.mark = Comma;
        return value;
    }
    value.kind = isMissing(text) ? Missing : Text;
    value.number = 0.0;
    return value;
}
