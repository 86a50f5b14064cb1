#pragma once

#include <plot/PictureData.h>

#include <optional>
#include <string>

/** A sweep of a page, or why it cannot be drawn: the others can all the same. */
struct ReportSweep
{
    std::optional<PictureData> picture;
    std::string reason; ///< for the user; empty beside a picture
};
