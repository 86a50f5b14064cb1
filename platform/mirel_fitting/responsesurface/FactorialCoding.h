#pragma once

#include <mirel_fitting/ResponseSurfaceStatistics.h>

#include <cstddef>
#include <vector>

/** InputCoding::Factorial: the inputs coded to their factorial points instead of their ranges. An
 *  input has such points if it takes five symmetric levels: axial, factorial, centre, factorial,
 *  axial. */
class FactorialCoding
{
public:
    /** @param inputs one array of `cases` finite values per input, borrowed for the call. */
    FactorialCoding(const std::vector<double*>& inputs, std::size_t cases);

    /** Turns figures of inputs coded to [-1, 1] over their ranges into those of this coding. */
    void apply(ResponseSurfaceStatistics& statistics) const;

private:
    std::vector<double> shares; // of each input's range that its factorial points span; 1: none
};
