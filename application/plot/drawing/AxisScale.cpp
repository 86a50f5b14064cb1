#include "plot/drawing/AxisScale.h"

#include "plot/drawing/PlotFont.h"

#include <QFontMetricsF>
#include <QRegularExpression>
#include <qwt_scale_engine.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {
constexpr int minorSteps = 5;

/** Larger numbers, or more decimals, are longer than numbers with an exponent. */
constexpr double maxPlain = 1e6;
constexpr int maxDecimals = 5;

/** As a share of the step: a tick so close to 0 differs from it by rounding. */
constexpr double roundingOfStep = 1e-6;

QwtScaleDiv logarithmicTicks(const QwtInterval& interval, int maxSteps)
{
    const auto ticksAt = [&](const std::vector<double>& mantissas, int decades) {
        QList<double> ticks;
        const int first = static_cast<int>(std::floor(std::log10(interval.minValue())));
        const int last = static_cast<int>(std::floor(std::log10(interval.maxValue())));
        for (int exponent = first; exponent <= last; ++exponent) {
            for (const double mantissa : mantissas) {
                // A division: 1e-3 times 3 is no round number.
                const double power = std::pow(10.0, std::abs(exponent));
                const double tick = exponent < 0 ? mantissa / power : mantissa * power;
                if (exponent % decades == 0 && interval.contains(tick)) {
                    ticks.append(tick);
                }
            }
        }
        return ticks;
    };
    QList<double> major;
    for (const std::vector<double>& mantissas :
         {std::vector<double>{1, 1.5, 2, 3, 5, 7}, {1, 2, 5}, {1}}) {
        major = ticksAt(mantissas, 1);
        if (major.size() <= maxSteps + 1) {
            break;
        }
    }
    for (int decades = 2; major.size() > maxSteps + 1; ++decades) {
        major = ticksAt({1}, decades);
    }
    return QwtScaleDiv(interval.minValue(), interval.maxValue(),
                       ticksAt({1, 2, 3, 4, 5, 6, 7, 8, 9}, 1), {}, major);
}
} // namespace

QwtInterval AxisScale::range(const std::vector<double>& values)
{
    if (values.empty()) {
        return {};
    }
    const auto [least, most] = std::minmax_element(values.begin(), values.end());
    return {*least, *most};
}

bool AxisScale::isDrawable(const QwtInterval& interval)
{
    // The distance of two such numbers grows by up to a half with margins, and up to twice with
    // rounding to whole steps.
    constexpr double largest = std::numeric_limits<double>::max() / 16.0;
    const double low = interval.minValue();
    const double high = interval.maxValue();
    return std::abs(low) <= largest && std::abs(high) <= largest;
}

QwtInterval AxisScale::padded(const QwtInterval& interval, double margin)
{
    if (!interval.isValid()) {
        return {0.0, 1.0};
    }
    const double low = interval.minValue();
    const double high = interval.maxValue();
    const double size = std::max(std::abs(low), std::abs(high));
    if (high - low <= minRelativeSpread * size) {
        const double half = size > 0.0 ? 0.1 * size : 1.0;
        return {low - half, high + half};
    }
    const double extra = margin * (high - low);
    return {low - extra, high + extra};
}

bool AxisScale::spansDecades(const QwtInterval& interval)
{
    constexpr double decade = 10.0;
    return interval.isValid() && interval.minValue() > 0.0 &&
           interval.maxValue() >= decade * interval.minValue();
}

QwtInterval AxisScale::paddedLogarithmic(const QwtInterval& interval, double margin)
{
    const double factor = std::pow(interval.maxValue() / interval.minValue(), margin);
    return {interval.minValue() / factor, interval.maxValue() * factor};
}

QwtScaleDiv AxisScale::ticks(const QwtInterval& interval, int maxSteps, bool isLogarithmic)
{
    return isLogarithmic ? logarithmicTicks(interval, maxSteps)
                         : QwtLinearScaleEngine().divideScale(
                               interval.minValue(), interval.maxValue(), maxSteps, minorSteps);
}

QwtScaleDiv AxisScale::readableTicks(const QwtInterval& interval, int maxSteps, bool isLogarithmic,
                                     bool isVertical, double room)
{
    const QFontMetricsF metrics(PlotFont::ofSize(PlotFont::tickSize));
    const double gap = isVertical ? metrics.height() : 2.0 * metrics.averageCharWidth();
    const double largest = std::max(std::abs(interval.minValue()), std::abs(interval.maxValue()));
    const auto distance = [&](double from, double to) {
        return isLogarithmic ? std::log(to / from) : to - from;
    };
    for (int steps = maxSteps; steps > 1; --steps) {
        const QwtScaleDiv scale = ticks(interval, steps, isLogarithmic);
        const QList<double> major = scale.ticks(QwtScaleDiv::MajorTick);
        if (major.size() < 2) {
            continue;
        }
        const double step = major[1] - major[0];
        double widest = metrics.height();
        double narrowest = distance(major[0], major[1]);
        for (int i = 0; i < major.size(); ++i) {
            narrowest = i > 1 ? std::min(narrowest, distance(major[i - 1], major[i])) : narrowest;
            if (!isVertical) {
                const QString text = isLogarithmic ? label(major[i], major[i], major[i])
                                                   : label(major[i], step, largest);
                widest = std::max(widest, metrics.size(Qt::TextSingleLine, text).width());
            }
        }
        const double whole = distance(interval.minValue(), interval.maxValue());
        if (widest + gap <= room * narrowest / whole) {
            return scale;
        }
    }
    return ticks(interval, 1, isLogarithmic);
}

QString AxisScale::label(double value, double step, double largest)
{
    const bool isZero = std::abs(value) < roundingOfStep * step;
    const int stepExponent = static_cast<int>(std::floor(std::log10(step) + 1e-9));
    if (largest < maxPlain && stepExponent >= -maxDecimals) {
        return QString::number(isZero ? 0.0 : value, 'f', std::max(0, -stepExponent));
    }
    if (isZero) {
        return QStringLiteral("0");
    }
    const int exponent = static_cast<int>(std::floor(std::log10(std::abs(value)) + 1e-15));
    QString text = QString::number(value, 'e', std::clamp(exponent - stepExponent, 0, 16));
    const int mark = text.indexOf('e');
    // Without the last zeros of the number, the plus sign and the first zeros of the exponent.
    const QRegularExpression lastZeros(QStringLiteral("\\.?0+$"));
    return text.left(mark).remove(lastZeros) + 'e' + QString::number(text.mid(mark + 1).toInt());
}
