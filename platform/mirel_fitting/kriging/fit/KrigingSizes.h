#pragma once

#include <cstddef>

/** Numbers of cases that decide how Kriging is fitted. */
struct KrigingSizes
{
    std::size_t maxSearched = 5000; ///< more take lengths and nugget from a subset
    /** Up to so many, the subset's are refined by two steps with all cases, beyond by one. */
    std::size_t maxRefinedTwice = 7000;
    std::size_t maxRefined = 10000; ///< more are not refined
    std::size_t maxExact = 10000;   ///< more have no correlation matrix of all of them
    std::size_t subset = 10000;     ///< what is then modelled exactly
    std::size_t searched = 2500;    ///< the subset for lengths and nugget
    std::size_t neighbours = 60;
    std::size_t measured = 5000;  ///< cases that are left out to choose by and to report
    std::size_t estimated = 1000; ///< of these, for the parameters of the neighbours' part
};
