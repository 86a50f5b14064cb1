#include "plot/drawing/ElidedText.h"

#include "plot/drawing/PlotColours.h"

#include <QFontMetricsF>
#include <QPainter>
#include <qwt_text_engine.h>

namespace {
class ElidedTextEngine : public QwtTextEngine
{
public:
    double heightForWidth(const QFont& font, int, const QString&, double) const override
    {
        return QFontMetricsF(font).height();
    }

    QSizeF textSize(const QFont& font, int, const QString& text) const override
    {
        return QFontMetricsF(font).size(Qt::TextSingleLine, text);
    }

    bool mightRender(const QString&) const override { return false; }

    void textMargins(const QFont&, const QString&, double& left, double& right, double& top,
                     double& bottom) const override
    {
        left = right = top = bottom = 0.0;
    }

    void draw(QPainter* painter, const QRectF& rect, int flags, const QString& text) const override
    {
        // The room is often the width of the text itself, rounded down.
        const QString shown =
            QFontMetricsF(painter->font()).elidedText(text, Qt::ElideMiddle, rect.width() + 1.0);
        painter->drawText(rect, (flags & ~Qt::TextWordWrap) | Qt::TextSingleLine, shown);
    }
};
} // namespace

QwtText elidedText(const QString& text, const QFont& font)
{
    static const bool isRegistered = [] {
        QwtText::setTextEngine(QwtText::OtherFormat, new ElidedTextEngine);
        return true;
    }();
    static_cast<void>(isRegistered);
    QwtText result(text, QwtText::OtherFormat);
    result.setFont(font);
    result.setColor(PlotColours::text);
    return result;
}
