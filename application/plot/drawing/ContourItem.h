#pragma once

#include "plot/drawing/ContourBands.h"

#include <plot/data/ContourPicture.h>

#include <qwt_plot_item.h>

#include <QFont>
#include <QPolygonF>

#include <vector>

/** Draws the bands of a contour picture, the lines between them and their labels, which interrupt
 *  the lines and keep clear of each other. */
class ContourItem : public QwtPlotItem
{
public:
    ContourItem(const ContourPicture& picture, ContourBands bands, const QFont& font);

    void draw(QPainter* painter, const QwtScaleMap& xMap, const QwtScaleMap& yMap,
              const QRectF& canvas) const override;

private:
    struct Level
    {
        std::vector<QPolygonF> outlines;
        std::vector<QPolygonF> lines;
        QString label;
    };

    ContourBands bands;
    QFont font;
    // In the units of the variables.
    QPolygonF corners; ///< lower left, upper right
    std::vector<Level> levels;
    QPolygonF cases;
};
