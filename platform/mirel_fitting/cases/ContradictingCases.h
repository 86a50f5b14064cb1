#pragma once

#include <mirel_fitting/cases/KrigingData.h>

#include <cstddef>

/** Distinct cases so near each other that their correlation is 1 up to rounding. */
class ContradictingCases
{
public:
    /** The largest distance of such cases along each input, relative to its range. */
    static double nearness();

    /**
     * The number of groups of such cases whose outputs differ by more than a smooth function could
     * change over so small a distance. O(inputs n log n) time for n cases, with
     * FitProgress::advance() for each input.
     * @param data coordinates and standardised outputs are used.
     */
    static std::size_t places(const KrigingData& data);
};
