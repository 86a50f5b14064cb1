#pragma once

#include <string_view>

/**
 * The separator of a file whose first bytes are `sample`: of tab, semicolon and comma the one under
 * which most records have as many cells as the heading, and more than one. Ties go to the one with
 * more cells, then to the first in this order, since a comma may be a decimal one. The comma if the
 * heading holds none of the three, and so is one column.
 * @param isWholeFile whether the sample's last record is complete.
 */
char recogniseSeparator(std::string_view sample, bool isWholeFile);
