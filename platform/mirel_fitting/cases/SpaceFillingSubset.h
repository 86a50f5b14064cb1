#pragma once

#include <mirel_fitting/cases/KrigingData.h>

#include <cstddef>
#include <vector>

/**
 * So many cases, spread over all of them: each new one is the farthest from those that there are,
 * among a random pool of five times as many. Choosing from all cases would take the corners of
 * their cloud only. Gonzalez: Clustering to minimize the maximum intercluster distance, Theor.
 * Comput. Sci. 38 (1985).
 *
 * Costs 5 size^2 distances, whatever the number of cases. Reports to FitProgress.
 * @param data the coordinates are used; distances count each input's range as 1.
 * @return ascending; all cases if they are no more than `size`.
 */
std::vector<std::size_t> spaceFillingSubset(const KrigingData& data, std::size_t size);

/** So many cases at random, ascending; the same for the same arguments. */
std::vector<std::size_t> randomSubset(std::size_t cases, std::size_t size);
