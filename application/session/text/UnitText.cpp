#include "session/text/UnitText.h"

#include "session/text/AsciiText.h"

#include <algorithm>
#include <cstddef>

namespace {
constexpr std::size_t maxUnitLength = 20;

/** Those that take prefixes. */
const WordList units = {"m", "g",  "s",   "A",   "K",  "mol", "cd",  "Hz", "N",  "Pa", "J",
                        "W", "C",  "V",   "F",   "S",  "Wb",  "T",   "H",  "lm", "lx", "l",
                        "L", "eV", "bar", "rad", "Nm", "ohm", u8"Ω", "Wh", "Ah"};

/** Those that do not. */
const WordList whole = {
    u8"‰", u8"°C", u8"°F", u8"°", "%",   "degC", "degF", "deg",  "min",  "h",       "hr",  "d",
    "in",  "ft",   "lb",   "lbs", "lbf", "psi",  "ksi",  "rpm",  "rev",  "ppm",     "ppb", "dB",
    "sec", "hp",   "PS",   "mph", "t",   "sr",   "ha",   "inch", "mile", "gal",     "BTU", "HV",
    "atm", "Torr", "mmHg", "HRC", "kgf", "kip",  "year", "Watt", "Volt", "seconds", "a",   "Nmm"};

const WordList prefixes = {"T", "G",   "M",   "k", "h", "da", "d", "c", "m", "u",
                           "n", u8"µ", u8"μ", "p", "f", "P",  "E", "y", "z"};

bool isUnit(std::string_view name)
{
    return isOneOf(name, whole) || isOneOf(name, units) ||
           std::any_of(prefixes.begin(), prefixes.end(), [&](std::string_view prefix) {
               return beginsWith(name, prefix) && isOneOf(name.substr(prefix.size()), units);
           });
}

/** Besides names: digits and signs of powers, products, quotients, brackets, superscripts. */
bool isBetweenUnits(std::string_view text, std::size_t position, std::size_t& length)
{
    for (const std::string_view sign : WordList{u8"²", u8"³", u8"¹", u8"⁻", u8"·", u8"⋅"}) {
        if (beginsWith(text.substr(position), sign)) {
            length = sign.size();
            return true;
        }
    }
    length = 1;
    return std::string_view("0123456789*/^.-() ").find(text[position]) != std::string_view::npos;
}

bool hasBrackets(std::string_view text)
{
    return text.size() > 2 &&
           ((text.front() == '[' && text.back() == ']') ||
            (text.front() == '(' && text.back() == ')' && text.find(')') == text.size() - 1) ||
            (text.front() == '<' && text.back() == '>'));
}
} // namespace

bool isUnitText(std::string_view text)
{
    text = trimmedText(text);
    if (text.empty() || text.size() > maxUnitLength) {
        return false;
    }
    if (hasBrackets(text)) {
        return true;
    }
    bool hasUnit = false;
    for (std::size_t position = 0; position < text.size();) {
        std::size_t length = 0;
        if (isBetweenUnits(text, position, length)) {
            position += length;
            continue;
        }
        std::size_t end = position;
        while (end < text.size() && !isBetweenUnits(text, end, length)) {
            ++end;
        }
        if (!isUnit(text.substr(position, end - position))) {
            return false;
        }
        hasUnit = true;
        position = end;
    }
    return hasUnit;
}

std::pair<std::string, std::string_view> numberAndUnit(std::string_view text)
{
    constexpr std::size_t maxTextLength = 50;
    static const WordList currencies = {"$", u8"€", u8"£", u8"¥", "EUR", "USD", "CHF", "GBP"};
    text = trimmedText(text);
    for (const std::string_view mark : {std::string_view(plusMinus), std::string_view("+/-")}) {
        const std::size_t at = std::min(text.find(mark), text.size());
        const std::string_view number = trimmedText(text.substr(0, at));
        const std::string_view error =
            trimmedText(text.substr(std::min(at + mark.size(), text.size())));
        if (!number.empty() && isDigit(number.back()) && !error.empty() && isDigit(error.front())) {
            return {std::string(number), plusMinus};
        }
    }
    // "-$5" and, in accounts, "($5)".
    const bool isBracketed = text.size() > 2 && text.front() == '(' && text.back() == ')';
    const bool isNegative = isBracketed || text.substr(0, 1) == "-";
    std::string_view amount = text.substr(isNegative ? 1 : 0);
    amount.remove_suffix(isBracketed ? 1 : 0);
    for (const std::string_view currency : currencies) {
        if (beginsWith(amount, currency)) {
            return {(isNegative ? "-" : "") +
                        std::string(trimmedText(amount.substr(currency.size()))),
                    currency};
        }
    }
    std::size_t end = 0;
    for (std::size_t i = 0; i < std::min(text.size(), maxTextLength); ++i) {
        end = isDigit(text[i]) ? i + 1 : end;
        const bool isExponent = i > 0 && end == i && i + 1 < text.size() &&
                                std::string_view("eEdD").find(text[i]) < 4 &&
                                std::string_view("+-0123456789").find(text[i + 1]) < 12;
        if (isLetter(text[i]) && !isExponent) {
            break;
        }
    }
    // A digit that belongs to the unit follows a letter: m/s2, which ends the loop.
    std::string_view unit = text.substr(end);
    unit.remove_prefix(!unit.empty() && unit.front() == '.' ? 1 : 0);
    for (const std::string_view blank : {u8"\u00A0", u8"\u202F"}) {
        unit.remove_prefix(beginsWith(unit, blank) ? blank.size() : 0);
    }
    const std::string_view name = trimmedText(unit);
    const bool isLetterOfCode =
        name.size() == 1 && name.size() == unit.size() && isLetter(name.front());
    const bool isKnown = isUnitText(name) || isOneOf(name, currencies);
    return end > 0 && isKnown && !isLetterOfCode
               ? std::make_pair(std::string(text.substr(0, end)), name)
               : std::make_pair(std::string(text), std::string_view());
}

std::string nameWithUnit(const std::string& name, const std::string& unit)
{
    const bool isComplete = unit.empty() || name.find('(' + unit + ')') != std::string::npos ||
                            name.find('[' + unit + ']') != std::string::npos;
    return isComplete ? name : name + " (" + unit + ')';
}

std::string unitWithoutBrackets(std::string_view text)
{
    text = trimmedText(text);
    return std::string(hasBrackets(text) ? trimmedText(text.substr(1, text.size() - 2)) : text);
}
