#pragma once

#include "session/cases/SampleRecords.h"

#include <cstddef>
#include <optional>
#include <vector>

/** Finds the parts of a table: titles, heading, units, row names. Records are given by position. */
class TableParts
{
public:
    /** @param sample borrowed for life. */
    explicit TableParts(const SampleRecords& sample);

    std::size_t columns() const { return width; }

    bool isNumeric(std::size_t column) const { return column < width && numericColumns[column]; }

    std::optional<std::size_t> heading() const;

    /** A record that may be a faulty heading: of texts, some of them missing or repeated. */
    std::optional<std::size_t> faultyHeading() const;

    bool hasRowNames(std::size_t heading) const;

    /** Whether a word with a colon stands before the names: "Data: x y". */
    bool hasLabel(std::size_t record) const;

    bool isOfNumbersAlone(std::size_t record) const;

    /** Whether it has a number where the records below have numbers. */
    bool isCase(std::size_t record) const { return numbersIn(records[record], 0) > 0; }

    bool readsAsUnits(std::size_t record) const;

    /** Whether it holds a text wherever the records below have numbers, in three columns at least:
     *  of a case that failed the inputs would be known. */
    bool readsAsSecondHeading(std::size_t record) const;

    /** Whether these cells can be the names of the columns. */
    bool canBeNames(const SampleRecord& record, bool firstIsMissing) const;

private:
    bool isNumericBelow(std::size_t column) const;
    std::size_t numbersIn(const SampleRecord& record, std::size_t shift) const;
    bool isHeading(std::size_t record) const;
    bool hasRepeatedNames(std::size_t record) const;
    bool canNameRows() const;
    bool isEntry(std::size_t record) const;
    bool isTitle(std::size_t record) const;

    const SampleRecords& sample;
    const std::vector<SampleRecord>& records;
    std::size_t width;
    std::vector<bool> numericColumns;
    bool hasNumericColumn = false;
    bool firstColumnNames = false;
};
