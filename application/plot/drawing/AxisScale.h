#pragma once

#include <QString>
#include <qwt_interval.h>
#include <qwt_scale_div.h>

#include <vector>

/*
 * The scale of an axis: its ends, its ticks at round values, their texts.
 */
namespace AxisScale {
/** Values that differ by less than this share of their size count as equal: they differ by
 * rounding, and no round number lies between them. */
constexpr double minRelativeSpread = 1e-13;

/** Smallest and largest of the values; not valid if there are none. */
QwtInterval range(const std::vector<double>& values);

/** Whether an axis can show the interval: margins and rounding to whole steps must not overflow. */
bool isDrawable(const QwtInterval& interval);

/** The interval with `margin` of its width at both ends; an interval of one value is widened around
 *  it, one that is not valid becomes 0 to 1. */
QwtInterval padded(const QwtInterval& interval, double margin);

/** Whether a logarithmic axis suits it: positive, with a factor of ten at least between its ends.
 */
bool spansDecades(const QwtInterval& interval);

/** The same margins on a logarithmic axis, of an interval that spans decades. */
QwtInterval paddedLogarithmic(const QwtInterval& interval, double margin);

/** Major ticks at round values, as many as possible but no more than `maxSteps` steps. */
QwtScaleDiv ticks(const QwtInterval& interval, int maxSteps, bool isLogarithmic = false);

/** The same, with so few steps that the labels stand apart. @param room length in pixels. */
QwtScaleDiv readableTicks(const QwtInterval& interval, int maxSteps, bool isLogarithmic,
                          bool isVertical, double room);

/** The text of a tick: with the digits that distinguish it from its neighbours, and an exponent
 * where a plain number would be long. @param step between major ticks. */
QString label(double value, double step, double largest);
} // namespace AxisScale
