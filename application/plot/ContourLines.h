#pragma once

#include <QPolygonF>

#include <vector>

/**
 * Where the values of a grid meet a level, linear between the points of the grid. Of the two ways
 * to join four crossings of one cell the mean of its corners decides.
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
