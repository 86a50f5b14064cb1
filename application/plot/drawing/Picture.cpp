#include "plot/drawing/Picture.h"

#include "plot/drawing/PlotWidget.h"

#include <session/files/OutputFile.h>
#include <session/text/QuotedText.h>
#include <session/text/SessionErrors.h>

#include <QBuffer>
#include <QHash>
#include <QImage>
#include <QMarginsF>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgGenerator>
#include <qwt_plot_renderer.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <utility>

namespace {
constexpr int pixelsPerInch = 96;
constexpr double pointsPerInch = 72.0;
constexpr double metresPerInch = 0.0254;

std::string bytesOf(const QByteArray& bytes)
{
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

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
    const QByteArray close = "</g>";
    QByteArray result;
    int copied = 0;
    for (int open = svg.indexOf("<g "); open >= 0; open = svg.indexOf("<g ", open + 1)) {
        const int content = svg.indexOf('>', open) + 1;
        int end = content;
        while (end < svg.size() && std::isspace(static_cast<unsigned char>(svg[end])) != 0) {
            ++end;
        }
        if (svg.mid(end, close.size()) == close) {
            result += svg.mid(copied, open - copied);
            copied = end + close.size();
            while (copied < svg.size() && svg[copied] == '\n') {
                ++copied;
            }
        }
    }
    return result + svg.mid(copied);
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
} // namespace

class Picture::Impl
{
public:
    Impl(std::vector<PictureData> panels, PictureSize panelSize) : size(panelSize)
    {
        for (PictureData& panel : panels) {
            plots.push_back(std::make_unique<PlotWidget>(std::move(panel)));
            plots.back()->arrange(QSize(size.width, size.height));
        }
        const auto count = static_cast<double>(plots.size());
        columns = static_cast<int>(std::ceil(std::sqrt(count)));
        rows = static_cast<int>(std::ceil(count / columns));
    }

    QSize wholeSize() const { return {columns * size.width, rows * size.height}; }

    void draw(QPaintDevice& device) const
    {
        QPainter painter(&device);
        painter.fillRect(QRect(QPoint(0, 0), wholeSize()), Qt::white);
        // The renderer scales by the resolution of the device over that of the screen; a pixel of
        // the picture is to be a pixel of the device.
        const PlotWidget& first = *plots.front();
        painter.scale(static_cast<double>(first.logicalDpiX()) / device.logicalDpiX(),
                      static_cast<double>(first.logicalDpiY()) / device.logicalDpiY());
        const QTransform toPixels = painter.transform().inverted();
        QwtPlotRenderer renderer;
        renderer.setDiscardFlags(QwtPlotRenderer::DiscardBackground |
                                 QwtPlotRenderer::DiscardCanvasBackground);
        for (std::size_t i = 0; i < plots.size(); ++i) {
            const int column = static_cast<int>(i) % columns;
            const int row = static_cast<int>(i) / columns;
            const QPoint corner(column * size.width, row * size.height);
            const QRectF room = plots[i]->contentsRect().translated(corner);
            renderer.render(plots[i].get(), &painter, toPixels.mapRect(room));
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
        generator.setTitle(plots.front()->title().text().toHtmlEscaped());
        generator.setDescription(QString());
        draw(generator);
        return withoutEmptyGroups(withSizeInPixels(bytes, wholeSize()));
    }

    std::vector<std::unique_ptr<PlotWidget>> plots;
    PictureSize size;
    int columns = 1;
    int rows = 1;
};

Picture::Picture(std::vector<PictureData> panels, PictureSize size)
    : impl(std::make_unique<Impl>(std::move(panels), size))
{}

Picture::~Picture() = default;

Picture::Picture(Picture&&) noexcept = default;

std::string Picture::toSvg() const
{
    return bytesOf(impl->svg());
}

std::string Picture::toInlineSvg() const
{
    const QByteArray document = impl->svg();
    const QByteArray element = "<svg ";
    const int begin = document.indexOf(element) + element.size();
    return bytesOf(element + "style=\"max-width:100%;height:auto\" " + document.mid(begin));
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
    return bytesOf(bytes);
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
    return bytesOf(bytes);
}

Picture::Format Picture::formatOf(const std::string& path)
{
    const std::size_t dot = path.rfind('.');
    std::string ending = dot == std::string::npos ? std::string() : path.substr(dot + 1);
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](unsigned char letter) { return std::tolower(letter); });
    if (ending == "svg") {
        return Svg;
    }
    if (ending == "png") {
        return Png;
    }
    if (ending == "pdf") {
        return Pdf;
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
