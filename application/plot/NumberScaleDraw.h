#pragma once

#include <qwt_scale_draw.h>

/** A scale whose numbers are written as AxisScale::label() has them. */
class NumberScaleDraw : public QwtScaleDraw
{
public:
    QwtText label(double value) const override;
};
