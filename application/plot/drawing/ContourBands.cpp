#include "plot/drawing/ContourBands.h"

#include "plot/drawing/AxisScale.h"
#include "plot/drawing/PlotColours.h"

#include <QList>

#include <algorithm>
#include <cmath>

ContourBands::ContourBands(const std::vector<double>& values, bool wantsLogarithms)
    : valueRange(AxisScale::padded(AxisScale::range(values), 0.0)),
      isLogarithmic(wantsLogarithms && AxisScale::spansDecades(valueRange))
{
    const QwtInterval exact = AxisScale::range(values);
    const QList<double> ticks =
        AxisScale::ticks(valueRange, maxSteps, isLogarithmic).ticks(QwtScaleDiv::MajorTick);
    levelStep = ticks.size() > 1 ? ticks[1] - ticks[0] : valueRange.width();
    const bool isConstant = exact.minValue() != valueRange.minValue();
    for (const double tick : ticks) {
        if (!isConstant && tick > valueRange.minValue() && tick < valueRange.maxValue()) {
            levelValues.push_back(tick);
        }
    }
}

QString ContourBands::label(double level) const
{
    const double largest =
        std::max(std::abs(valueRange.minValue()), std::abs(valueRange.maxValue()));
    return isLogarithmic ? AxisScale::label(level, level, level)
                         : AxisScale::label(level, levelStep, largest);
}

QColor ContourBands::colour(std::size_t band) const
{
    if (levelValues.empty()) {
        return PlotColours::viridis(0.5);
    }
    return PlotColours::viridis(static_cast<double>(band) /
                                static_cast<double>(levelValues.size()));
}
