#pragma once

#include <vector>

/** A sum over a table of numbers in which each has a factor given by its position: by it an
 * exported file sees a number that was changed where no check point is near. */
struct TableSum
{
    explicit TableSum(const std::vector<double>& numbers);

    double value = 0.0;
    double tolerance = 0.0;
};
