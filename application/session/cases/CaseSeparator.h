#pragma once

#include <string_view>

/**
 * The separator of a file whose first bytes are `sample`: of tab, semicolon and comma the one under
 * which most records have as many cells as the heading, and more than one; among equals the one
 * with more cells, then in this order, so that a comma which may be a decimal one yields. A heading
 * without any of them is one column, and the answer is the comma.
 * @param isWholeFile whether the sample's last record is complete.
 */
char recogniseSeparator(std::string_view sample, bool isWholeFile);
