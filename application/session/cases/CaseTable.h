#pragma once

#include <session/text/CellTexts.h>

#include <surrogate_session/Export.h>

#include <cstddef>
#include <string>
#include <vector>

/** One column of a case file, as CaseFileReader understood it. */
struct CaseColumn
{
    std::string name;

    /** Whether every filled cell is a number; a column without a filled cell is numeric. */
    bool isNumeric = true;

    /** Numeric column: one per case, NaN for a missing cell, infinity for a number that a double
     *  cannot hold. */
    std::vector<double> numbers;

    /** Text column: one per case, "" for a missing cell. Empty where `cells` is kept. */
    std::vector<std::string> texts;

    /** One per case, the text of the cell as the file has it, if the reader was asked to keep it.
     */
    CellTexts cells;

    /** Text column: the first filled cell that is no number, and the line of its case. */
    std::string firstText;
    std::size_t firstTextLine = 0;
};

/** A case file as columns. */
struct SURROGATE_SESSION_EXPORT CaseTable
{
    /** The names of the columns, in their order. */
    std::vector<std::string> names() const;

    std::string path;
    std::vector<CaseColumn> columns;
    std::size_t cases = 0;
    char separator = ',';
    /** Whether numbers of the file are written with one; never where the separator is a comma. */
    bool hasDecimalComma = false;
};
