#pragma once

#include <QPolygonF>

#include <vector>

/**
 * Marching squares: the lines where values on a grid cross a level, linear along the edges of the
 * cells. In a saddle cell, with four crossings, the mean of the corners decides which are joined.
 */
class ContourLines
{
public:
    /** All borrowed; as ContourPicture has them. */
    ContourLines(const std::vector<double>& x, const std::vector<double>& y,
                 const std::vector<double>& values);

    /** The lines of this level; one that is closed ends where it begins. */
    std::vector<QPolygonF> lines(double level) const;

    /** The closed outlines of the region where the values are at least this level, along the
     *  border of the grid too: to be filled by the even-odd rule. */
    std::vector<QPolygonF> outlines(double level) const;

private:
    const std::vector<double>& x;
    const std::vector<double>& y;
    const std::vector<double>& values;
};
