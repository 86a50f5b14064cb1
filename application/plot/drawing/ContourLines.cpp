#include "plot/drawing/ContourLines.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

namespace {
constexpr double outside = -std::numeric_limits<double>::infinity();

/**
 * The grid to be traced. With a rim every border point has a neighbour outside at the same
 * coordinates, lower than any level: lines then run along the border instead of ending there.
 */
class Lattice
{
public:
    Lattice(const std::vector<double>& x, const std::vector<double>& y,
            const std::vector<double>& values, bool hasRim)
        : columns(x.size() + (hasRim ? 2 : 0)), rows(y.size() + (hasRim ? 2 : 0)), x(x), y(y),
          values(values), rim(hasRim ? 1 : 0)
    {}

    double value(std::size_t column, std::size_t row) const
    {
        const bool isInside =
            column >= rim && column < x.size() + rim && row >= rim && row < y.size() + rim;
        return isInside ? values[(column - rim) * y.size() + row - rim] : outside;
    }

    QPointF point(std::size_t column, std::size_t row) const
    {
        return {x[inside(column, x.size())], y[inside(row, y.size())]};
    }

    const std::size_t columns;
    const std::size_t rows;

private:
    std::size_t inside(std::size_t index, std::size_t count) const
    {
        return std::min(index - std::min(index, rim), count - 1);
    }

    const std::vector<double>& x;
    const std::vector<double>& y;
    const std::vector<double>& values;
    const std::size_t rim;
};

/**
 * Traces one level through the cells. The segment of a cell has the higher values on its left; so
 * each crossing of an edge ends the segment of one cell and begins that of the other.
 */
class Tracing
{
public:
    Tracing(const Lattice& lattice, double level)
        : lattice(lattice), level(level), next(2 * lattice.columns * lattice.rows, none),
          isReached(next.size(), false)
    {
        for (std::size_t column = 0; column + 1 < lattice.columns; ++column) {
            for (std::size_t row = 0; row + 1 < lattice.rows; ++row) {
                joinCrossings(column, row);
            }
        }
    }

    std::vector<QPolygonF> lines()
    {
        std::vector<QPolygonF> found;
        // First those that begin at the border, then the closed ones.
        for (const bool isClosed : {false, true}) {
            for (std::size_t edge = 0; edge < next.size(); ++edge) {
                if (next[edge] != none && isReached[edge] == isClosed) {
                    found.push_back(follow(edge));
                }
            }
        }
        return found;
    }

private:
    static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

    /** The edge from a point to its right neighbour, or to the one above. */
    std::size_t edge(std::size_t column, std::size_t row, bool isUpwards) const
    {
        return 2 * (column * lattice.rows + row) + (isUpwards ? 1 : 0);
    }

    bool isHigh(std::size_t column, std::size_t row) const
    {
        return lattice.value(column, row) >= level;
    }

    void joinCrossings(std::size_t column, std::size_t row)
    {
        // Corners and edges counter-clockwise from the lower left; edge i leaves corner i.
        const std::array<bool, 4> high = {isHigh(column, row), isHigh(column + 1, row),
                                          isHigh(column + 1, row + 1), isHigh(column, row + 1)};
        const std::array<std::size_t, 4> edges = {
            edge(column, row, false), edge(column + 1, row, true), edge(column, row + 1, false),
            edge(column, row, true)};
        std::vector<std::size_t> falling;
        std::vector<std::size_t> rising;
        for (std::size_t i = 0; i < 4; ++i) {
            const bool after = high[(i + 1) % 4];
            if (high[i] != after) {
                (high[i] ? falling : rising).push_back(i);
            }
        }
        if (falling.size() == 1) {
            join(edges[falling[0]], edges[rising[0]]);
        } else if (falling.size() == 2) {
            // Counter-clockwise after a falling crossing comes the rising one across the low
            // corner; joining the two leaves the middle high.
            const bool isMiddleHigh = mean(column, row) >= level;
            for (const std::size_t at : falling) {
                const std::size_t to = (at + (isMiddleHigh ? 1 : 3)) % 4;
                join(edges[at], edges[to]);
            }
        }
    }

    double mean(std::size_t column, std::size_t row) const
    {
        return 0.25 * (lattice.value(column, row) + lattice.value(column + 1, row) +
                       lattice.value(column + 1, row + 1) + lattice.value(column, row + 1));
    }

    void join(std::size_t from, std::size_t to)
    {
        next[from] = to;
        isReached[to] = true;
    }

    QPolygonF follow(std::size_t first)
    {
        QPolygonF line;
        for (std::size_t at = first; at != none;) {
            line.append(crossing(at));
            const std::size_t after = next[at];
            next[at] = none;
            at = after;
        }
        return line;
    }

    QPointF crossing(std::size_t edge) const
    {
        const std::size_t column = edge / 2 / lattice.rows;
        const std::size_t row = edge / 2 % lattice.rows;
        const bool isUpwards = edge % 2 == 1;
        const std::size_t nextColumn = isUpwards ? column : column + 1;
        const std::size_t nextRow = isUpwards ? row + 1 : row;
        const QPointF from = lattice.point(column, row);
        const QPointF to = lattice.point(nextColumn, nextRow);
        if (from == to) {
            return from;
        }
        const double low = lattice.value(column, row);
        const double high = lattice.value(nextColumn, nextRow);
        return from + (level - low) / (high - low) * (to - from);
    }

    const Lattice& lattice;
    const double level;
    std::vector<std::size_t> next; ///< by edge: where the segment that begins there ends
    std::vector<bool> isReached;   ///< by edge: whether a segment ends there
};
} // namespace

ContourLines::ContourLines(const std::vector<double>& x, const std::vector<double>& y,
                           const std::vector<double>& values)
    : x(x), y(y), values(values)
{}

std::vector<QPolygonF> ContourLines::lines(double level) const
{
    const Lattice lattice(x, y, values, false);
    return Tracing(lattice, level).lines();
}

std::vector<QPolygonF> ContourLines::outlines(double level) const
{
    const Lattice lattice(x, y, values, true);
    return Tracing(lattice, level).lines();
}
