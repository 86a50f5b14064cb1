#pragma once

#include <QFont>
#include <QPointF>
#include <QPolygonF>
#include <QString>
#include <qwt_plot_item.h>

#include <vector>

/**
 * Short texts beside points, each where it covers the fewest points, labels and borders; in boxes
 * of the background where there is a filled field below them.
 */
class PointLabels : public QwtPlotItem
{
public:
    struct Label
    {
        QPointF point; ///< in the units of the axes
        QString text;
    };

    /** @param points that are drawn, in the units of the axes. */
    PointLabels(std::vector<Label> labels, const QPolygonF& points, const QFont& font,
                bool hasBoxes);

    void draw(QPainter* painter, const QwtScaleMap& xMap, const QwtScaleMap& yMap,
              const QRectF& canvas) const override;

    /** Where the texts stand, in pixels. */
    std::vector<QRectF> places(const QwtScaleMap& xMap, const QwtScaleMap& yMap,
                               const QRectF& canvas) const;

private:
    std::vector<Label> labels;
    QPolygonF points;
    QFont font;
    bool hasBoxes;
};
