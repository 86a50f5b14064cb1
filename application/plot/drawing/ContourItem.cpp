#include "plot/drawing/ContourItem.h"

#include "plot/drawing/ContourLines.h"
#include "plot/drawing/LineLabels.h"
#include "plot/drawing/PlotColours.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <qwt_scale_map.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace {
/** On raster devices a pen of one pixel draws each segment by itself, with a dot at its ends. */
constexpr double lineThickness = 1.2;

/** From the units of the variables to pixels. */
QPolygonF onCanvas(const QPolygonF& line, const QwtScaleMap& xMap, const QwtScaleMap& yMap)
{
    QPolygonF pixels;
    pixels.reserve(line.size());
    for (const QPointF& point : line) {
        pixels.append(QwtScaleMap::transform(xMap, yMap, point));
    }
    return pixels;
}

void fill(QPainter& painter, const std::vector<QPolygonF>& outlines, const QColor& colour)
{
    QPainterPath path;
    path.setFillRule(Qt::OddEvenFill);
    for (const QPolygonF& outline : outlines) {
        path.addPolygon(outline);
        path.closeSubpath();
    }
    painter.fillPath(path, colour);
}

void drawText(QPainter& painter, const LineLabel& label, const QSizeF& size, const QString& text)
{
    painter.save();
    painter.translate(label.centre);
    painter.rotate(label.degrees);
    painter.drawText(QRectF(QPointF(-0.5 * size.width(), -0.5 * size.height()), size),
                     Qt::AlignCenter | Qt::TextSingleLine | Qt::TextDontClip, text);
    painter.restore();
}
} // namespace

ContourItem::ContourItem(const ContourPicture& picture, ContourBands wanted, const QFont& font)
    : bands(std::move(wanted)), font(font),
      corners(QVector<QPointF>{{picture.x.front(), picture.y.front()},
                               {picture.x.back(), picture.y.back()}})
{
    const auto scaled = [&](double value) {
        return bands.areLogarithmic() ? std::log(value) : value;
    };
    std::vector<double> values;
    std::transform(picture.values.begin(), picture.values.end(), std::back_inserter(values),
                   scaled);
    const ContourLines contours(picture.x, picture.y, values);
    for (const double level : bands.levels()) {
        levels.push_back(
            {contours.outlines(scaled(level)), contours.lines(scaled(level)), bands.label(level)});
    }
    for (std::size_t i = 0; i < picture.caseX.size(); ++i) {
        cases.append(QPointF(picture.caseX[i], picture.caseY[i]));
    }
}

void ContourItem::draw(QPainter* painter, const QwtScaleMap& xMap, const QwtScaleMap& yMap,
                       const QRectF&) const
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QRectF field = onCanvas(corners, xMap, yMap).boundingRect();
    painter->fillRect(field, bands.colour(0));
    std::vector<QPolygonF> lines;
    for (std::size_t i = 0; i < levels.size(); ++i) {
        std::vector<QPolygonF> outlines;
        for (const QPolygonF& outline : levels[i].outlines) {
            outlines.push_back(onCanvas(outline, xMap, yMap));
        }
        // Each band is painted over those below it: no gaps between them.
        fill(*painter, outlines, bands.colour(i + 1));
        for (const QPolygonF& line : levels[i].lines) {
            lines.push_back(onCanvas(line, xMap, yMap));
        }
    }

    const QPolygonF points = onCanvas(cases, xMap, yMap);
    LineLabels labels(field, lines, {points.begin(), points.end()});
    painter->setFont(font);
    std::size_t line = 0;
    for (std::size_t i = 0; i < levels.size(); ++i) {
        // Line and label lie on this band and the one below.
        painter->setPen(QPen(PlotColours::readableOn(bands.colour(i)), lineThickness, Qt::SolidLine,
                             Qt::FlatCap, Qt::RoundJoin));
        const QSizeF size = QFontMetricsF(font).size(Qt::TextSingleLine, levels[i].label);
        for (std::size_t part = 0; part < levels[i].lines.size(); ++part, ++line) {
            const std::optional<LineLabel> label = labels.place(line, size);
            if (!label) {
                painter->drawPolyline(lines[line]);
                continue;
            }
            for (const QPolygonF& rest : LineLabels::interrupted(lines[line], *label)) {
                painter->drawPolyline(rest);
            }
            drawText(*painter, *label, size, levels[i].label);
        }
    }
    painter->restore();
}
