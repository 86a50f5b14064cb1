#pragma once

#include <QColor>
#include <QPainterPath>
#include <QPen>
#include <QVector>
#include <qwt_series_data.h>

#include <string>

class QwtPlot;
class QwtPlotItem;

/** The parts of pictures, in the units of the axes; the plot owns them. Those with a label are in
 *  its legend. */
namespace PlotItems {
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

/** In one line, without control characters. */
QString shown(const std::string& text);

QVector<QPointF> points(const std::vector<double>& x, const std::vector<double>& y);

/** Of more points than a viewer draws fluently, the first one in each cell of a grid that is much
 *  finer than a symbol. */
QVector<QPointF> thinned(const QVector<QPointF>& all);

void attach(QwtPlot& plot, QwtPlotItem* item, Layer layer, const std::string& label = {});

void addGrid(QwtPlot& plot);

void addLine(QwtPlot& plot, const QVector<QPointF>& line, const QPen& pen, Layer layer,
             const std::string& label = {});

/** Discs with a white edge where they overlap, smaller where there are many; thinned(). */
void addDots(QwtPlot& plot, const QVector<QPointF>& positions, const QColor& colour,
             const std::string& label = {});

/** Black crosses with a white edge, which can be seen on all colours. */
void addCrosses(QwtPlot& plot, const QVector<QPointF>& positions);

/** The area between the limits of the samples. */
void addBand(QwtPlot& plot, const QVector<QwtIntervalSample>& samples, const QColor& colour,
             const std::string& label);

void addArea(QwtPlot& plot, const QPainterPath& area, const QColor& colour,
             const std::string& label);
} // namespace PlotItems
