#pragma once

#include <QColor>
#include <QString>
#include <qwt_interval.h>

#include <cstddef>
#include <vector>

/** The levels of a contour picture and the colours of the bands between them. */
class ContourBands
{
public:
    /** Between lowest and highest value; more colours are hard to distinguish. */
    static constexpr int maxSteps = 15;

    /** @param values of the picture; equal ones have no levels. */
    explicit ContourBands(const std::vector<double>& values, bool wantsLogarithms = false);

    /** Ascending, at round values, all inside the range. */
    const std::vector<double>& levels() const { return levelValues; }

    /** Whether the levels are even in their logarithm: asked for, and the values span decades. */
    bool areLogarithmic() const { return isLogarithmic; }

    QString label(double level) const;

    /** Of the values that the colours represent. */
    const QwtInterval& range() const { return valueRange; }

    /** @param band from 0, below the first level, to levels().size(), above the last one. */
    QColor colour(std::size_t band) const;

private:
    QwtInterval valueRange;
    std::vector<double> levelValues;
    double levelStep = 0.0;
    bool isLogarithmic;
};
