#pragma once

#include <QPointF>
#include <QPolygonF>
#include <QRectF>
#include <QSizeF>

#include <optional>
#include <vector>

/** The label of a line, rotated along it, in a gap of the line. */
struct LineLabel
{
    QPointF centre;
    double degrees = 0.0;  ///< clockwise, from -90 to 90: never upside down
    double gapBegin = 0.0; ///< lengths along the line
    double gapEnd = 0.0;
};

/**
 * Places labels on the lines of a picture, in pixels: where the line is straight, inside the
 * picture, and not over other lines, points or labels placed before. A line without such a place
 * gets no label.
 */
class LineLabels
{
public:
    /** @param points must not be covered. */
    LineLabels(const QRectF& room, std::vector<QPolygonF> lines,
               const std::vector<QPointF>& points);

    /** @param line its position among the lines. */
    std::optional<LineLabel> place(std::size_t line, const QSizeF& size);

    /** The line without the gap of its label. */
    static std::vector<QPolygonF> interrupted(const QPolygonF& line, const LineLabel& label);

private:
    bool isFree(const QRectF& box, std::size_t line) const;

    QRectF room;
    std::vector<QPolygonF> lines; ///< with points at most a step apart
    std::vector<QRectF> taken;
    std::vector<QPointF> points;
};
