#pragma once

#include <vector>

/** output = offset + scale * standardised output, whose mean is 0 and variance 1. */
struct OutputScale
{
    double offset = 0.0;
    double scale = 1.0;

    /** From finite values, at least one. If all are equal, `offset` is their value and `scale` 1.
     */
    static OutputScale of(const std::vector<double>& output);

    std::vector<double> standardise(const std::vector<double>& output) const;

    /** Sum of squares of the standardised output, independent of the order of its values. */
    double sumOfSquares(const std::vector<double>& output) const;
};
