#include "plot/drawing/Picture.h"

#include "plot/drawing/PlotColours.h"
#include "plot/drawing/PlotFont.h"
#include "plot/drawing/PlotWidget.h"

#include <session/files/OutputFile.h>
#include <session/text/QuotedText.h>
#include <session/text/SessionErrors.h>

#include <QBuffer>
#include <QFontMetrics>
#include <QHash>
#include <QImage>
#include <QMarginsF>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QRegularExpression>
#include <QSvgGenerator>
#include <qwt_plot_renderer.h>

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>
#include <cmath>
#include <type_traits>
#include <utility>

namespace {
constexpr int pixelsPerInch = 96;
constexpr double pointsPerInch = 72.0;
constexpr double metresPerInch = 0.0254;

/** Corrects the cross-reference table of a PDF document after `bytes` were inserted at `position`.
 */
void shiftReferences(QByteArray& pdf, int position, int bytes)
{
    const QByteArray startMark = "startxref\n";
    const int start = pdf.lastIndexOf(startMark) + startMark.size();
    const int startEnd = pdf.indexOf('\n', start);
    const int table = pdf.mid(start, startEnd - start).toInt() + bytes;
    pdf.replace(start, startEnd - start, QByteArray::number(table));

    // "xref", the number of objects, then for each a line of 20 bytes that begins with its offset.
    constexpr int digits = 10;
    int line = pdf.indexOf('\n', pdf.indexOf('\n', table) + 1) + 1;
    for (; pdf[line] != 't'; line = pdf.indexOf('\n', line) + 1) {
        const int offset = pdf.mid(line, digits).toInt();
        if (offset > position) {
            pdf.replace(line, digits,
                        QByteArray::number(offset + bytes).rightJustified(digits, '0'));
        }
    }
}

/** So that the same picture gives the same bytes at any time. */
void fixCreationDate(QByteArray& pdf)
{
    const QByteArray mark = "/CreationDate (";
    const QByteArray date = "D:20000101000000Z";
    const int begin = pdf.indexOf(mark) + mark.size();
    const int end = pdf.indexOf(')', begin);
    pdf.replace(begin, end - begin, date);
    shiftReferences(pdf, begin, date.size() - (end - begin));
}

/** QSvgGenerator opens a group at each change of the pen, even if nothing is drawn with it. */
QByteArray withoutEmptyGroups(const QByteArray& svg)
{
    const QRegularExpression emptyGroup(QStringLiteral("<g [^>]*>\\s*</g>\\n*"));
    return QString::fromUtf8(svg).remove(emptyGroup).toUtf8();
}

/** QSvgGenerator writes rounded millimetres. */
QByteArray withSizeInPixels(QByteArray svg, const QSize& size)
{
    const QByteArray element = "<svg ";
    const int begin = svg.indexOf(element) + element.size();
    const int end = svg.indexOf("viewBox", begin);
    svg.replace(begin, end - begin,
                "width=\"" + QByteArray::number(size.width()) + "\" height=\"" +
                    QByteArray::number(size.height()) + "\" ");
    return svg;
}

/** Qt writes the fonts of a PDF in the order of a hash table, which is random in each process; with
 *  a fixed seed the same picture gives the same bytes. */
class FixedHashOrder
{
public:
    FixedHashOrder() { qSetGlobalQHashSeed(0); }
    ~FixedHashOrder() { qSetGlobalQHashSeed(-1); }
    FixedHashOrder(const FixedHashOrder&) = delete;
    FixedHashOrder& operator=(const FixedHashOrder&) = delete;
};

/** Panels that belong together, in a grid between a title and a caption. */
class PanelGroup
{
public:
    PanelGroup(PictureData data, const std::optional<PictureSize>& wanted)
    {
        std::visit([&](auto& picture) { add(std::move(picture), wanted); }, data);
    }

    QString titleText() const { return title.isEmpty() ? plots.front()->title().text() : title; }
    bool isGroup() const { return !title.isEmpty(); }
    const PlotWidget& firstPanel() const { return *plots.front(); }

    QSize wholeSize() const
    {
        const int rows = (static_cast<int>(plots.size()) + columns - 1) / columns;
        return {columns * size.width, titleHeight() + rows * size.height + captionHeight()};
    }

    void drawTexts(QPainter& painter, const QPoint& corner) const
    {
        const QSize whole = wholeSize();
        const auto draw = [&](int fontSize, const QRectF& room, int flags, const QString& text) {
            painter.setFont(PlotFont::ofSize(fontSize));
            painter.setPen(PlotColours::text);
            painter.drawText(room.translated(corner), flags, text);
        };
        if (!title.isEmpty()) {
            const QFontMetricsF metrics(PlotFont::ofSize(PlotFont::titleSize));
            const QRectF room(margin, margin, whole.width() - 2 * margin, metrics.height());
            draw(PlotFont::titleSize, room, Qt::AlignHCenter | Qt::TextSingleLine,
                 metrics.elidedText(title, Qt::ElideMiddle, room.width()));
        }
        if (!caption.isEmpty()) {
            draw(PlotFont::tickSize,
                 QRectF(margin, whole.height() - captionHeight(), whole.width() - 2 * margin,
                        captionHeight() - margin),
                 Qt::AlignLeft | Qt::TextWordWrap, caption);
        }
    }

    /** @param draw gets a panel and its room. */
    template <typename Draw>
    void eachPanel(const QPoint& corner, Draw draw) const
    {
        for (std::size_t i = 0; i < plots.size(); ++i) {
            const int column = static_cast<int>(i) % columns;
            const int row = static_cast<int>(i) / columns;
            const QPoint place =
                corner + QPoint(column * size.width, titleHeight() + row * size.height);
            draw(*plots[i], QRectF(plots[i]->contentsRect().translated(place)));
        }
    }

private:
    static constexpr int margin = 12;
    static constexpr PictureSize sizeOfEffect = {380, 280};

    /** About as many columns as rows, and few empty places. */
    static int columnsFor(int count)
    {
        const int least = static_cast<int>(std::ceil(std::sqrt(static_cast<double>(count))));
        const auto empty = [count](int columns) { return (columns - count % columns) % columns; };
        return empty(least + 1) < empty(least) && least < count ? least + 1 : least;
    }

    void add(EffectsPicture effects, const std::optional<PictureSize>& wanted)
    {
        size = wanted.value_or(sizeOfEffect);
        title = QString::fromStdString(oneLineText(effects.title));
        caption = QString::fromStdString(oneLineText(effects.caption));
        for (SweepPicture& effect : effects.effects) {
            addPanel(std::move(effect));
        }
        columns = columnsFor(static_cast<int>(plots.size()));
    }

    template <typename Panel>
    void add(Panel panel, const std::optional<PictureSize>& wanted)
    {
        size = wanted.value_or(PictureSize());
        if constexpr (std::is_same_v<Panel, CoefficientPicture>) {
            if (!wanted) {
                size.height =
                    std::clamp(PlotWidget::heightOf(panel), size.height, PictureSize::maxPixels);
            }
        }
        addPanel(std::move(panel));
    }

    void addPanel(PanelData data)
    {
        plots.push_back(std::make_unique<PlotWidget>(std::move(data)));
        plots.back()->arrange(QSize(size.width, size.height));
    }

    int titleHeight() const
    {
        return title.isEmpty()
                   ? 0
                   : margin + QFontMetrics(PlotFont::ofSize(PlotFont::titleSize)).height();
    }

    int captionHeight() const
    {
        if (caption.isEmpty()) {
            return 0;
        }
        const QFontMetrics metrics(PlotFont::ofSize(PlotFont::tickSize));
        const QRect room(0, 0, columns * size.width - 2 * margin, QWIDGETSIZE_MAX);
        return metrics.boundingRect(room, Qt::TextWordWrap, caption).height() + margin;
    }

    std::vector<std::unique_ptr<PlotWidget>> plots;
    PictureSize size;
    int columns = 1;
    QString title;
    QString caption;
};
} // namespace

class Picture::Impl
{
public:
    Impl(std::vector<PictureData> panels, const std::optional<PictureSize>& size)
    {
        for (PictureData& panel : panels) {
            groups.emplace_back(std::move(panel), size);
            place = place.expandedTo(groups.back().wholeSize());
        }
        const auto count = static_cast<double>(groups.size());
        columns = groups.front().isGroup() ? 1 : static_cast<int>(std::ceil(std::sqrt(count)));
        rows = static_cast<int>(std::ceil(count / columns));
    }

    QSize wholeSize() const { return {columns * place.width(), rows * place.height()}; }

    void draw(QPaintDevice& device) const
    {
        QPainter painter(&device);
        painter.fillRect(QRect(QPoint(0, 0), wholeSize()), Qt::white);
        for (std::size_t i = 0; i < groups.size(); ++i) {
            groups[i].drawTexts(painter, cornerOf(i));
        }
        // The renderer scales by the resolution of the device over that of the screen; a pixel of
        // the picture is to be a pixel of the device.
        const PlotWidget& first = groups.front().firstPanel();
        painter.scale(static_cast<double>(first.logicalDpiX()) / device.logicalDpiX(),
                      static_cast<double>(first.logicalDpiY()) / device.logicalDpiY());
        const QTransform toPixels = painter.transform().inverted();
        QwtPlotRenderer renderer;
        renderer.setDiscardFlags(QwtPlotRenderer::DiscardBackground |
                                 QwtPlotRenderer::DiscardCanvasBackground);
        for (std::size_t i = 0; i < groups.size(); ++i) {
            groups[i].eachPanel(cornerOf(i), [&](PlotWidget& panel, const QRectF& room) {
                renderer.render(&panel, &painter, toPixels.mapRect(room));
            });
        }
    }

    QByteArray svg() const
    {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        QSvgGenerator generator;
        generator.setOutputDevice(&buffer);
        generator.setResolution(pixelsPerInch);
        generator.setSize(wholeSize());
        generator.setViewBox(QRect(QPoint(0, 0), wholeSize()));
        // QSvgGenerator does not escape it.
        generator.setTitle(groups.front().titleText().toHtmlEscaped());
        generator.setDescription(QString());
        draw(generator);
        return withoutEmptyGroups(withSizeInPixels(bytes, wholeSize()));
    }

private:
    QPoint cornerOf(std::size_t group) const
    {
        const int column = static_cast<int>(group) % columns;
        const int row = static_cast<int>(group) / columns;
        return {column * place.width(), row * place.height()};
    }

    std::vector<PanelGroup> groups;
    QSize place; ///< of a group: the largest one's
    int columns = 1;
    int rows = 1;
};

Picture::Picture(std::vector<PictureData> panels, std::optional<PictureSize> size)
    : impl(std::make_unique<Impl>(std::move(panels), size))
{}

Picture::~Picture() = default;

std::string Picture::toSvg() const
{
    return impl->svg().toStdString();
}

std::string Picture::toInlineSvg() const
{
    const QByteArray document = impl->svg();
    const QByteArray element = "<svg ";
    const int begin = document.indexOf(element) + element.size();
    const QByteArray shrinking = element + "style=\"max-width:100%;height:auto\" ";
    return (shrinking + document.mid(begin)).toStdString();
}

std::string Picture::toPng() const
{
    QImage image(impl->wholeSize(), QImage::Format_RGB32);
    if (image.isNull()) {
        throw FileError("There is not enough memory for a picture of that many pixels.");
    }
    const int dotsPerMetre = static_cast<int>(std::lround(pixelsPerInch / metresPerInch));
    image.setDotsPerMeterX(dotsPerMetre);
    image.setDotsPerMeterY(dotsPerMetre);
    impl->draw(image);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (!image.save(&buffer, "PNG")) {
        throw FileError("The picture cannot be written as PNG.");
    }
    return bytes.toStdString();
}

std::string Picture::toPdf() const
{
    const FixedHashOrder fixedOrder;
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setResolution(pixelsPerInch);
        const QSizeF points = QSizeF(impl->wholeSize()) * (pointsPerInch / pixelsPerInch);
        writer.setPageLayout(
            QPageLayout(QPageSize(points, QPageSize::Point, QString(), QPageSize::ExactMatch),
                        QPageLayout::Portrait, QMarginsF()));
        impl->draw(writer);
    }
    fixCreationDate(bytes);
    return bytes.toStdString();
}

Picture::Format Picture::formatOf(const std::string& path)
{
    const std::string lower = boost::algorithm::to_lower_copy(path);
    const std::pair<const char*, Format> formats[] = {{"svg", Svg}, {"png", Png}, {"pdf", Pdf}};
    for (const auto& [known, format] : formats) {
        if (boost::algorithm::ends_with(lower, std::string(".") + known)) {
            return format;
        }
    }
    throw UsageError("The name of a picture ends with .svg, .png or .pdf, which " +
                     quotedText(path) + " does not.");
}

void Picture::write(const std::string& path) const
{
    const Format format = formatOf(path);
    OutputFile out(path);
    out.write(format == Svg ? toSvg() : format == Png ? toPng() : toPdf());
    out.commit();
}
