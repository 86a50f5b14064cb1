#pragma once

#include <cstddef>

/**
 * The numbers of distinct cases at which Kriging is fitted in another way, and sizes of samples.
 * They bound time and memory: an evaluation of n cases costs n^3 / 6 multiplications and two n x n
 * matrices. Figures: docs/performance.md, "Many cases"; tests make them smaller.
 */
struct KrigingSizes
{
    /** Up to here lengths and nugget are estimated from all cases, beyond from a subset: a search
     *  with 4000 takes 20 s. */
    std::size_t maxSearched = 5000;
    /** Up to here the subset's estimate is refined by two steps with all cases, beyond by one: each
     *  costs an evaluation with its gradient. */
    std::size_t maxRefinedTwice = 7000;
    /** Beyond, LargeKriging fits the cases: two matrices of 10 000 take 0.9 GiB. */
    std::size_t maxExact = 10000;
    /** Cases of its exact model: as many as have one. The error at other cases falls with their
     *  number (100 000 cases of borehole: 8.3e-5 deviations with 4000 of them, 5.2e-5 with 8000).
     */
    std::size_t subset = 10000;
    /** Cases of a subset that lengths and nugget are estimated from: an eighth of the time of a
     *  search with maxSearched. The nugget of a smooth output may be too large for more cases, so
     *  that the least one is tried, too. */
    std::size_t searched = 2500;
    /** Cases that a nearest-neighbour prediction uses: it costs the cube of their number. */
    std::size_t neighbours = 60;
    /** Cases left out to choose a model and to report its errors: a root mean square of so many is
     *  good to 1 %. */
    std::size_t measured = 5000;
    /** Of these, to estimate the parameters of NeighbourLayer by some 200 trials. */
    std::size_t estimated = 1000;
};
