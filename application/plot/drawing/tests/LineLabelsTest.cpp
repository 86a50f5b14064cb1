#include "plot/drawing/LineLabels.h"

#include <gtest/gtest.h>

namespace {
const QRectF room(0.0, 0.0, 400.0, 300.0);
const QSizeF size(30.0, 14.0);

QPolygonF line(QPointF from, QPointF to)
{
    return QPolygonF(QVector<QPointF>{from, to});
}
} // namespace

TEST(LineLabels, StandInTheMiddleOfAStraightLine)
{
    LineLabels labels(room, {line({0, 100}, {400, 100})}, {});

    const std::optional<LineLabel> label = labels.place(0, size);

    ASSERT_TRUE(label);
    EXPECT_NEAR(label->centre.x(), 200.0, 4.0);
    EXPECT_NEAR(label->centre.y(), 100.0, 1e-9);
    EXPECT_NEAR(label->degrees, 0.0, 1e-9);
    EXPECT_GT(label->gapEnd - label->gapBegin, size.width());
}

TEST(LineLabels, AreNeverUpsideDown)
{
    LineLabels labels(room, {line({300, 20}, {100, 280}), line({200, 280}, {200, 10})}, {});

    for (const std::size_t each : {0, 1}) {
        const std::optional<LineLabel> label = labels.place(each, size);
        ASSERT_TRUE(label);
        EXPECT_GE(label->degrees, -90.0);
        EXPECT_LE(label->degrees, 90.0);
    }
}

TEST(LineLabels, KeepClearOfPoints)
{
    LineLabels labels(room, {line({0, 100}, {400, 100})}, {QPointF(200, 100)});

    const std::optional<LineLabel> label = labels.place(0, size);

    ASSERT_TRUE(label);
    EXPECT_GT(std::abs(label->centre.x() - 200.0), 0.5 * size.width());
}

TEST(LineLabels, AreLeftOutWhereLinesAreTooClose)
{
    LineLabels labels(room, {line({0, 100}, {400, 100}), line({0, 106}, {400, 106})}, {});

    EXPECT_FALSE(labels.place(0, size));
}

TEST(LineLabels, AreLeftOutOnAShortLine)
{
    LineLabels labels(room, {line({0, 100}, {40, 100}), QPolygonF()}, {});

    EXPECT_FALSE(labels.place(0, size));
    EXPECT_FALSE(labels.place(1, size));
}

TEST(LineLabels, InterruptTheirLine)
{
    LineLabel label;
    label.gapBegin = 30.0;
    label.gapEnd = 70.0;

    const std::vector<QPolygonF> rest = LineLabels::interrupted(line({0, 100}, {100, 100}), label);

    ASSERT_EQ(rest.size(), 2u);
    EXPECT_EQ(rest[0], line({0, 100}, {30, 100}));
    EXPECT_EQ(rest[1], line({70, 100}, {100, 100}));
}
