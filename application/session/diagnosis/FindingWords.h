#pragma once

#include <cstddef>
#include <string>
#include <vector>

/** Pieces of sentences. */
namespace FindingWords {
/** As shortList(). */
std::string names(const std::vector<std::string>& names);

/** "case 7", "cases 4, 9 and 12", "cases 1, 2, 3, 4, 5 and 8 more": as shortList().
 *  @param positions from 0. */
std::string cases(const std::vector<std::size_t>& positions);

/** The same at the beginning of a sentence: "Case 7". */
std::string casesFirst(const std::vector<std::size_t>& positions);

/** A share, 0 to 1, in percent: "12 %". */
std::string percent(double share);
} // namespace FindingWords
