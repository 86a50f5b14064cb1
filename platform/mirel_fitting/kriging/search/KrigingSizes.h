#pragma once

#include <cstddef>

/** The numbers of distinct cases at which Kriging is fitted in another way, and sizes of samples.
 */
struct KrigingSizes
{
    /** Up to here lengths and nugget are estimated from all cases, beyond from a subset. */
    std::size_t maxSearched = 5000;
    /** Up to here the subset's estimate is refined by two steps with all cases. */
    std::size_t maxRefinedTwice = 7000;
    std::size_t maxRefined = 10000; ///< and up to here by one
    std::size_t maxExact = 10000;   ///< beyond, LargeKriging fits the cases
    std::size_t subset = 10000;     ///< cases of its exact model
    std::size_t searched = 2500; ///< cases of the subset that lengths and nugget are estimated from
    std::size_t neighbours = 60; ///< cases that a nearest-neighbour prediction uses
    std::size_t measured = 5000; ///< cases left out to choose a model and to report its errors
    std::size_t estimated = 1000; ///< of these, to estimate the parameters of NeighbourLayer
};
