#pragma once

#include <QFont>

/*
 * The font of all texts in pictures, by sizes in pixels of the picture.
 */
namespace PlotFont {
constexpr int tickSize = 12; ///< of captions and legends too
constexpr int textSize = 13;
constexpr int titleSize = 15;

/** In pixels of the picture, whatever it is drawn on. The second family has the widths of the
 *  first: texts keep their places in a viewer without the first. */
inline QFont ofSize(int pixels)
{
    QFont font(QStringLiteral("DejaVu Sans, Verdana, sans-serif"));
    font.setPixelSize(pixels);
    return font;
}
} // namespace PlotFont
