#pragma once

#include <mirel_fitting/cases/KrigingData.h>

#include <cstddef>

/** Cases that are distinct, but so near each other that no correlation tells them apart. */
class ContradictingCases
{
public:
    /** The share of the range of every input that they are apart at most. */
    static double nearness();

    /**
     * The places where the outputs of such cases differ by more than a slope between them could
     * explain. O(inputs n log n) time for n cases, with FitProgress::advance() for each input.
     * @param data coordinates and standardised outputs are used.
     */
    static std::size_t places(const KrigingData& data);
};
