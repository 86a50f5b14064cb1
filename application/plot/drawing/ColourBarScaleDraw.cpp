#include "plot/drawing/ColourBarScaleDraw.h"

#include <QPainter>
#include <qwt_scale_map.h>

#include <utility>

namespace {
constexpr double distance = 14.0; ///< from the picture to the bar
constexpr double barWidth = 16.0;
} // namespace

ColourBarScaleDraw::ColourBarScaleDraw(ContourBands bands) : bands(std::move(bands)) {}

double ColourBarScaleDraw::extent(const QFont& font) const
{
    return distance + barWidth + NumberScaleDraw::extent(font);
}

void ColourBarScaleDraw::draw(QPainter* painter, const QPalette& palette) const
{
    drawBar(*painter);
    painter->save();
    painter->translate(distance + barWidth, 0.0);
    NumberScaleDraw::draw(painter, palette);
    painter->restore();
}

void ColourBarScaleDraw::drawBar(QPainter& painter) const
{
    painter.save();
    painter.setPen(Qt::NoPen);
    const double left = pos().x() + distance;
    double bottom = scaleMap().transform(bands.range().minValue());
    for (std::size_t band = 0; band <= bands.levels().size(); ++band) {
        const bool isLast = band == bands.levels().size();
        const double top =
            scaleMap().transform(isLast ? bands.range().maxValue() : bands.levels()[band]);
        painter.setBrush(bands.colour(band));
        painter.drawRect(QRectF(left, top, barWidth, bottom - top));
        bottom = top;
    }
    painter.restore();
}
