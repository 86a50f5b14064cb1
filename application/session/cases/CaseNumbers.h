#pragma once

#include <surrogate_session/Export.h>

#include <cstddef>
#include <string>
#include <vector>

/**
 * Reads a choice of cases such as "3,7-9": numbers from 1 and ranges with both ends.
 * @param cases how many there are.
 * @return the chosen cases as positions from 0, ascending, each once.
 * @throw UsageError for anything else, and for a case that does not exist.
 */
SURROGATE_SESSION_EXPORT std::vector<std::size_t> readCaseNumbers(const std::string& text,
                                                                  std::size_t cases);

/** Such a text for these positions, ascending: runs of three and more as ranges, "1,2,4-9". */
SURROGATE_SESSION_EXPORT std::string caseNumbersText(const std::vector<std::size_t>& positions);
