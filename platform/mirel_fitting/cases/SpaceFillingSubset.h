#pragma once

#include <mirel_fitting/cases/KrigingData.h>

#include <cstddef>
#include <vector>

/**
 * `size` cases spread over all: each new one is that of a random pool of 5 size cases which is
 * farthest from those chosen before. From a larger pool mostly cases on the boundary are chosen.
 * Gonzalez: Clustering to minimize the maximum intercluster distance, Theor. Comput. Sci. 38
 * (1985).
 *
 * Costs 5 size^2 distances, whatever the number of cases. Reports to FitProgress.
 * @param data the coordinates are used; distances count each input's range as 1.
 * @return ascending; all cases if they are no more than `size`.
 */
std::vector<std::size_t> spaceFillingSubset(const KrigingData& data, std::size_t size);

/** `size` indices of `cases` at random, ascending; the same for the same arguments. */
std::vector<std::size_t> randomSubset(std::size_t cases, std::size_t size);

/** One row at random of each of `size` stretches of equal length, ascending; all rows if they are
 *  no more. Regular steps could miss a periodic pattern. The same for the same arguments. */
std::vector<std::size_t> stratifiedRows(std::size_t rows, std::size_t size);
