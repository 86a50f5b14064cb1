#pragma once

#include "session/cases/CaseFileLayout.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/** A line of a sample; positions count from its beginning. */
struct SampleLine
{
    std::size_t begin = 0;
    std::size_t next = 0; ///< where the next one begins
    std::string_view text;

    static SampleLine at(std::string_view sample, std::size_t begin);
};

struct SampleRecord
{
    std::size_t begin = 0;     ///< after the record before, in bytes
    std::size_t beginLine = 1; ///< the line of that
    std::size_t line = 1;
    std::size_t comments = 0; ///< lines before `begin`
    bool followsEmptyLine = false;
    std::vector<std::string> cells;

    /** Without the empty ones at the end. */
    std::size_t filledCells() const;
};

/** The first records of a file's beginning under one separator. */
class SampleRecords
{
public:
    /** @param isWholeFile whether the last record is complete. */
    SampleRecords(std::string_view sample, bool isWholeFile, const CaseFileLayout& layout);

    /** The one of tab, semicolon, comma, bar and blanks that makes the most of the sample a table.
     */
    static char recognisedSeparator(std::string_view sample, bool isWholeFile,
                                    CaseFileLayout layout);

    bool isNumber(const std::string& cell) const;

    std::vector<SampleRecord> records;
    char separator;
    std::size_t cellCount = 1; ///< that most records have; 1 if none has more
    /** How many records have so many, and how many lines behind a quote that is never closed. */
    std::size_t coverage = 0;

private:
    double shareOfNumbers() const;
    bool hasEmptyColumn() const;
};
