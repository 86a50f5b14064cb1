#pragma once

#include "plot/ContourBands.h"
#include "plot/NumberScaleDraw.h"

/** A scale at the right with a bar of colours between it and what it describes; the bar is drawn as
 *  shapes, so that it stays sharp at any size. */
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
