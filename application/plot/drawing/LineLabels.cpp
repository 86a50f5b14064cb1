#include "plot/drawing/LineLabels.h"

#include <QLineF>
#include <QTransform>

#include <algorithm>
#include <cmath>

namespace {
// In pixels.
constexpr double stepLength = 4.0;     ///< between positions tried, and between points of a line
constexpr double clearance = 3.0;      ///< around a label
constexpr double pointClearance = 8.0; ///< around a point: the radius of its symbol and a gap

constexpr double minStraightness = 0.96; ///< chord over arc length of the gap

/** Lengths along a line up to each of its points. */
std::vector<double> lengthsOf(const QPolygonF& line)
{
    std::vector<double> lengths = {0.0};
    for (int i = 1; i < line.size(); ++i) {
        lengths.push_back(lengths.back() + QLineF(line[i - 1], line[i]).length());
    }
    return lengths;
}

QPointF pointAt(const QPolygonF& line, const std::vector<double>& lengths, double length)
{
    const auto after = std::upper_bound(lengths.begin() + 1, lengths.end() - 1, length);
    const auto i = static_cast<int>(after - lengths.begin());
    const double from = lengths[static_cast<std::size_t>(i) - 1];
    const double part = lengths[static_cast<std::size_t>(i)] - from;
    return part > 0.0 ? QLineF(line[i - 1], line[i]).pointAt((length - from) / part) : line[i];
}

/** Adds points, so that a box of a label's size which the line crosses contains one of them. */
QPolygonF inSmallSteps(const QPolygonF& line)
{
    QPolygonF fine;
    for (int i = 0; i < line.size(); ++i) {
        if (i > 0) {
            const QLineF part(line[i - 1], line[i]);
            const int steps = static_cast<int>(std::ceil(part.length() / stepLength));
            for (int step = 1; step < steps; ++step) {
                fine.append(part.pointAt(static_cast<double>(step) / steps));
            }
        }
        fine.append(line[i]);
    }
    return fine;
}

QRectF boxOf(const QPointF& centre, const QSizeF& size, double degrees)
{
    QTransform turn;
    turn.rotate(degrees);
    const QRectF box = turn.mapRect(
        QRectF(-0.5 * size.width(), -0.5 * size.height(), size.width(), size.height()));
    return box.translated(centre);
}
} // namespace

LineLabels::LineLabels(const QRectF& room, std::vector<QPolygonF> wanted,
                       const std::vector<QPointF>& points)
    : room(room), lines(std::move(wanted)), points(points)
{
    for (QPolygonF& line : lines) {
        line = inSmallSteps(line);
    }
}

bool LineLabels::isFree(const QRectF& box, std::size_t line) const
{
    const QRectF near = box.adjusted(-clearance, -clearance, clearance, clearance);
    const QRectF nearPoint =
        box.adjusted(-pointClearance, -pointClearance, pointClearance, pointClearance);
    if (!room.contains(near)) {
        return false;
    }
    if (std::any_of(taken.begin(), taken.end(),
                    [&](const QRectF& other) { return other.intersects(near); }) ||
        std::any_of(points.begin(), points.end(),
                    [&](const QPointF& point) { return nearPoint.contains(point); })) {
        return false;
    }
    const auto isInside = [&near](const QPointF& point) { return near.contains(point); };
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (i != line && std::any_of(lines[i].begin(), lines[i].end(), isInside)) {
            return false;
        }
    }
    return true;
}

std::optional<LineLabel> LineLabels::place(std::size_t which, const QSizeF& size)
{
    const QPolygonF& line = lines[which];
    if (line.size() < 2) {
        return {};
    }
    const std::vector<double> lengths = lengthsOf(line);
    const double total = lengths.back();
    const double gap = size.width() + 2.0 * clearance;

    std::optional<LineLabel> best;
    QRectF bestBox;
    double leastCost = 0.0;
    for (double begin = gap / 2.0; begin + 1.5 * gap <= total; begin += stepLength) {
        const QLineF chord(pointAt(line, lengths, begin), pointAt(line, lengths, begin + gap));
        const double straightness = chord.length() / gap;
        if (straightness < minStraightness) {
            continue;
        }
        // Readers expect the label in the middle of the line.
        const double cost =
            (1.0 - straightness) + 0.1 * std::abs((begin + 0.5 * gap) / total - 0.5);
        if (best && cost >= leastCost) {
            continue;
        }
        LineLabel label;
        label.centre = chord.center();
        label.degrees = std::atan(chord.dy() / chord.dx()) * 180.0 / M_PI;
        if (chord.dx() == 0.0) {
            label.degrees = -90.0;
        }
        label.gapBegin = begin;
        label.gapEnd = begin + gap;
        const QRectF box = boxOf(label.centre, size, label.degrees);
        if (isFree(box, which)) {
            best = label;
            bestBox = box;
            leastCost = cost;
        }
    }
    if (best) {
        taken.push_back(bestBox);
    }
    return best;
}

std::vector<QPolygonF> LineLabels::interrupted(const QPolygonF& line, const LineLabel& label)
{
    const std::vector<double> lengths = lengthsOf(line);
    QPolygonF before;
    QPolygonF after;
    after.append(pointAt(line, lengths, label.gapEnd));
    for (int i = 0; i < line.size(); ++i) {
        const double length = lengths[static_cast<std::size_t>(i)];
        if (length < label.gapBegin) {
            before.append(line[i]);
        } else if (length > label.gapEnd) {
            after.append(line[i]);
        }
    }
    before.append(pointAt(line, lengths, label.gapBegin));
    return {before, after};
}
