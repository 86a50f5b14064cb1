#include "plot/drawing/PointLabels.h"

#include "plot/drawing/PlotColours.h"

#include <QFontMetricsF>
#include <QPainter>
#include <qwt_scale_map.h>

#include <array>
#include <utility>

namespace {
// In pixels.
constexpr double distance = 6.0; ///< of a text from its point: the radius of a symbol and a gap
constexpr double radius = 4.0;   ///< of a symbol
constexpr double padding = 2.0;  ///< of a box around its text
} // namespace

PointLabels::PointLabels(std::vector<Label> wanted, const QPolygonF& drawn, const QFont& font,
                         bool hasBoxes)
    : labels(std::move(wanted)), points(drawn), font(font), hasBoxes(hasBoxes)
{}

std::vector<QRectF> PointLabels::places(const QwtScaleMap& xMap, const QwtScaleMap& yMap,
                                        const QRectF& canvas) const
{
    // Beside the point is read most easily, then above and below, then across.
    constexpr std::array<std::array<int, 2>, 8> sides = {
        {{1, 0}, {-1, 0}, {0, -1}, {0, 1}, {1, -1}, {-1, -1}, {1, 1}, {-1, 1}}};
    constexpr double beyondBorder = 100.0; // no number of covered points makes up for it
    constexpr double overLabel = 20.0;
    std::vector<QRectF> taken;
    for (const Label& label : labels) {
        QSizeF size = QFontMetricsF(font).size(Qt::TextSingleLine, label.text);
        size += QSizeF(2.0 * padding, 0.0);
        const QPointF point = QwtScaleMap::transform(xMap, yMap, label.point);
        QRectF best;
        double leastCost = 0.0;
        for (const auto& [across, down] : sides) {
            const double reach = across != 0 && down != 0 ? 0.7 * distance : distance;
            QRectF place(QPointF(), size);
            place.moveCenter(point + QPointF(across * (reach + 0.5 * size.width()),
                                             down * (reach + 0.5 * size.height())));
            double cost = canvas.contains(place) ? 0.0 : beyondBorder;
            for (const QRectF& other : taken) {
                cost += other.intersects(place) ? overLabel : 0.0;
            }
            const QRectF near = place.adjusted(-radius, -radius, radius, radius);
            for (const QPointF& each : points) {
                cost += near.contains(QwtScaleMap::transform(xMap, yMap, each)) ? 1.0 : 0.0;
            }
            if (best.isNull() || cost < leastCost) {
                best = place;
                leastCost = cost;
            }
        }
        taken.push_back(best);
    }
    return taken;
}

void PointLabels::draw(QPainter* painter, const QwtScaleMap& xMap, const QwtScaleMap& yMap,
                       const QRectF& canvas) const
{
    painter->save();
    painter->setFont(font);
    const std::vector<QRectF> rooms = places(xMap, yMap, canvas);
    for (std::size_t i = 0; i < labels.size(); ++i) {
        if (hasBoxes) {
            painter->fillRect(rooms[i], Qt::white);
        }
        painter->setPen(PlotColours::text);
        painter->drawText(rooms[i], Qt::AlignCenter | Qt::TextSingleLine | Qt::TextDontClip,
                          labels[i].text);
    }
    painter->restore();
}
