#pragma once

#include "plot/drawing/ContourBands.h"
#include "plot/drawing/NumberScaleDraw.h"

/** The scale of a contour picture with a bar of its colours, drawn as shapes: sharp at any size. */
class ColourBarScaleDraw : public NumberScaleDraw
{
public:
    explicit ColourBarScaleDraw(ContourBands bands);

    double extent(const QFont& font) const override;
    void draw(QPainter* painter, const QPalette& palette) const override;

private:
    void drawBar(QPainter& painter) const;

    ContourBands bands;
};
