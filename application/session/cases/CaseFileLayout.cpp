#include "session/cases/CaseFileLayout.h"

#include "session/text/SettingHint.h"

#include <mirel_fitting/numerics/TextPieces.h>

namespace {
std::string shownThousands(char separator)
{
    return separator == ' ' ? "blanks" : std::string("\"") + separator + '"';
}

/** @param number with one mark. */
std::string doubtText(const std::string& number)
{
    const std::size_t mark = number.find_first_of(".,");
    const std::string whole = number.substr(0, mark);
    const std::string rest = number.substr(mark + 1);
    const bool isComma = number[mark] == ',';
    return '"' + number + "\" taken for " + whole + '.' + rest + ", not for " + whole + rest +
           settingHint(Setting::DecimalMark, isComma ? "point" : "comma");
}
} // namespace

std::string CaseFileLayout::text() const
{
    std::vector<std::string> form;
    const auto add = [&](bool applies, const std::string& text) {
        if (applies) {
            form.push_back(text);
        }
    };
    const auto addColumns = [&](const std::string& what, const std::vector<std::string>& names,
                                const std::string& end = "") {
        add(!names.empty(), what + shortList(names) + end);
    };
    add(separator != ',', separator == blanks ? "columns separated by blanks"
                          : separator == '|'  ? "vertical bars"
                                              : wordFor(separator, separatorWords) + 's');
    add(hasDecimalComma, "decimal commas");
    if (!doubtfulNumber.empty()) {
        form.push_back(doubtText(doubtfulNumber));
    }
    add(thousandsSeparator != '\0', "thousands separated by " + shownThousands(thousandsSeparator));
    add(encoding == TextEncoding::Windows1252, "Windows-1252 text");
    add(encodingWord(encoding) == "utf-16", "UTF-16 text"); // of either byte order
    add(!hasHeading, "no heading (the columns are called C1, C2, ...)");
    add(isHeadingComment, "the heading from a comment line");
    add(hasRowNames, "a first column of row names without a heading");
    add(!units.empty() && !hasUnitsRow, "the units from a comment line");
    addColumns("names that are numbers (", numericNames, ")");
    addColumns("repeated names numbered (", numberedNames, ")");
    addColumns("truth values as 1 and 0 in ", truthValues);
    addColumns("units in the cells of ", unitsInCells);
    addColumns(u8"errors after \u00B1 left out in ", errorsInCells);

    std::vector<std::string> skipped;
    const auto addSkipped = [&](std::size_t count, const std::string& what,
                                const char* where = "") {
        if (count > 0) {
            skipped.push_back(countedText(count, what) + where);
        }
    };
    addSkipped(titleLines, "title line");
    addSkipped(commentLines, "comment line");
    if (hasUnitsRow) {
        skipped.emplace_back(units.empty() ? "a second heading" : "a units row");
    }
    addSkipped(repeatedHeadings, "repeated heading");
    addSkipped(linesBelow, "line", " below the table");
    const std::string skippedText = skipped.empty() ? "" : shortList(skipped) + " skipped";
    return joinedText(form) + (form.empty() || skipped.empty() ? "" : "; ") + skippedText;
}

std::string encodingWord(TextEncoding encoding)
{
    return encoding == TextEncoding::Utf8          ? "utf-8"
           : encoding == TextEncoding::Windows1252 ? "windows-1252"
                                                   : "utf-16";
}
