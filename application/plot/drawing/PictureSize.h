#pragma once

#include <surrogate_plot/Export.h>

#include <string>

/** Width and height of one panel of a picture, in pixels of 1/96 inch. */
struct SURROGATE_PLOT_EXPORT PictureSize
{
    /** In smaller panels the texts leave no room for the data. */
    static constexpr int minPixels = 300;
    static constexpr int maxPixels = 10000;

    int width = 800;
    int height = 600;

    /** @param text such as 800x600. @throw UsageError */
    static PictureSize parse(const std::string& text);
};
