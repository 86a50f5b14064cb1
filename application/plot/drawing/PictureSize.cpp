#include "plot/drawing/PictureSize.h"

#include <session/text/QuotedText.h>
#include <session/text/SessionErrors.h>

#include <charconv>

namespace {
/** The number between the two ends; 0 if they hold anything else. */
int pixels(const char* begin, const char* end)
{
    int number = 0;
    const auto read = std::from_chars(begin, end, number);
    return read.ec == std::errc() && read.ptr == end ? number : 0;
}

bool isAllowed(int pixels)
{
    return pixels >= PictureSize::minPixels && pixels <= PictureSize::maxPixels;
}
} // namespace

PictureSize PictureSize::parse(const std::string& text)
{
    PictureSize size;
    const std::size_t cross = text.find('x');
    if (cross != std::string::npos) {
        size.width = pixels(text.data(), text.data() + cross);
        size.height = pixels(text.data() + cross + 1, text.data() + text.size());
    }
    if (cross == std::string::npos || !isAllowed(size.width) || !isAllowed(size.height)) {
        throw UsageError(
            "The size of a picture needs width and height in pixels such as 800x600, each from " +
            std::to_string(minPixels) + " to " + std::to_string(maxPixels) + ", not " +
            quotedText(text) + '.');
    }
    return size;
}
