#pragma once

#include <plot/data/PictureData.h>
#include <plot/drawing/PictureSize.h>

#include <surrogate_plot/Export.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

/**
 * One or more panels, drawn by PlotWidget side by side in about as many rows as columns; effects
 * are many small panels under one title, below each other. Needs a QApplication
 * (DrawingApplication) and a font.
 *
 * The same data give the same bytes on the same machine. Texts stay texts in SVG and PDF. Only text
 * and shapes are drawn, on white.
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

    /** @param panels one at least.
     *  @param size   of each panel; none: PictureSize(), less for each effect, and as high as the
     *                terms of coefficients need. */
    explicit Picture(std::vector<PictureData> panels, std::optional<PictureSize> size = {});
    ~Picture();

    /** A document of its own. */
    std::string toSvg() const;

    /** The svg element alone, for an HTML document: without identifiers, which could clash with
     * those of another one, and shrinking to the width it has. */
    std::string toInlineSvg() const;

    /** One pixel is 1/96 inch. @throw FileError if there is not enough memory for so many. */
    std::string toPng() const;

    /** One page of the size of the picture, its fonts embedded. */
    std::string toPdf() const;

    /** Writes the file whole or not at all, in the format that its name ends with.
     *  @throw UsageError as formatOf(); FileError */
    void write(const std::string& path) const;

    /** By the ending of the name, upper or lower case.
     *  @throw UsageError for another ending, naming the known ones. */
    static Format formatOf(const std::string& path);

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
