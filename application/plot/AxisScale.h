#pragma once

#include <QString>
#include <qwt_interval.h>
#include <qwt_scale_div.h>

#include <vector>

/*
 * The scale of an axis: its ends, its ticks at round values, their texts.
 */
namespace AxisScale {
/** Values that differ by less than this share of their size are one value: what is left between
 *  them is rounding, and has no round values. */
constexpr double leastRelativeSpread = 1e-13;

/** Smallest and largest of the values; not valid if there are none. */
QwtInterval range(const std::vector<double>& values);

/** Both together. */
QwtInterval united(const QwtInterval& left, const QwtInterval& right);

/** Whether an axis can show the interval: margins and rounding up to whole steps must not leave the
 *  finite numbers. */
bool isDrawable(const QwtInterval& interval);

/** The interval with `margin` of its width at both ends; an interval of one value is widened so
 *  that the value stands in the middle, one that is not valid becomes 0 to 1. */
QwtInterval padded(const QwtInterval& interval, double margin);

/** @param most the largest number of steps between major ticks. */
QwtScaleDiv ticks(const QwtInterval& interval, int most);

/** The text of a tick: with the digits that tell it from its neighbours, as 1.5e12 where a plain
 *  number would be long. @param step the distance of the major ticks. */
QString label(double value, double step, double largest);
} // namespace AxisScale
