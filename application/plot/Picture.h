#pragma once

#include <plot/PictureData.h>
#include <plot/PictureSize.h>

#include <surrogate_plot/Export.h>

#include <memory>
#include <string>
#include <vector>

/**
 * A file's worth of panels, drawn by PlotWidget: one, or several side by side in as many rows as
 * make the whole about square. All need a QApplication (DrawingApplication) and a font.
 *
 * The same data give the same bytes on the same machine. Texts stay texts in SVG and PDF. What is
 * drawn is text and shapes only, on white.
 */
class SURROGATE_PLOT_EXPORT Picture
{
public:
    enum Format
    {
        Svg,
        Png,
        Pdf
    };

    /** @param panels one at least. @param size of each panel. */
    explicit Picture(std::vector<PictureData> panels, PictureSize size = {});
    ~Picture();
    Picture(Picture&&) noexcept;

    /** A document of its own. */
    std::string toSvg() const;

    /** The svg element alone, to stand in an HTML document: it has no identifiers that could meet
     *  those of another one, and shrinks with the room it has. */
    std::string toInlineSvg() const;

    /** One pixel is 1/96 inch. @throw FileError if there is not enough memory for so many. */
    std::string toPng() const;

    /** One page of the size of the picture, its fonts embedded. */
    std::string toPdf() const;

    /** Writes the file whole or not at all, in the format that its name ends with.
     *  @throw UsageError as formatOf(); FileError */
    void write(const std::string& path) const;

    /** By the ending of the name, in any case of its letters.
     *  @throw UsageError for another ending, naming those that there are. */
    static Format formatOf(const std::string& path);

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
