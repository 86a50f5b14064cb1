#pragma once

#include <session/cases/CaseFileLayout.h>
#include <session/cases/ReadingChoices.h>
#include <session/cases/TableParts.h>

#include <vector>

/**
 * Finds out what points and commas in the numbers of a table are: sets the layout's
 * thousandsSeparator, doubtfulNumber and hasDecimalComma as far as the choices leave them open.
 *
 * A mark separates thousands if a number cannot be read otherwise (1,234.5), or if all numbers with
 * it may be groups of three digits while other columns have the other mark as their decimal mark
 * (12.345 beside 2,5). A number is in doubt if no number has other digits behind a mark, and 987
 * stands in the same column, or the mark is the less usual decimal mark of such files: a point
 * beside semicolons, a comma elsewhere. Between commas quoted cells with commas have thousands if
 * all of them can, else decimal commas if no number has a point.
 */
void takeNumberMarks(const std::vector<SampleRecord>& records, const TableParts& parts,
                     const ReadingChoices& choices, CaseFileLayout& layout);
