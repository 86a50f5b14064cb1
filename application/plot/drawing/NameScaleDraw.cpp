#include "plot/drawing/NameScaleDraw.h"

#include <qwt_text.h>

#include <cmath>

NameScaleDraw::NameScaleDraw(QStringList names) : names(std::move(names))
{
    enableComponent(Backbone, false);
}

QwtText NameScaleDraw::label(double value) const
{
    return QwtText(names.value(static_cast<int>(std::lround(value))), QwtText::PlainText);
}
