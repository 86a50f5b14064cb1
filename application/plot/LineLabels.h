#pragma once

#include <QPointF>
#include <QPolygonF>
#include <QRectF>
#include <QSizeF>

#include <optional>
#include <vector>

/** Where the label of a line stands: turned along it, in a gap of it. */
struct LineLabel
{
    QPointF centre;
    double degrees = 0.0;  ///< clockwise, from -90 to 90: never upside down
    double gapBegin = 0.0; ///< lengths along the line
    double gapEnd = 0.0;
};

/**
 * Finds room for labels on lines of a picture, in pixels: where the line is straight, inside the
 * picture, clear of other lines, of points and of labels placed before. A line without such a place
 * gets no label.
 */
class LineLabels
{
public:
    /** @param points to be kept clear of. */
    LineLabels(const QRectF& room, std::vector<QPolygonF> lines,
               const std::vector<QPointF>& points);

    /** For one of the lines, by its position. */
    std::optional<LineLabel> place(std::size_t line, const QSizeF& size);

    /** The line without the gap of its label. */
    static std::vector<QPolygonF> interrupted(const QPolygonF& line, const LineLabel& label);

private:
    bool isFree(const QRectF& box, std::size_t line) const;

    QRectF room;
    std::vector<QPolygonF> lines; ///< in small steps
    std::vector<QRectF> taken;
    std::vector<QPointF> points;
};
