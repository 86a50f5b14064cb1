#include "plot/drawing/AxisScale.h"

#include <qwt_scale_engine.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {
constexpr int minorSteps = 5;

/** Larger numbers, or more decimals, are longer than numbers with an exponent. */
constexpr double largestPlain = 1e6;
constexpr int maxDecimals = 5;

/** As a share of the step: a tick so close to 0 differs from it by rounding. */
constexpr double roundingOfStep = 1e-6;

/** "1.500" becomes "1.5". */
QString withoutTrailingZeros(QString number)
{
    if (number.contains('.')) {
        while (number.endsWith('0')) {
            number.chop(1);
        }
        if (number.endsWith('.')) {
            number.chop(1);
        }
    }
    return number;
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

QwtScaleDiv AxisScale::ticks(const QwtInterval& interval, int most)
{
    return QwtLinearScaleEngine().divideScale(interval.minValue(), interval.maxValue(), most,
                                              minorSteps);
}

QString AxisScale::label(double value, double step, double largest)
{
    const bool isZero = std::abs(value) < roundingOfStep * step;
    const int stepExponent = static_cast<int>(std::floor(std::log10(step) + 1e-9));
    if (largest < largestPlain && stepExponent >= -maxDecimals) {
        return QString::number(isZero ? 0.0 : value, 'f', std::max(0, -stepExponent));
    }
    if (isZero) {
        return QStringLiteral("0");
    }
    const int exponent = static_cast<int>(std::floor(std::log10(std::abs(value)) + 1e-15));
    QString text = QString::number(value, 'e', std::clamp(exponent - stepExponent, 0, 16));
    const int mark = text.indexOf('e');
    // Without the plus sign and leading zeros of the exponent.
    return withoutTrailingZeros(text.left(mark)) + 'e' +
           QString::number(text.mid(mark + 1).toInt());
}
