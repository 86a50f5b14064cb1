#pragma once

#include <QColor>
#include <qwt_interval.h>

#include <cstddef>
#include <vector>

/** How values become colours: the levels between them, and one colour for what lies between two. */
class ContourBands
{
public:
    /** From lowest to highest value; more are hard to tell apart by their colours. */
    static constexpr int mostSteps = 15;

    /** @param values those of the picture; if they are all the same there are no levels. */
    explicit ContourBands(const std::vector<double>& values);

    /** Ascending, at round values, all inside the range; their distance is step(). */
    const std::vector<double>& levels() const { return levelValues; }
    double step() const { return levelStep; }

    /** What the colours stand for. */
    const QwtInterval& range() const { return valueRange; }

    /** @param band from 0, below the first level, to levels().size(), above the last one. */
    QColor colour(std::size_t band) const;

private:
    QwtInterval valueRange;
    std::vector<double> levelValues;
    double levelStep = 0.0;
};
