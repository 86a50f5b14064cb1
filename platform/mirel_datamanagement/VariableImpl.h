#pragma once

#include <mirel_datamanagement/CopyOnWriteColumn.h>
#include <mirel_datamanagement/Variable.h>

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/**
 * What a project keeps of a variable. It lives in the variable, not in the project, so that a
 * variable that outlives its project still knows its name and range.
 */
class MIREL_DATAMANAGEMENT_NO_EXPORT Variable::Impl
{
public:
    Impl(std::string name, Nature nature, std::vector<double> values);
    Impl(std::string name, Nature nature, std::vector<std::string> values);

    /** Rows for new records: room first, for every column of a project, then the missing cells. */
    void prepareToAppend(std::size_t rows);
    void appendMissing(std::size_t rows) noexcept;

    /** Rows of removed records: eraseRow() cannot fail after prepareToErase(). */
    void prepareToErase();
    void eraseRow(std::size_t row) noexcept;

    std::pair<double, double> rangeOfValues() const;

    const std::size_t identity;
    std::string nameText;
    Nature natureValue;
    const bool holdsNumbers;

    /** The project, while it is open; only compared, never dereferenced. */
    const void* owner = nullptr;
    bool inProject = false;

    /** As set by the user; unset: minimum and maximum of the values. */
    std::optional<std::pair<double, double>> chosenRange;
    mutable std::optional<std::pair<double, double>> knownRangeOfValues;

    /** One of the two is in use, one cell per record of the project. */
    CopyOnWriteColumn<double> numbers;
    CopyOnWriteColumn<std::string> texts;
};
