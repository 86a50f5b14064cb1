#include "session/text/NumberText.h"

#include <array>
#include <charconv>
#include <cmath>

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

std::string shownNumber(double number, int digits)
{
    if (!std::isfinite(number)) {
        return "-";
    }
    std::array<char, 32> buffer;
    const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                       std::chars_format::general, digits);
    return std::string(buffer.data(), written.ptr);
}

std::string shownFigure(double number)
{
    constexpr int digits = 4;
    constexpr double firstWhole = 1e4; // with four digits it would get an exponent
    constexpr double firstLong = 1e7;
    const double size = std::abs(number);
    return size >= firstWhole && size < firstLong ? numberText(std::round(number))
                                                  : shownNumber(number, digits);
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
