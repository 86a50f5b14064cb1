#pragma once

#include <session/cases/CaseFileLayout.h>
#include <session/cases/ReadingChoices.h>

#include <cstddef>
#include <functional>
#include <string_view>

/**
 * The layout of a file whose first bytes, as UTF-8, are `sample`.
 *
 * Lines that begin with #, // or % are comments, unless most lines of the table do. The separator
 * is the one of tab, semicolon, comma and bar under which most records have the same number of
 * cells, two at least; ties go to the one with more numbers, then to the one with more cells.
 * Blanks separate where that makes more cells numbers. With no separator there is one column.
 *
 * The heading is the first record of as many cells, all filled and different, none of them a number
 * where the records below have numbers; of several such records the last one before the cases,
 * where an empty line or a title line comes before it. What stands above is a title. Without such a
 * record the heading is the comment line above the table, if it has as many cells; otherwise a
 * first record of numbers alone means that there is none. A record below the heading without a
 * number is a row of units if at least half of its cells read as units.
 *
 * @param isWholeFile whether the sample's last record is complete.
 * @return without commentLines and hasDecimalComma, which the whole file decides.
 */
CaseFileLayout recogniseLayout(std::string_view sample, bool isWholeFile,
                               const ReadingChoices& choices);

/**
 * The layout of a text of any length, from a sample of its beginning. Where skipped or comment
 * lines fill more than half of the sample, it is doubled.
 * @param read fills a buffer with the next bytes of UTF-8, at most `capacity`; returns how many, 0
 *             at the end.
 */
CaseFileLayout
recogniseLayout(const std::function<std::size_t(char* buffer, std::size_t capacity)>& read,
                std::size_t sampleSize, const ReadingChoices& choices);
