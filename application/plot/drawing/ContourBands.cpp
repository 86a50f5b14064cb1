#include "plot/drawing/ContourBands.h"

#include "plot/drawing/AxisScale.h"
#include "plot/drawing/PlotColours.h"

#include <QList>

ContourBands::ContourBands(const std::vector<double>& values)
    : valueRange(AxisScale::padded(AxisScale::range(values), 0.0))
{
    const QwtInterval exact = AxisScale::range(values);
    const QList<double> ticks =
        AxisScale::ticks(valueRange, maxSteps).ticks(QwtScaleDiv::MajorTick);
    levelStep = ticks.size() > 1 ? ticks[1] - ticks[0] : valueRange.width();
    const bool isConstant = exact.minValue() != valueRange.minValue();
    for (const double tick : ticks) {
        if (!isConstant && tick > valueRange.minValue() && tick < valueRange.maxValue()) {
            levelValues.push_back(tick);
        }
    }
}

QColor ContourBands::colour(std::size_t band) const
{
    if (levelValues.empty()) {
        return PlotColours::viridis(0.5);
    }
    return PlotColours::viridis(static_cast<double>(band) /
                                static_cast<double>(levelValues.size()));
}
