#include "plot/drawing/PlotWidget.h"

#include "plot/drawing/AxisScale.h"
#include "plot/drawing/ColourBarScaleDraw.h"
#include "plot/drawing/ContourItem.h"
#include "plot/drawing/ContourLines.h"
#include "plot/drawing/ElidedText.h"
#include "plot/drawing/PlotColours.h"
#include "plot/drawing/PlotFont.h"
#include "plot/drawing/PlotItems.h"
#include "plot/drawing/PointLabels.h"

#include <QFontMetricsF>
#include <QPainterPath>
#include <QResizeEvent>
#include <QStringList>
#include <qwt_legend.h>
#include <qwt_painter.h>
#include <qwt_plot_canvas.h>
#include <qwt_plot_layout.h>
#include <qwt_scale_engine.h>
#include <qwt_scale_widget.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {
using PlotItems::points;
using PlotItems::shown;

/** Margins around the data as shares of their range, so that no symbol is clipped. On a vector
 * device Qwt draws no symbol that touches the border, which the narrow one just avoids. */
constexpr double margin = 0.05;
constexpr double narrowMargin = 0.04;
constexpr double lineThickness = 2.0;
constexpr int maxSteps = 10; ///< between the major ticks of an axis

/** Names in the place of numbers: name i at the value i. */
class NameScaleDraw : public QwtScaleDraw
{
public:
    explicit NameScaleDraw(QStringList names) : names(std::move(names))
    {
        enableComponent(Backbone, false);
    }

    QwtText label(double value) const override
    {
        return QwtText(names.value(static_cast<int>(std::lround(value))), QwtText::PlainText);
    }

private:
    QStringList names;
};

/** Shortens each factor of a product by itself, so that both can be recognised. */
QString elidedTerm(const std::vector<std::string>& factors, const QFontMetricsF& metrics,
                   double room)
{
    const QString times = QStringLiteral(" \u00d7 ");
    const QString squared = QStringLiteral("\u00b2");
    const auto width = [&](const QString& text) {
        return metrics.size(Qt::TextSingleLine, text).width();
    };
    const auto elided = [&](const QString& text, double maxWidth) {
        return width(text) <= maxWidth ? text : metrics.elidedText(text, Qt::ElideMiddle, maxWidth);
    };
    const QString first = shown(factors.front());
    if (factors.size() == 1) {
        return elided(first, room);
    }
    const QString second = shown(factors[1]);
    if (first == second) {
        return elided(first, room - width(squared)) + squared;
    }
    // What a short factor leaves of its half is the other one's.
    const double both = room - width(times);
    const double larger = std::max(both / 2.0, both - std::min(width(first), width(second)));
    return elided(first, larger) + times + elided(second, larger);
}

double heightOfTerm()
{
    return 1.25 * QFontMetricsF(PlotFont::ofSize(PlotFont::tickSize)).height();
}
} // namespace

class PlotWidget::Impl
{
public:
    explicit Impl(PlotWidget& plot) : plot(plot) {}

    void setUp();
    void show(const SweepPicture& picture);
    void show(const ContourPicture& picture);
    void show(const ScatterPicture& picture);
    void show(const CoefficientPicture& picture);
    void insertLegend();
    void chooseTerms();
    void chooseTicks();

    PlotWidget& plot;
    PanelData data;

private:
    void nameAxis(int axis, const std::string& name);
    void write(const std::string& title, const std::string& caption);
    void addReferenceLine(const ScatterPicture& picture, double offset, const QPen& pen,
                          const std::string& label);
    void addLabels(std::vector<PointLabels::Label> labels, const QVector<QPointF>& points,
                   bool hasBoxes);
    void addExtremes(const ContourPicture& picture, std::vector<PointLabels::Label>& labels);
    void addOutside(const ContourPicture& picture);
    QwtInterval padded(int axis, const QwtInterval& range, double share, bool wantsLogarithms);
    bool isLogarithmic(int axis) const;

    QwtInterval xRange;
    QwtInterval yRange;   ///< not valid where the axis has names
    QwtInterval barRange; ///< of the colours; not valid without a colour bar
};

void PlotWidget::Impl::setUp()
{
    plot.setAutoReplot(false);
    // Curves have kinks if their points are rounded to pixels.
    QwtPainter::setRoundingAlignment(false);
    QPalette palette(Qt::white);
    palette.setColor(QPalette::Window, Qt::white);
    palette.setColor(QPalette::WindowText, PlotColours::text);
    palette.setColor(QPalette::Text, PlotColours::text);
    plot.setPalette(palette);
    plot.setAutoFillBackground(true);
    plot.setCanvasBackground(Qt::white);
    auto* const canvas = new QwtPlotCanvas(&plot);
    canvas->setFrameStyle(QFrame::NoFrame);
    canvas->setPalette(palette);
    plot.setCanvas(canvas);
    plot.plotLayout()->setAlignCanvasToScales(true);
    plot.setContentsMargins(10, 10, 14, 8);
    for (const int axis : {QwtPlot::xBottom, QwtPlot::yLeft, QwtPlot::yRight}) {
        plot.setAxisFont(axis, PlotFont::ofSize(PlotFont::tickSize));
        plot.axisWidget(axis)->setMargin(0);
        plot.axisWidget(axis)->setSpacing(6);
        plot.axisWidget(axis)->setPalette(palette);
    }
    plot.setAxisScaleDraw(QwtPlot::xBottom, new NumberScaleDraw);
    plot.setAxisScaleDraw(QwtPlot::yLeft, new NumberScaleDraw);
}

void PlotWidget::Impl::nameAxis(int axis, const std::string& name)
{
    plot.setAxisTitle(axis, elidedText(shown(name), PlotFont::ofSize(PlotFont::textSize)));
}

void PlotWidget::Impl::write(const std::string& title, const std::string& caption)
{
    // An empty title would take room.
    if (!title.empty()) {
        plot.setTitle(elidedText(shown(title), PlotFont::ofSize(PlotFont::titleSize)));
    }
    if (!caption.empty()) {
        QwtText footer(shown(caption), QwtText::PlainText);
        footer.setFont(PlotFont::ofSize(PlotFont::tickSize));
        footer.setColor(PlotColours::text);
        footer.setRenderFlags(Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap);
        plot.setFooter(footer);
    }
}

/** The range with margins; makes the axis logarithmic if that is wanted and possible. */
QwtInterval PlotWidget::Impl::padded(int axis, const QwtInterval& range, double share,
                                     bool wantsLogarithms)
{
    if (!wantsLogarithms || !AxisScale::spansDecades(range)) {
        return AxisScale::padded(range, share);
    }
    plot.setAxisScaleEngine(axis, new QwtLogScaleEngine);
    return AxisScale::paddedLogarithmic(range, share);
}

bool PlotWidget::Impl::isLogarithmic(int axis) const
{
    return dynamic_cast<const QwtLogScaleEngine*>(plot.axisScaleEngine(axis)) != nullptr;
}

void PlotWidget::Impl::addLabels(std::vector<PointLabels::Label> labels,
                                 const QVector<QPointF>& points, bool hasBoxes)
{
    PlotItems::attach(plot,
                      new PointLabels(std::move(labels), PlotItems::thinned(points),
                                      PlotFont::ofSize(PlotFont::tickSize), hasBoxes),
                      PlotItems::LabelLayer);
}

void PlotWidget::Impl::show(const SweepPicture& picture)
{
    write(picture.title, picture.caption);
    nameAxis(QwtPlot::xBottom, picture.inputName);
    nameAxis(QwtPlot::yLeft, picture.outputName);
    PlotItems::addGrid(plot);
    if (!picture.lower.empty()) {
        QVector<QwtIntervalSample> samples;
        for (std::size_t i = 0; i < picture.inputs.size(); ++i) {
            samples.append(
                QwtIntervalSample(picture.inputs[i], picture.lower[i], picture.upper[i]));
        }
        PlotItems::addBand(plot, samples, PlotColours::band, picture.bandLabel);
    }
    PlotItems::addLine(plot, points(picture.inputs, picture.model),
                       QPen(PlotColours::model, lineThickness), PlotItems::ModelLayer,
                       picture.modelLabel);
    PlotItems::addDots(plot, points(picture.caseInputs, picture.caseOutputs), PlotColours::cases,
                       picture.caseLabel);

    xRange = AxisScale::padded(AxisScale::range(picture.inputs), narrowMargin);
    yRange = AxisScale::range(picture.model);
    for (const auto* column :
         {&picture.lower, &picture.upper, &picture.caseOutputs, &picture.axisOutputs}) {
        yRange = yRange | AxisScale::range(*column);
    }
    yRange = padded(QwtPlot::yLeft, yRange, margin, picture.isLogarithmic);
}

void PlotWidget::Impl::show(const ContourPicture& picture)
{
    write(picture.title, picture.caption);
    nameAxis(QwtPlot::xBottom, picture.xName);
    nameAxis(QwtPlot::yLeft, picture.yName);
    const ContourBands bands(picture.values, picture.isLogarithmic);
    PlotItems::attach(plot, new ContourItem(picture, bands, PlotFont::ofSize(PlotFont::tickSize)),
                      PlotItems::BandLayer);
    addOutside(picture);
    const QVector<QPointF> cases = points(picture.caseX, picture.caseY);
    PlotItems::addDots(plot, cases, PlotColours::cases, picture.caseLabel);
    std::vector<PointLabels::Label> labels;
    addExtremes(picture, labels);
    for (std::size_t i = 0; i < picture.caseCounts.size(); ++i) {
        if (picture.caseCounts[i] > 1) {
            labels.push_back({cases[static_cast<int>(i)],
                              QStringLiteral("\u00d7") + QString::number(picture.caseCounts[i])});
        }
    }
    addLabels(std::move(labels), cases, true);

    // Symbols of cases lie on the border too.
    xRange = AxisScale::padded({picture.x.front(), picture.x.back()}, narrowMargin);
    yRange = AxisScale::padded({picture.y.front(), picture.y.back()}, narrowMargin);
    plot.enableAxis(QwtPlot::yRight);
    plot.setAxisScaleDraw(QwtPlot::yRight, new ColourBarScaleDraw(bands));
    if (bands.areLogarithmic()) {
        plot.setAxisScaleEngine(QwtPlot::yRight, new QwtLogScaleEngine);
    }
    barRange = bands.range();
    nameAxis(QwtPlot::yRight, picture.outputName);
}

/** Veils the area that the cases do not support. */
void PlotWidget::Impl::addOutside(const ContourPicture& picture)
{
    const std::vector<double> flags(picture.isOutside.begin(), picture.isOutside.end());
    if (std::find(flags.begin(), flags.end(), 1.0) == flags.end()) {
        return;
    }
    constexpr double border = 0.5; // between 0 and 1
    QPainterPath path;
    for (const QPolygonF& outline : ContourLines(picture.x, picture.y, flags).outlines(border)) {
        path.addPolygon(outline);
        path.closeSubpath();
    }
    PlotItems::addArea(plot, path, PlotColours::outside, "outside the cases");
}

/** A cross where the output is least, and one where it is largest. */
void PlotWidget::Impl::addExtremes(const ContourPicture& picture,
                                   std::vector<PointLabels::Label>& labels)
{
    QVector<QPointF> positions;
    for (const ContourPicture::Extreme& extreme : picture.extremes) {
        positions.append(QPointF(extreme.x, extreme.y));
        const QString word =
            positions.size() == 1 ? QStringLiteral("min ") : QStringLiteral("max ");
        labels.push_back({positions.last(), word + QString::number(extreme.value, 'g', 4)});
    }
    PlotItems::addCrosses(plot, positions);
}

void PlotWidget::Impl::show(const ScatterPicture& picture)
{
    write(picture.title, picture.caption);
    nameAxis(QwtPlot::xBottom, picture.xName);
    nameAxis(QwtPlot::yLeft, picture.yName);
    PlotItems::addGrid(plot);
    QwtInterval x = AxisScale::range(picture.x);
    QwtInterval y = AxisScale::range(picture.y);
    const bool hasOneScale = picture.reference == ScatterPicture::DiagonalOfOneScale;
    if (hasOneScale) {
        x = y = x | y;
    }
    xRange = padded(QwtPlot::xBottom, x, margin, picture.isLogarithmic);
    // The reference line crosses the whole picture.
    if (picture.reference == ScatterPicture::Diagonal) {
        y = y | xRange;
    } else if (picture.reference == ScatterPicture::Zero) {
        y = y | QwtInterval(-picture.limit, picture.limit);
    }
    yRange = padded(QwtPlot::yLeft, y, margin, picture.isLogarithmic && hasOneScale);

    addReferenceLine(picture, 0.0, QPen(PlotColours::reference, 1.0, Qt::DashLine),
                     picture.referenceLabel);
    if (picture.limit > 0.0) {
        const QPen pen(PlotColours::limits, 1.0);
        addReferenceLine(picture, picture.limit, pen, picture.limitLabel);
        addReferenceLine(picture, -picture.limit, pen, {});
    }
    const QVector<QPointF> cases = points(picture.x, picture.y);
    PlotItems::addDots(plot, cases, PlotColours::cases, picture.caseLabel);
    std::vector<PointLabels::Label> labels;
    for (const ScatterPicture::Mark& mark : picture.marks) {
        labels.push_back({cases[static_cast<int>(mark.point)], QString::number(mark.caseNumber)});
    }
    addLabels(std::move(labels), cases, false);
}

/** The reference line moved up by an offset, of the logarithm on logarithmic axes, and cut at the
 *  borders. */
void PlotWidget::Impl::addReferenceLine(const ScatterPicture& picture, double offset,
                                        const QPen& pen, const std::string& label)
{
    double left = xRange.minValue();
    double right = xRange.maxValue();
    QVector<QPointF> line = {{left, offset}, {right, offset}};
    if (picture.reference != ScatterPicture::Zero) {
        const bool areLogarithms = isLogarithmic(QwtPlot::xBottom);
        const auto moved = [&](double value, double by) {
            return areLogarithms ? value * std::exp(by) : value + by;
        };
        left = std::max(left, moved(left, -offset));
        right = std::min(right, moved(right, -offset));
        line = {{left, moved(left, offset)}, {right, moved(right, offset)}};
    }
    if (left < right) {
        PlotItems::addLine(plot, line, pen, PlotItems::ReferenceLayer, label);
    }
}

/** Term i at the value i, downwards; chooseTerms() shows as many as there is room for. */
void PlotWidget::Impl::show(const CoefficientPicture& picture)
{
    nameAxis(QwtPlot::xBottom, picture.valueName);
    PlotItems::addGrid(plot);
    PlotItems::addLine(plot, {{0.0, -0.5}, {0.0, static_cast<double>(picture.terms.size()) - 0.5}},
                       QPen(PlotColours::reference, 1.0, Qt::DashLine), PlotItems::ReferenceLayer);
    for (const bool isSignificant : {true, false}) {
        const QColor colour = isSignificant ? PlotColours::model : PlotColours::insignificant;
        QVector<QPointF> estimates;
        for (std::size_t i = 0; i < picture.terms.size(); ++i) {
            const CoefficientPicture::Term& term = picture.terms[i];
            const auto y = static_cast<double>(i);
            if (term.isSignificant != isSignificant) {
                continue;
            }
            estimates.append(QPointF(term.estimate, y));
            if (std::isfinite(term.lower) && std::isfinite(term.upper)) {
                PlotItems::addLine(plot, {{term.lower, y}, {term.upper, y}},
                                   QPen(colour, lineThickness), PlotItems::ModelLayer);
            }
        }
        PlotItems::addDots(plot, estimates, colour);
    }
}

void PlotWidget::Impl::chooseTerms()
{
    const auto* const picture = std::get_if<CoefficientPicture>(&data);
    if (picture == nullptr) {
        return;
    }
    const int all = static_cast<int>(picture->terms.size());
    const auto fitting = [this, all] {
        plot.updateLayout();
        const double height = plot.plotLayout()->canvasRect().height();
        return std::clamp(static_cast<int>(height / heightOfTerm()), 1, all);
    };
    write(picture->title, picture->caption);
    int count = fitting();
    // The sentence takes room too.
    for (int before = 0; count < all && count != before;) {
        before = count;
        write(picture->title, picture->caption + ' ' + std::to_string(count) + " of " +
                                  std::to_string(all) + " terms fit here.");
        count = fitting();
    }

    const QFontMetricsF metrics(PlotFont::ofSize(PlotFont::tickSize));
    const double nameRoom = 0.4 * plot.width();
    QStringList names;
    QList<double> ticks;
    xRange = QwtInterval(0.0, 0.0);
    for (int i = 0; i < count; ++i) {
        const CoefficientPicture::Term& term = picture->terms[static_cast<std::size_t>(i)];
        names.append(elidedTerm(term.factors, metrics, nameRoom));
        ticks.append(i);
        for (const double value : {term.estimate, term.lower, term.upper}) {
            xRange |= std::isfinite(value) ? value : 0.0;
        }
    }
    xRange = AxisScale::padded(xRange, margin);
    QwtScaleDiv scale(count - 0.5, -0.5);
    scale.setTicks(QwtScaleDiv::MajorTick, ticks);
    plot.setAxisScaleDraw(QwtPlot::yLeft, new NameScaleDraw(names));
    plot.setAxisScaleDiv(QwtPlot::yLeft, scale);
}

void PlotWidget::Impl::chooseTicks()
{
    const auto choose = [this](int axis, const QwtInterval& range, double room) {
        const int most = axis == QwtPlot::yRight ? ContourBands::maxSteps : maxSteps;
        plot.setAxisScaleDiv(axis, AxisScale::readableTicks(range, most, isLogarithmic(axis),
                                                            axis != QwtPlot::xBottom, room));
    };
    // The widths of the labels at the sides decide the width of the canvas.
    const double height = plot.plotLayout()->canvasRect().height();
    if (yRange.isValid()) {
        choose(QwtPlot::yLeft, yRange, height);
    }
    if (barRange.isValid()) {
        choose(QwtPlot::yRight, barRange, height);
    }
    plot.updateLayout();
    choose(QwtPlot::xBottom, xRange, plot.plotLayout()->canvasRect().width());
    plot.updateLayout();
}

void PlotWidget::Impl::insertLegend()
{
    const QwtPlotItemList items = plot.itemList();
    if (std::any_of(items.begin(), items.end(), [](const QwtPlotItem* item) {
            return item->testItemAttribute(QwtPlotItem::Legend);
        })) {
        auto* const legend = new QwtLegend;
        legend->setPalette(plot.palette());
        plot.insertLegend(legend, QwtPlot::BottomLegend);
    }
}

PlotWidget::PlotWidget(PanelData data, QWidget* parent)
    : QwtPlot(parent), impl(std::make_unique<Impl>(*this))
{
    impl->data = std::move(data);
    impl->setUp();
    std::visit([this](const auto& picture) { impl->show(picture); }, impl->data);
    impl->insertLegend();
    arrange(QSize(800, 600));
}

PlotWidget::~PlotWidget() = default;

int PlotWidget::heightOf(const CoefficientPicture& picture)
{
    constexpr double besideTerms = 150.0; // title, axis and caption
    return static_cast<int>(
        std::lround(besideTerms + heightOfTerm() * static_cast<double>(picture.terms.size())));
}

void PlotWidget::arrange(const QSize& size)
{
    if (this->size() != size) {
        resize(size);
    }
    updateLayout();
    impl->chooseTerms();
    impl->chooseTicks();
    replot();
}

void PlotWidget::resizeEvent(QResizeEvent* event)
{
    QwtPlot::resizeEvent(event);
    arrange(event->size());
}
