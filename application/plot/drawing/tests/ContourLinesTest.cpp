#include "plot/drawing/ContourLines.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

namespace {
/** The values of a function on a grid over [0, 1] x [0, 2]. */
struct Grid
{
    Grid(std::size_t count, const std::function<double(double, double)>& function)
    {
        for (std::size_t i = 0; i < count; ++i) {
            const double share = static_cast<double>(i) / static_cast<double>(count - 1);
            x.push_back(share);
            y.push_back(2.0 * share);
        }
        for (const double across : x) {
            for (const double up : y) {
                values.push_back(function(across, up));
            }
        }
    }

    ContourLines contours() const { return {x, y, values}; }

    std::vector<double> x;
    std::vector<double> y;
    std::vector<double> values;
};

/** Twice the signed area: positive counter-clockwise. */
double area(const QPolygonF& outline)
{
    double twice = 0.0;
    for (int i = 1; i < outline.size(); ++i) {
        twice += outline[i - 1].x() * outline[i].y() - outline[i].x() * outline[i - 1].y();
    }
    return 0.5 * twice;
}
} // namespace

TEST(ContourLines, FollowAPlaneExactly)
{
    const Grid grid(7, [](double x, double y) { return x + y; });

    const std::vector<QPolygonF> lines = grid.contours().lines(1.25);

    ASSERT_EQ(lines.size(), 1u);
    for (const QPointF& point : lines[0]) {
        EXPECT_NEAR(point.x() + point.y(), 1.25, 1e-14);
    }
    EXPECT_FALSE(lines[0].isClosed());
}

TEST(ContourLines, CloseRoundAHill)
{
    const Grid grid(41, [](double x, double y) { return -std::hypot(x - 0.5, y - 1.0); });

    const std::vector<QPolygonF> lines = grid.contours().lines(-0.3);

    ASSERT_EQ(lines.size(), 1u);
    EXPECT_TRUE(lines[0].isClosed());
    // Chords of a circle of radius 0.3 from a grid with steps of 0.025 and 0.05.
    EXPECT_NEAR(area(lines[0]), M_PI * 0.09, 1e-3);
}

TEST(ContourLines, OutlinesGoAlongTheBorder)
{
    const Grid grid(5, [](double x, double y) { return x + y; });

    const std::vector<QPolygonF> outlines = grid.contours().outlines(1.0);

    // The rectangle of area 2 without the triangle below x + y = 1.
    ASSERT_EQ(outlines.size(), 1u);
    EXPECT_TRUE(outlines[0].isClosed());
    EXPECT_NEAR(area(outlines[0]), 1.5, 1e-14);
}

TEST(ContourLines, OutlineOfEverythingIsTheBorder)
{
    const Grid grid(4, [](double, double) { return 3.0; });

    const std::vector<QPolygonF> outlines = grid.contours().outlines(2.0);

    ASSERT_EQ(outlines.size(), 1u);
    EXPECT_NEAR(area(outlines[0]), 2.0, 1e-14);
    EXPECT_TRUE(grid.contours().lines(2.0).empty());
    EXPECT_TRUE(grid.contours().outlines(4.0).empty());
}

TEST(ContourLines, HolesRunTheOtherWay)
{
    const Grid grid(41, [](double x, double y) { return std::hypot(x - 0.5, y - 1.0); });

    double sum = 0.0;
    for (const QPolygonF& outline : grid.contours().outlines(0.3)) {
        sum += area(outline);
    }

    EXPECT_NEAR(sum, 2.0 - M_PI * 0.09, 1e-3);
}

TEST(ContourLines, TheMiddleOfASaddleDecidesHowLinesJoin)
{
    const std::vector<double> ends = {0.0, 1.0};
    const std::vector<double> highCorners = {1.0, 0.0, 0.0, 1.0};
    const ContourLines contours(ends, ends, highCorners);

    // The mean is 0.5: below that level the high corners are one region, above it two.
    EXPECT_EQ(contours.outlines(0.4).size(), 1u);
    EXPECT_EQ(contours.outlines(0.6).size(), 2u);
    EXPECT_EQ(contours.lines(0.4).size(), 2u);
    EXPECT_EQ(contours.lines(0.6).size(), 2u);
}
