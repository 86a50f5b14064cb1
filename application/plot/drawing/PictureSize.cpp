#include "plot/drawing/PictureSize.h"

#include <session/text/QuotedText.h>
#include <session/text/SessionErrors.h>

#include <regex>

namespace {
bool isAllowed(int pixels)
{
    return pixels >= PictureSize::minPixels && pixels <= PictureSize::maxPixels;
}
} // namespace

PictureSize PictureSize::parse(const std::string& text)
{
    PictureSize size;
    std::smatch numbers;
    const bool areNumbers = std::regex_match(text, numbers, std::regex("(\\d{1,9})x(\\d{1,9})"));
    if (areNumbers) {
        size = {std::stoi(numbers[1]), std::stoi(numbers[2])};
    }
    if (!areNumbers || !isAllowed(size.width) || !isAllowed(size.height)) {
        throw UsageError(
            "The size of a picture needs width and height in pixels such as 800x600, each from " +
            std::to_string(minPixels) + " to " + std::to_string(maxPixels) + ", not " +
            quotedText(text) + '.');
    }
    return size;
}
