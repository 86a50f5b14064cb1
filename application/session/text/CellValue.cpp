#include "session/text/CellValue.h"

#include "session/text/AsciiText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <system_error>

namespace {
const WordList errors = {"#n/a", "#div/0!", "#value!", "#num!", "#ref!", "#name?", "#null!"};
constexpr std::size_t longestMissing = 7; // bytes

bool isMissing(std::string_view text)
{
    static const WordList words = {"na", "n/a", "n.a.", "nan", "null",     "none",
                                   "?",  "-",   "--",   ".",   u8"\u2013", u8"\u2014"};
    if (text.size() > longestMissing) {
        return false;
    }
    const std::string lower = lowerCaseText(text);
    return isOneOf(lower, words) || isOneOf(lower, errors);
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

/** The length of the one of these texts that `text` begins with; 0 if there is none. */
std::size_t lengthOfBeginning(std::string_view text, WordList beginnings)
{
    const auto* const found =
        std::find_if(beginnings.begin(), beginnings.end(),
                     [&](std::string_view beginning) { return beginsWith(text, beginning); });
    return found == beginnings.end() ? 0 : found->size();
}

/** How many bytes of `text` at its beginning are the separator; 0 if it is another character. */
std::size_t separatorLength(std::string_view text, char separator)
{
    return separator == ' '    ? lengthOfBeginning(text, {" ", u8"\u00A0", u8"\u202F", u8"\u2009"})
           : separator == '\'' ? lengthOfBeginning(text, {"'", u8"\u2019"})
                               : lengthOfBeginning(text, {std::string_view(&separator, 1)});
}

/** The digits of a number without the separators between its groups of three, and what follows
 *  them; empty if the text does not begin with such groups, at least two. */
std::string withoutSeparators(std::string_view text, char separator, std::size_t& groups)
{
    constexpr std::size_t groupSize = 3;
    const auto digitsAt = [&](std::size_t position) {
        std::size_t count = 0;
        while (position + count < text.size() && isDigit(text[position + count])) {
            ++count;
        }
        return count;
    };
    std::string joined;
    std::size_t position = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
    joined = text.substr(0, position);
    std::size_t digits = digitsAt(position);
    if (digits == 0 || digits > groupSize) {
        return {};
    }
    for (groups = 1;; ++groups) {
        joined += text.substr(position, digits);
        position += digits;
        const std::size_t length = separatorLength(text.substr(position), separator);
        if (length == 0 || digitsAt(position + length) != groupSize) {
            break;
        }
        position += length;
        digits = groupSize;
    }
    return groups == 1 ? std::string() : joined.append(text.substr(position));
}

/** Whether asciiNumber() may make another number of it. */
bool mayNeedAscii(std::string_view text)
{
    bool hasDigit = false;
    bool hasOther = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isExponent = (text[i] == 'D' || text[i] == 'd') && i > 0 &&
                                (isDigit(text[i - 1]) || text[i - 1] == '.');
        hasDigit = hasDigit || isDigit(text[i]);
        hasOther = hasOther || isExponent || static_cast<unsigned char>(text[i]) >= 0x80;
    }
    return hasDigit && hasOther;
}

/** Characters that other programs write, as ASCII: signs of typesetting, Fortran's exponent;
 * without blanks and byte-order marks that are not ASCII at the ends. */
std::string asciiNumber(std::string_view text)
{
    std::string number;
    while (!text.empty()) {
        const std::size_t minus = lengthOfBeginning(text, {u8"\u2212", u8"\u2013"});
        const std::size_t blank = lengthOfBeginning(text, {u8"\u00A0", u8"\uFEFF", u8"\u200B"});
        if (minus > 0) {
            number += '-';
            text.remove_prefix(minus);
        } else if (blank > 0 && (number.empty() || text.size() == blank)) {
            text.remove_prefix(blank);
        } else {
            const bool isExponent = (text[0] == 'D' || text[0] == 'd') && !number.empty();
            number += isExponent ? 'e' : text[0];
            text.remove_prefix(1);
        }
    }
    return number;
}

/** Fortran has no room for the letter of exponents of three digits: "1.25+103". */
std::string withExponent(std::string number)
{
    constexpr std::size_t tail = 4; // the sign and its digits
    const std::size_t sign = number.size() - std::min(tail, number.size());
    const auto isDigitAt = [&](std::size_t i) { return isDigit(number[i]); };
    if (sign > 1 && (number[sign] == '+' || number[sign] == '-') && isDigitAt(sign + 1) &&
        isDigitAt(sign + 2) && isDigitAt(sign + 3) && number.find('.') < sign &&
        number.find_first_not_of("0123456789.", isDigitAt(0) ? 0 : 1) == sign) {
        number.insert(sign, 1, 'e');
    }
    return number;
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

/** Reads what neither is a number as the C locale writes it nor has a decimal comma. */
bool readUnusual(std::string_view text, bool decimalComma, char thousands, CellValue& value)
{
    const auto isSimple = [&](const std::string& ascii) {
        const CellValue simple = CellValue::read(ascii, decimalComma);
        value = simple.kind == CellValue::Number ? simple : value;
        return simple.kind == CellValue::Number;
    };
    std::size_t groups = 0;
    const std::string joined =
        thousands == '\0' ? std::string() : withoutSeparators(text, thousands, groups);
    if (!joined.empty() && isSimple(joined)) {
        return true;
    }
    const std::string ascii =
        withExponent(mayNeedAscii(text) ? asciiNumber(text) : std::string(text));
    return ascii != text && isSimple(ascii);
}
} // namespace

char CellValue::thousandsSeparator(std::string_view text, DecimalMark& decimalMark)
{
    text = trimmedText(text);
    decimalMark = NoMark;
    for (const char separator : {',', '.', ' ', '\'', '_'}) {
        std::size_t groups = 0;
        const std::string joined = withoutSeparators(text, separator, groups);
        if (joined.empty()) {
            continue;
        }
        const CellValue value = read(joined, separator != ',');
        const bool hasPoint = joined.find('.') != std::string::npos;
        const bool hasComma = joined.find(',') != std::string::npos;
        const bool isOwn = (separator == ',' && hasComma) || (separator == '.' && hasPoint);
        if (value.kind != Number || isOwn) {
            continue;
        }
        decimalMark = hasPoint ? Point : hasComma ? Comma : NoMark;
        const bool isMark = separator == ',' || separator == '.';
        // "1,234" may be a decimal fraction.
        return isMark && groups == 2 && decimalMark == NoMark ? '\0' : separator;
    }
    return '\0';
}

bool CellValue::beginsWithError(std::string_view text)
{
    const std::string beginning = lowerCaseText(text.substr(0, longestMissing));
    return std::any_of(errors.begin(), errors.end(),
                       [&](std::string_view error) { return beginsWith(beginning, error); });
}

CellValue CellValue::read(std::string_view text, bool decimalComma, char thousands)
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
        } else if (decimalComma && text.find('.') != std::string_view::npos &&
                   !(thousands == '.' && readUnusual(text, decimalComma, thousands, value))) {
            value.mark = Point;
        }
        return value;
    }

    const std::size_t comma = decimalComma ? text.find(',') : std::string_view::npos;
    if (comma != std::string_view::npos && readDecimalComma(text, comma, value.number)) {
        value.mark = Comma;
        return value;
    }
    if (isMissing(text)) {
        value = CellValue();
    } else if (!readUnusual(text, decimalComma, thousands, value)) {
        value.kind = Text;
        value.number = 0.0;
    }
    return value;
}
