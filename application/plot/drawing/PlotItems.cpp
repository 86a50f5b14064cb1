#include "plot/drawing/PlotItems.h"

#include "plot/drawing/ElidedText.h"
#include "plot/drawing/PlotColours.h"
#include "plot/drawing/PlotFont.h"

#include <session/text/QuotedText.h>

#include <QPolygonF>
#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_grid.h>
#include <qwt_plot_intervalcurve.h>
#include <qwt_plot_shapeitem.h>
#include <qwt_symbol.h>

#include <set>
#include <utility>

namespace {
/** Of symbols: smaller where there are many cases. */
constexpr int symbolSize = 8;
constexpr int smallSymbolSize = 5;
constexpr int dotSize = 3;
constexpr int maxLargeSymbols = 300;

constexpr int maxUnthinnedCases = 2000;
constexpr double cellsAcross = 400.0;

const QSize lineIcon(28, 12); ///< in the legend

void addSymbols(QwtPlot& plot, const QVector<QPointF>& positions, QwtSymbol* symbol,
                const std::string& label)
{
    // A cached symbol is a bitmap.
    symbol->setCachePolicy(QwtSymbol::NoCache);
    auto* const curve = new QwtPlotCurve;
    curve->setSamples(positions);
    curve->setStyle(QwtPlotCurve::NoCurve);
    curve->setSymbol(symbol);
    curve->setLegendAttribute(QwtPlotCurve::LegendShowSymbol);
    curve->setLegendIconSize(QSize(12, 12));
    PlotItems::attach(plot, curve, PlotItems::CaseLayer, label);
}
} // namespace

QString PlotItems::shown(const std::string& text)
{
    return QString::fromStdString(oneLineText(text));
}

QVector<QPointF> PlotItems::points(const std::vector<double>& x, const std::vector<double>& y)
{
    QVector<QPointF> result;
    result.reserve(static_cast<int>(x.size()));
    for (std::size_t i = 0; i < x.size(); ++i) {
        result.append(QPointF(x[i], y[i]));
    }
    return result;
}

QVector<QPointF> PlotItems::thinned(const QVector<QPointF>& all)
{
    if (all.size() <= maxUnthinnedCases) {
        return all;
    }
    const QRectF box = QPolygonF(all).boundingRect();
    const auto cellOf = [](double value, double minimum, double width) {
        return width > 0.0 ? static_cast<int>((value - minimum) / width * cellsAcross) : 0;
    };
    std::set<std::pair<int, int>> occupied;
    QVector<QPointF> kept;
    for (const QPointF& point : all) {
        if (occupied
                .emplace(cellOf(point.x(), box.left(), box.width()),
                         cellOf(point.y(), box.top(), box.height()))
                .second) {
            kept.append(point);
        }
    }
    return kept;
}

void PlotItems::attach(QwtPlot& plot, QwtPlotItem* item, Layer layer, const std::string& label)
{
    item->setTitle(elidedText(shown(label), PlotFont::ofSize(PlotFont::tickSize)));
    item->setItemAttribute(QwtPlotItem::Legend, !label.empty());
    item->setRenderHint(QwtPlotItem::RenderAntialiased);
    item->setZ(layer);
    item->attach(&plot);
}

void PlotItems::addGrid(QwtPlot& plot)
{
    auto* const grid = new QwtPlotGrid;
    grid->setPen(PlotColours::grid, 1.0);
    grid->setZ(GridLayer);
    grid->attach(&plot);
}

void PlotItems::addLine(QwtPlot& plot, const QVector<QPointF>& line, const QPen& pen, Layer layer,
                        const std::string& label)
{
    auto* const curve = new QwtPlotCurve;
    curve->setSamples(line);
    curve->setPen(pen);
    curve->setLegendAttribute(QwtPlotCurve::LegendShowLine);
    curve->setLegendIconSize(lineIcon);
    attach(plot, curve, layer, label);
}

void PlotItems::addDots(QwtPlot& plot, const QVector<QPointF>& positions, const QColor& colour,
                        const std::string& label)
{
    if (positions.isEmpty()) {
        return;
    }
    const QVector<QPointF> kept = thinned(positions);
    const int size = kept.size() <= maxLargeSymbols     ? symbolSize
                     : kept.size() <= maxUnthinnedCases ? smallSymbolSize
                                                        : dotSize;
    const QPen edge(Qt::white, size < symbolSize ? 0.5 : 1.0);
    addSymbols(plot, kept, new QwtSymbol(QwtSymbol::Ellipse, colour, edge, QSize(size, size)),
               label);
}

void PlotItems::addCrosses(QwtPlot& plot, const QVector<QPointF>& positions)
{
    for (const QPen& pen : {QPen(Qt::white, 4.0), QPen(Qt::black, 1.5)}) {
        addSymbols(
            plot, positions,
            new QwtSymbol(QwtSymbol::XCross, Qt::NoBrush, pen, QSize(symbolSize, symbolSize)), {});
    }
}

void PlotItems::addBand(QwtPlot& plot, const QVector<QwtIntervalSample>& samples,
                        const QColor& colour, const std::string& label)
{
    auto* const band = new QwtPlotIntervalCurve;
    band->setSamples(samples);
    band->setPen(QPen(Qt::NoPen));
    band->setBrush(colour);
    band->setLegendIconSize(lineIcon);
    attach(plot, band, BandLayer, label);
}

void PlotItems::addArea(QwtPlot& plot, const QPainterPath& area, const QColor& colour,
                        const std::string& label)
{
    auto* const item = new QwtPlotShapeItem;
    item->setShape(area);
    item->setPen(QPen(Qt::NoPen));
    item->setBrush(colour);
    item->setLegendIconSize(lineIcon);
    attach(plot, item, ReferenceLayer, label);
}
