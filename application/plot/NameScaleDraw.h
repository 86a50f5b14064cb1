#pragma once

#include <QStringList>
#include <qwt_scale_draw.h>

/** A scale of names: the one at i stands at the value i. */
class NameScaleDraw : public QwtScaleDraw
{
public:
    /** @param names as they are to be shown, short enough for their room. */
    explicit NameScaleDraw(QStringList names);

    QwtText label(double value) const override;

private:
    QStringList names;
};
