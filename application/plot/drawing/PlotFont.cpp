#include "plot/drawing/PlotFont.h"

QFont PlotFont::ofSize(int pixels)
{
    QFont font(QStringLiteral("DejaVu Sans, Verdana, sans-serif"));
    font.setPixelSize(pixels);
    return font;
}
