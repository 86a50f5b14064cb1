#pragma once

#include <QStringList>
#include <qwt_scale_draw.h>

/** A scale with names instead of numbers: name i at the value i. */
class NameScaleDraw : public QwtScaleDraw
{
public:
    /** @param names short enough for their room: they are not shortened. */
    explicit NameScaleDraw(QStringList names);

    QwtText label(double value) const override;

private:
    QStringList names;
};
