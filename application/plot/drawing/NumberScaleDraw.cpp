#include "plot/drawing/NumberScaleDraw.h"

#include "plot/drawing/AxisScale.h"

#include <qwt_scale_map.h>
#include <qwt_text.h>
#include <qwt_transform.h>

#include <algorithm>
#include <cmath>

QwtText NumberScaleDraw::label(double value) const
{
    if (dynamic_cast<const QwtLogTransform*>(scaleMap().transformation()) != nullptr) {
        return QwtText(AxisScale::label(value, value, value), QwtText::PlainText);
    }
    const QList<double> ticks = scaleDiv().ticks(QwtScaleDiv::MajorTick);
    const double largest =
        std::max(std::abs(scaleDiv().lowerBound()), std::abs(scaleDiv().upperBound()));
    const double step = ticks.size() > 1 ? std::abs(ticks[1] - ticks[0]) : scaleDiv().range();
    return QwtText(AxisScale::label(value, step, largest), QwtText::PlainText);
}
