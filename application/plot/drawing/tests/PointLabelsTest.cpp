#include "plot/drawing/PointLabels.h"

#include "plot/drawing/PlotFont.h"

#include <gtest/gtest.h>
#include <qwt_scale_map.h>

#include <vector>

namespace {
/** Where texts of these points stand on a canvas of 200 by 100 pixels, whose units are pixels. */
std::vector<QRectF> placesOf(const std::vector<QPointF>& labelled, const QPolygonF& points)
{
    std::vector<PointLabels::Label> labels;
    for (const QPointF& point : labelled) {
        labels.push_back({point, QStringLiteral("17")});
    }
    QwtScaleMap xMap;
    xMap.setScaleInterval(0.0, 200.0);
    xMap.setPaintInterval(0.0, 200.0);
    QwtScaleMap yMap;
    yMap.setScaleInterval(0.0, 100.0);
    yMap.setPaintInterval(0.0, 100.0);
    return PointLabels(labels, points, PlotFont::ofSize(PlotFont::tickSize), false)
        .places(xMap, yMap, QRectF(0.0, 0.0, 200.0, 100.0));
}
} // namespace

TEST(PointLabels, StandToTheRightWhereThereIsRoom)
{
    const QRectF place = placesOf({{100.0, 50.0}}, {}).front();

    EXPECT_GT(place.left(), 104.0);
    EXPECT_LT(place.left(), 112.0);
    EXPECT_NEAR(place.center().y(), 50.0, 1e-9);
}

TEST(PointLabels, StayInsideTheBorders)
{
    const QRectF canvas(0.0, 0.0, 200.0, 100.0);
    for (const QPointF& point : {QPointF(199.0, 50.0), QPointF(199.0, 1.0), QPointF(1.0, 99.0)}) {
        EXPECT_TRUE(canvas.contains(placesOf({point}, {}).front()));
    }
}

TEST(PointLabels, KeepClearOfPointsAndOfEachOther)
{
    const QPointF right(112.0, 50.0);

    EXPECT_LT(placesOf({{100.0, 50.0}}, QPolygonF({right})).front().right(), 96.0);
    const std::vector<QRectF> places = placesOf({{100.0, 50.0}, {100.0, 50.0}}, {});
    EXPECT_FALSE(places[0].intersects(places[1]));
}
