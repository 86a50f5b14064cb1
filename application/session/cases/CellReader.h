#pragma once

#include <session/cases/CaseFileLayout.h>
#include <session/cases/ReadingChoices.h>
#include <session/text/CellValue.h>

#include <string_view>

/** Reads cells as the layout of their file and the choices of the user say. */
class CellReader
{
public:
    /** @param options borrowed for life. */
    CellReader(const ReadingOptions& options, const CaseFileLayout& layout)
        : missing(options.missing),
          decimalComma((layout.separator != ',' || layout.hasDecimalComma) &&
                       layout.thousandsSeparator != ',' && options.decimalMark != CellValue::Point),
          thousands(layout.thousandsSeparator)
    {}

    CellValue read(std::string_view text) const
    {
        const CellValue value = CellValue::read(text, decimalComma, thousands);
        return !missing.isEmpty() && missing.contains(text, value) ? CellValue() : value;
    }

private:
    const MissingWords& missing;
    bool decimalComma; ///< whether numbers may have one
    char thousands;
};
