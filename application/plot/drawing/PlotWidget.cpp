#include "plot/drawing/PlotWidget.h"

#include "plot/drawing/AxisScale.h"
#include "plot/drawing/ColourBarScaleDraw.h"
#include "plot/drawing/ContourItem.h"
#include "plot/drawing/ContourLines.h"
#include "plot/drawing/ElidedText.h"
#include "plot/drawing/NameScaleDraw.h"
#include "plot/drawing/PlotColours.h"
#include "plot/drawing/PlotFont.h"
#include "plot/drawing/PointLabels.h"

#include <session/text/QuotedText.h>

#include <QFontMetricsF>
#include <QPainterPath>
#include <QPolygonF>
#include <QResizeEvent>
#include <QSet>
#include <qwt_legend.h>
#include <qwt_painter.h>
#include <qwt_plot_canvas.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_grid.h>
#include <qwt_plot_intervalcurve.h>
#include <qwt_plot_layout.h>
#include <qwt_plot_shapeitem.h>
#include <qwt_scale_engine.h>
#include <qwt_scale_widget.h>
#include <qwt_symbol.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {
/** Margins around the data as shares of their range, so that no symbol is clipped. On a vector
 * device Qwt draws no symbol that touches the border, which the narrow one just avoids. */
constexpr double margin = 0.05;
constexpr double narrowMargin = 0.04;
constexpr double lineThickness = 2.0;
/** Of symbols: smaller where there are many cases. */
constexpr int symbolSize = 8;
constexpr int smallSymbolSize = 5;
constexpr int dotSize = 3;
constexpr int maxLargeSymbols = 300;
constexpr int maxSteps = 10; ///< between the major ticks of an axis

/** More cases are thinned to one per cell of a grid that is much finer than a symbol: viewers are
 * slow with a hundred thousand symbols. */
constexpr int maxUnthinnedCases = 2000;
constexpr double cellsAcross = 400.0;

/** From back to front. */
enum Layer
{
    GridLayer = 1,
    BandLayer,
    ReferenceLayer,
    ModelLayer,
    CaseLayer,
    LabelLayer
};

QString shown(const std::string& text)
{
    return QString::fromStdString(oneLineText(text));
}

/** What the lines of ActualPicture::limit are called. */
const std::string limitLabel = "\302\261 2 standard deviations";

std::string inParentheses(const std::string& unit)
{
    return unit.empty() ? unit : " (" + unit + ')';
}

QVector<QPointF> points(const std::vector<double>& x, const std::vector<double>& y)
{
    QVector<QPointF> result;
    result.reserve(static_cast<int>(x.size()));
    for (std::size_t i = 0; i < x.size(); ++i) {
        result.append(QPointF(x[i], y[i]));
    }
    return result;
}

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

/** Discs at these points, with a white edge where they overlap, in place of a line. */
void showAsSymbols(QwtPlotCurve& curve, const QVector<QPointF>& positions, const QColor& colour)
{
    const int size = positions.size() <= maxLargeSymbols     ? symbolSize
                     : positions.size() <= maxUnthinnedCases ? smallSymbolSize
                                                             : dotSize;
    auto* const symbol =
        new QwtSymbol(QwtSymbol::Ellipse, colour, QPen(Qt::white, size < symbolSize ? 0.5 : 1.0),
                      QSize(size, size));
    // A cached symbol is a bitmap.
    symbol->setCachePolicy(QwtSymbol::NoCache);
    curve.setSamples(positions);
    curve.setStyle(QwtPlotCurve::NoCurve);
    curve.setSymbol(symbol);
}

/** The cell of a value in its range, of cellsAcross. */
qint64 cellOf(double value, double minimum, double width)
{
    return width > 0.0 ? static_cast<qint64>((value - minimum) / width * cellsAcross) : 0;
}

/** Of many points the first one in each cell. */
QVector<QPointF> thinned(const QVector<QPointF>& all)
{
    if (all.size() <= maxUnthinnedCases) {
        return all;
    }
    const QRectF box = QPolygonF(all).boundingRect();
    QSet<qint64> occupied;
    QVector<QPointF> kept;
    for (const QPointF& point : all) {
        const qint64 cell =
            cellOf(point.x(), box.left(), box.width()) +
            cellOf(point.y(), box.top(), box.height()) * static_cast<qint64>(cellsAcross + 1.0);
        if (!occupied.contains(cell)) {
            occupied.insert(cell);
            kept.append(point);
        }
    }
    return kept;
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

    void show(const SweepPicture& picture);
    void show(const ContourPicture& picture);
    void show(const ActualPicture& picture);
    void show(const ResidualPicture& picture);
    void show(const NormalPicture& picture);
    void show(const CoefficientPicture& picture);
    void show(const EffectsPicture&) {} // Picture draws each of its effects

    void setUp();
    void chooseTicks();
    void chooseTerms();

    PlotWidget& plot;
    PictureData data;
    QwtInterval xRange;
    QwtInterval yRange;
    bool hasLegend = false;
    QwtInterval barRange; ///< of the colours; not valid without a colour bar
    std::vector<QwtPlotItem*> termItems;

private:
    void nameAxis(int axis, const std::string& name);
    void write(const std::string& title, const std::string& caption);
    void addLine(const QVector<QPointF>& line, const QPen& pen, Layer layer,
                 const std::string& label = std::string());
    void addDiagonal(double offset, const QPen& pen, const std::string& label);
    void addCases(const QVector<QPointF>& positions, const std::string& label);
    void addGrid();
    void addLabels(std::vector<PointLabels::Label> labels, const QVector<QPointF>& points,
                   bool hasBoxes);
    void addCaseNumbers(const std::vector<CaseMark>& worst, const QVector<QPointF>& points);
    void addExtremes(const ContourPicture& picture, std::vector<PointLabels::Label>& labels);
    QwtInterval padded(int axis, const QwtInterval& range, double share, bool wantsLogarithms);
    bool isLogarithmic(int axis) const;
    QwtScaleDiv ticks(int axis, const QwtInterval& range, int most) const;
    int fittingSteps(int axis, const QwtInterval& range, double room) const;
    void addOutside(const ContourPicture& picture);
    void addTerms(const CoefficientPicture& picture, int count);
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

void PlotWidget::Impl::addGrid()
{
    auto* const grid = new QwtPlotGrid;
    grid->setPen(PlotColours::grid, 1.0);
    grid->setZ(GridLayer);
    grid->attach(&plot);
}

void PlotWidget::Impl::addLine(const QVector<QPointF>& line, const QPen& pen, Layer layer,
                               const std::string& label)
{
    auto* const curve =
        new QwtPlotCurve(elidedText(shown(label), PlotFont::ofSize(PlotFont::tickSize)));
    curve->setSamples(line);
    curve->setPen(pen);
    curve->setRenderHint(QwtPlotItem::RenderAntialiased);
    curve->setItemAttribute(QwtPlotItem::Legend, !label.empty());
    curve->setLegendAttribute(QwtPlotCurve::LegendShowLine);
    curve->setLegendIconSize(QSize(28, 12));
    curve->setZ(layer);
    curve->attach(&plot);
    hasLegend = hasLegend || !label.empty();
}

/** From lower left to upper right, moved up by an offset, of the logarithm on logarithmic axes, and
 *  cut at the borders. */
void PlotWidget::Impl::addDiagonal(double offset, const QPen& pen, const std::string& label)
{
    const bool areLogarithms = isLogarithmic(QwtPlot::xBottom);
    const auto moved = [&](double value, double by) {
        return areLogarithms ? value * std::exp(by) : value + by;
    };
    const double left = std::max(xRange.minValue(), moved(xRange.minValue(), -offset));
    const double right = std::min(xRange.maxValue(), moved(xRange.maxValue(), -offset));
    if (left < right) {
        addLine({{left, moved(left, offset)}, {right, moved(right, offset)}}, pen, ReferenceLayer,
                label);
    }
}

/** The range with margins, and makes the axis a logarithmic one if that is wanted and possible. */
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

/** A veil over what the cases do not support. */
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
    auto* const veil = new QwtPlotShapeItem(
        elidedText(shown("outside the cases"), PlotFont::ofSize(PlotFont::tickSize)));
    veil->setShape(path);
    veil->setPen(QPen(Qt::NoPen));
    veil->setBrush(PlotColours::outside);
    veil->setRenderHint(QwtPlotItem::RenderAntialiased);
    veil->setItemAttribute(QwtPlotItem::Legend, true);
    veil->setLegendIconSize(QSize(28, 12));
    veil->setZ(ReferenceLayer);
    veil->attach(&plot);
    hasLegend = true;
}

void PlotWidget::Impl::addCases(const QVector<QPointF>& positions, const std::string& label)
{
    if (positions.isEmpty()) {
        return;
    }
    auto* const curve =
        new QwtPlotCurve(elidedText(shown(label), PlotFont::ofSize(PlotFont::tickSize)));
    showAsSymbols(*curve, thinned(positions), PlotColours::cases);
    curve->setRenderHint(QwtPlotItem::RenderAntialiased);
    curve->setItemAttribute(QwtPlotItem::Legend, !label.empty());
    curve->setLegendAttribute(QwtPlotCurve::LegendShowSymbol);
    curve->setLegendIconSize(QSize(12, 12));
    curve->setZ(CaseLayer);
    curve->attach(&plot);
    hasLegend = hasLegend || !label.empty();
}

void PlotWidget::Impl::addLabels(std::vector<PointLabels::Label> labels,
                                 const QVector<QPointF>& points, bool hasBoxes)
{
    auto* const item =
        new PointLabels(std::move(labels), points, PlotFont::ofSize(PlotFont::tickSize), hasBoxes);
    item->setZ(LabelLayer);
    item->attach(&plot);
}

void PlotWidget::Impl::addCaseNumbers(const std::vector<CaseMark>& worst,
                                      const QVector<QPointF>& points)
{
    std::vector<PointLabels::Label> labels;
    for (const CaseMark& mark : worst) {
        labels.push_back({points[static_cast<int>(mark.point)], QString::number(mark.caseNumber)});
    }
    addLabels(std::move(labels), thinned(points), false);
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
    // Black on white can be seen on all colours.
    for (const QPen& pen : {QPen(Qt::white, 4.0), QPen(Qt::black, 1.5)}) {
        auto* const curve = new QwtPlotCurve;
        auto* const cross =
            new QwtSymbol(QwtSymbol::XCross, Qt::NoBrush, pen, QSize(symbolSize, symbolSize));
        cross->setCachePolicy(QwtSymbol::NoCache);
        curve->setSamples(positions);
        curve->setStyle(QwtPlotCurve::NoCurve);
        curve->setSymbol(cross);
        curve->setItemAttribute(QwtPlotItem::Legend, false);
        curve->setRenderHint(QwtPlotItem::RenderAntialiased);
        curve->setZ(CaseLayer);
        curve->attach(&plot);
    }
}

void PlotWidget::Impl::show(const SweepPicture& picture)
{
    write(picture.title, picture.caption);
    nameAxis(QwtPlot::xBottom, picture.inputName);
    nameAxis(QwtPlot::yLeft, picture.outputName);
    addGrid();
    if (!picture.lower.empty()) {
        QVector<QwtIntervalSample> samples;
        for (std::size_t i = 0; i < picture.inputs.size(); ++i) {
            samples.append(
                QwtIntervalSample(picture.inputs[i], picture.lower[i], picture.upper[i]));
        }
        auto* const band = new QwtPlotIntervalCurve(
            elidedText(shown(picture.bandLabel), PlotFont::ofSize(PlotFont::tickSize)));
        band->setSamples(samples);
        band->setPen(QPen(Qt::NoPen));
        band->setBrush(PlotColours::band);
        band->setRenderHint(QwtPlotItem::RenderAntialiased);
        band->setItemAttribute(QwtPlotItem::Legend, !picture.bandLabel.empty());
        band->setLegendIconSize(QSize(28, 12));
        band->setZ(BandLayer);
        band->attach(&plot);
    }
    addLine(points(picture.inputs, picture.model), QPen(PlotColours::model, lineThickness),
            ModelLayer, picture.modelLabel);
    addCases(points(picture.caseInputs, picture.caseOutputs), picture.caseLabel);

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
    auto* const item = new ContourItem(picture, bands, PlotFont::ofSize(PlotFont::tickSize));
    item->setZ(BandLayer);
    item->attach(&plot);
    addOutside(picture);
    const QVector<QPointF> cases = points(picture.caseX, picture.caseY);
    addCases(cases, picture.caseLabel);
    std::vector<PointLabels::Label> labels;
    addExtremes(picture, labels);
    for (std::size_t i = 0; i < picture.caseCounts.size(); ++i) {
        if (picture.caseCounts[i] > 1) {
            labels.push_back({cases[static_cast<int>(i)],
                              QStringLiteral("\u00d7") + QString::number(picture.caseCounts[i])});
        }
    }
    addLabels(std::move(labels), thinned(cases), true);

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

void PlotWidget::Impl::show(const ActualPicture& picture)
{
    const std::string unit = inParentheses(picture.unit);
    write(picture.title, picture.caption);
    nameAxis(QwtPlot::xBottom, picture.outputName + ", actual" + unit);
    nameAxis(QwtPlot::yLeft, picture.outputName + ", predicted" + unit);
    addGrid();
    const QwtInterval all = AxisScale::range(picture.actual) | AxisScale::range(picture.predicted);
    xRange = padded(QwtPlot::xBottom, all, margin, picture.isLogarithmic);
    yRange = padded(QwtPlot::yLeft, all, margin, picture.isLogarithmic);
    addDiagonal(0.0, QPen(PlotColours::reference, 1.0, Qt::DashLine), "predicted = actual");
    if (picture.limit > 0.0) {
        const QPen pen(PlotColours::limits, 1.0);
        addDiagonal(picture.limit, pen,
                    limitLabel + (isLogarithmic(QwtPlot::xBottom) ? " of the logarithm" : ""));
        addDiagonal(-picture.limit, pen, std::string());
    }
    const QVector<QPointF> cases = points(picture.actual, picture.predicted);
    addCases(cases, "cases");
    addCaseNumbers(picture.worst, cases);
}

void PlotWidget::Impl::show(const ResidualPicture& picture)
{
    const std::string unit = inParentheses(picture.unit);
    write(picture.title, picture.caption);
    nameAxis(QwtPlot::xBottom, picture.outputName + ", predicted" + unit);
    nameAxis(QwtPlot::yLeft, "actual - predicted" + unit);
    addGrid();
    xRange = padded(QwtPlot::xBottom, AxisScale::range(picture.predicted), margin,
                    picture.isLogarithmic);
    yRange = AxisScale::padded(
        AxisScale::range(picture.residuals) | QwtInterval(-picture.limit, picture.limit), margin);
    const auto addLevel = [this](double level, const QPen& pen, const std::string& label) {
        addLine({{xRange.minValue(), level}, {xRange.maxValue(), level}}, pen, ReferenceLayer,
                label);
    };
    addLevel(0.0, QPen(PlotColours::reference, 1.0, Qt::DashLine), std::string());
    if (picture.limit > 0.0) {
        const QPen pen(PlotColours::limits, 1.0);
        addLevel(picture.limit, pen, limitLabel);
        addLevel(-picture.limit, pen, std::string());
    }
    const QVector<QPointF> cases = points(picture.predicted, picture.residuals);
    addCases(cases, "cases");
    addCaseNumbers(picture.worst, cases);
}

void PlotWidget::Impl::show(const NormalPicture& picture)
{
    write(picture.title, picture.caption);
    nameAxis(QwtPlot::xBottom, "normal quantile");
    nameAxis(QwtPlot::yLeft, "externally studentised residual");
    addGrid();
    xRange = AxisScale::padded(AxisScale::range(picture.quantiles), margin);
    yRange = AxisScale::padded(AxisScale::range(picture.residuals) | xRange, margin);
    addLine({{xRange.minValue(), xRange.minValue()}, {xRange.maxValue(), xRange.maxValue()}},
            QPen(PlotColours::reference, 1.0, Qt::DashLine), ReferenceLayer);
    const QVector<QPointF> cases = points(picture.quantiles, picture.residuals);
    addCases(cases, std::string());
    addCaseNumbers(picture.outliers, cases);
}

void PlotWidget::Impl::show(const CoefficientPicture& picture)
{
    write(picture.title, picture.caption);
    nameAxis(QwtPlot::xBottom, picture.valueName);
    addGrid();
}

QwtScaleDiv PlotWidget::Impl::ticks(int axis, const QwtInterval& range, int most) const
{
    return isLogarithmic(axis) ? AxisScale::logarithmicTicks(range, most)
                               : AxisScale::ticks(range, most);
}

/** As many steps between ticks as leave their labels apart. */
int PlotWidget::Impl::fittingSteps(int axis, const QwtInterval& range, double room) const
{
    const QFontMetricsF metrics(PlotFont::ofSize(PlotFont::tickSize));
    const bool isVertical = axis != QwtPlot::xBottom;
    const double gap = isVertical ? metrics.height() : 2.0 * metrics.averageCharWidth();
    const double largest = std::max(std::abs(range.minValue()), std::abs(range.maxValue()));
    const bool areLogarithms = isLogarithmic(axis);
    const auto distance = [&](double from, double to) {
        return areLogarithms ? std::log(to / from) : to - from;
    };
    const int most = axis == QwtPlot::yRight ? ContourBands::maxSteps : maxSteps;
    for (int steps = most; steps > 1; --steps) {
        const QList<double> major = ticks(axis, range, steps).ticks(QwtScaleDiv::MajorTick);
        if (major.size() < 2) {
            continue;
        }
        const double step = major[1] - major[0];
        double widest = metrics.height();
        double narrowest = distance(major[0], major[1]);
        for (int i = 0; i < major.size(); ++i) {
            narrowest = i > 1 ? std::min(narrowest, distance(major[i - 1], major[i])) : narrowest;
            if (!isVertical) {
                const QString text = areLogarithms ? AxisScale::label(major[i], major[i], major[i])
                                                   : AxisScale::label(major[i], step, largest);
                widest = std::max(widest, metrics.size(Qt::TextSingleLine, text).width());
            }
        }
        if (widest + gap <= room * narrowest / distance(range.minValue(), range.maxValue())) {
            return steps;
        }
    }
    return 1;
}

void PlotWidget::Impl::chooseTicks()
{
    const auto choose = [this](int axis, const QwtInterval& range, double room) {
        plot.setAxisScaleDiv(axis, ticks(axis, range, fittingSteps(axis, range, room)));
    };
    const bool hasTerms = std::holds_alternative<CoefficientPicture>(data);
    // The widths of the labels at the sides decide the width of the canvas.
    const double height = plot.plotLayout()->canvasRect().height();
    if (!hasTerms) {
        choose(QwtPlot::yLeft, yRange, height);
    }
    if (barRange.isValid()) {
        choose(QwtPlot::yRight, barRange, height);
    }
    plot.updateLayout();
    choose(QwtPlot::xBottom, xRange, plot.plotLayout()->canvasRect().width());
    plot.updateLayout();
}

/** The first terms, as many as there is room for. */
void PlotWidget::Impl::chooseTerms()
{
    const auto* const picture = std::get_if<CoefficientPicture>(&data);
    if (picture == nullptr) {
        return;
    }
    for (QwtPlotItem* const item : termItems) {
        delete item;
    }
    termItems.clear();
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
    addTerms(*picture, count);
}

void PlotWidget::Impl::addTerms(const CoefficientPicture& picture, int count)
{
    const QFontMetricsF metrics(PlotFont::ofSize(PlotFont::tickSize));
    const double nameRoom = 0.4 * plot.width();
    QStringList names;
    QList<double> ticks;
    QVector<QPointF> estimates;
    QVector<QPointF> greyEstimates;
    xRange = QwtInterval(0.0, 0.0);
    const auto keep = [this](QwtPlotItem* item, Layer layer) {
        item->setItemAttribute(QwtPlotItem::Legend, false);
        item->setRenderHint(QwtPlotItem::RenderAntialiased);
        item->setZ(layer);
        item->attach(&plot);
        termItems.push_back(item);
    };
    for (int i = 0; i < count; ++i) {
        const CoefficientPicture::Term& term = picture.terms[static_cast<std::size_t>(i)];
        names.append(elidedTerm(term.factors, metrics, nameRoom));
        ticks.append(i);
        (term.isSignificant ? estimates : greyEstimates).append(QPointF(term.estimate, i));
        const QColor colour = term.isSignificant ? PlotColours::model : PlotColours::insignificant;
        xRange |= term.estimate;
        if (std::isfinite(term.lower) && std::isfinite(term.upper)) {
            xRange |= term.lower;
            xRange |= term.upper;
            auto* const limits = new QwtPlotCurve;
            limits->setSamples(
                {{term.lower, static_cast<double>(i)}, {term.upper, static_cast<double>(i)}});
            limits->setPen(colour, lineThickness);
            keep(limits, ModelLayer);
        }
    }
    xRange = AxisScale::padded(xRange, margin);
    auto* const zero = new QwtPlotCurve;
    zero->setSamples({{0.0, -0.5}, {0.0, count - 0.5}});
    zero->setPen(QPen(PlotColours::reference, 1.0, Qt::DashLine));
    keep(zero, ReferenceLayer);
    for (const auto& [positions, colour] :
         {std::make_pair(estimates, PlotColours::model),
          std::make_pair(greyEstimates, PlotColours::insignificant)}) {
        auto* const marks = new QwtPlotCurve;
        showAsSymbols(*marks, positions, colour);
        keep(marks, CaseLayer);
    }

    // The first term at the top.
    QwtScaleDiv scale(count - 0.5, -0.5);
    scale.setTicks(QwtScaleDiv::MajorTick, ticks);
    plot.setAxisScaleDraw(QwtPlot::yLeft, new NameScaleDraw(names));
    plot.setAxisScaleDiv(QwtPlot::yLeft, scale);
}

PlotWidget::PlotWidget(PictureData data, QWidget* parent)
    : QwtPlot(parent), impl(std::make_unique<Impl>(*this))
{
    impl->data = std::move(data);
    impl->setUp();
    std::visit([this](const auto& picture) { impl->show(picture); }, impl->data);
    if (impl->hasLegend) {
        auto* const legend = new QwtLegend;
        legend->setPalette(palette());
        insertLegend(legend, QwtPlot::BottomLegend);
    }
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
