#pragma once

#include <qwt_scale_draw.h>

/** A scale with the texts of AxisScale::label(). */
class NumberScaleDraw : public QwtScaleDraw
{
public:
    QwtText label(double value) const override;
};
