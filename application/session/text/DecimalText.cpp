#include "session/text/DecimalText.h"

#include <mirel_fitting/numerics/NumberText.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace {
/** Whole numbers below it are written in full: "1e+06" is shorter, but harder to read. */
constexpr double firstWithExponent = 1e15;
} // namespace

void appendNumber(std::string& text, double number)
{
    // The longest shortest text has 24 characters (-2.2250738585072014e-308).
    std::array<char, 32> buffer;
    const bool whole = std::abs(number) < firstWithExponent && number == std::trunc(number);
    const auto written = whole
                             ? std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                             std::chars_format::fixed)
                             : std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
    text.append(buffer.data(), written.ptr);
}

std::string numberText(double number)
{
    std::string text;
    appendNumber(text, number);
    return text;
}

double nearbyDecimal(double number, double scale)
{
    constexpr int digits = 15;
    constexpr int maxDecimals = 300;
    if (scale == 0.0 || !std::isfinite(scale)) {
        return number;
    }
    const int decimals = digits - 1 - static_cast<int>(std::floor(std::log10(std::abs(scale))));
    std::array<char, 400> text; // a sign, 309 digits before the point or `maxDecimals` behind it
    double decimal = number;
    if (decimals >= 0 && decimals <= maxDecimals) {
        const auto written = std::to_chars(text.data(), text.data() + text.size(), number,
                                           std::chars_format::fixed, decimals);
        std::from_chars(text.data(), written.ptr, decimal);
    }
    const double tolerance = 4.0 * std::numeric_limits<double>::epsilon() * std::abs(scale);
    return std::abs(decimal - number) <= tolerance ? decimal : number;
}

std::string shownNumber(double number, int digits)
{
    return std::isfinite(number) ? NumberText::rounded(number, digits) : "-";
}

std::string shownFigure(double number)
{
    constexpr int digits = 4;
    constexpr double firstLong = 1e7;
    const std::string shown = shownNumber(number, digits);
    if (std::abs(number) >= firstLong || shown.find('e') == std::string::npos ||
        std::abs(number) < 1.0) {
        return shown;
    }
    double rounded = 0.0; // "1.235e+04" is harder to read than 12350
    std::from_chars(shown.data(), shown.data() + shown.size(), rounded);
    return numberText(rounded);
}

std::string shownProbability(double probability)
{
    constexpr double smallest = 0.0001;
    return probability < smallest ? "< 0.0001" : shownFigure(probability);
}

std::string probabilityText(double probability)
{
    const std::string shown = shownProbability(probability);
    return shown[0] == '<' ? "p " + shown : "p = " + shown;
}
