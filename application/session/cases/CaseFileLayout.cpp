#include "session/cases/CaseFileLayout.h"

#include "session/text/SettingHint.h"

#include <mirel_fitting/numerics/TextPieces.h>

namespace {
std::string shownThousands(char separator)
{
    return separator == ' ' ? "blanks" : std::string("\"") + separator + '"';
}
} // namespace

std::string CaseFileLayout::text() const
{
    std::vector<std::string> form;
    if (separator != ',') {
        form.push_back(separator == blanks ? "columns separated by blanks"
                       : separator == '|'  ? "vertical bars"
                                           : wordFor(separator, separatorWords) + 's');
    }
    if (hasDecimalComma) {
        form.emplace_back("decimal commas");
    }
    if (!doubtfulNumber.empty()) {
        const std::size_t mark = doubtfulNumber.find_first_of(".,");
        std::string decimal = doubtfulNumber;
        decimal[mark] = '.';
        const bool isComma = doubtfulNumber[mark] == ',';
        form.push_back('"' + doubtfulNumber + "\" taken for " + decimal + ", not for " +
                       std::string(decimal).erase(mark, 1) +
                       settingHint(Setting::DecimalMark, isComma ? "point" : "comma"));
    }
    if (thousandsSeparator != '\0') {
        form.push_back("thousands separated by " + shownThousands(thousandsSeparator));
    }
    if (encoding != TextEncoding::Utf8) {
        form.push_back(encoding == TextEncoding::Windows1252 ? "Windows-1252 text" : "UTF-16 text");
    }
    if (!hasHeading) {
        form.emplace_back("no heading (the columns are called C1, C2, ...)");
    }
    if (isHeadingComment) {
        form.emplace_back("the heading from a comment line");
    }
    if (hasRowNames) {
        form.emplace_back("a first column of row names without a heading");
    }
    if (!units.empty() && !hasUnitsRow) {
        form.emplace_back("the units from a comment line");
    }

    if (!numericNames.empty()) {
        form.push_back("names that are numbers (" + shortList(numericNames) + ')');
    }
    if (!numberedNames.empty()) {
        form.push_back("repeated names numbered (" + shortList(numberedNames) + ')');
    }
    if (!truthValues.empty()) {
        form.push_back("truth values as 1 and 0 in " + shortList(truthValues));
    }
    if (!unitsInCells.empty()) {
        form.push_back("units in the cells of " + shortList(unitsInCells));
    }
    if (!errorsInCells.empty()) {
        form.push_back(u8"errors after \u00B1 left out in " + shortList(errorsInCells));
    }

    std::vector<std::string> skipped;
    if (titleLines > 0) {
        skipped.push_back(countedText(titleLines, "title line"));
    }
    if (commentLines > 0) {
        skipped.push_back(countedText(commentLines, "comment line"));
    }
    if (hasUnitsRow) {
        skipped.emplace_back(units.empty() ? "a second heading" : "a units row");
    }
    if (repeatedHeadings > 0) {
        skipped.push_back(countedText(repeatedHeadings, "repeated heading"));
    }
    if (linesBelow > 0) {
        skipped.push_back(countedText(linesBelow, "line") + " below the table");
    }
    std::vector<std::string> parts;
    if (!form.empty()) {
        parts.push_back(joinedText(form));
    }
    if (!skipped.empty()) {
        parts.push_back(shortList(skipped) + " skipped");
    }
    return joinedText(parts, "; ");
}

std::string encodingWord(TextEncoding encoding)
{
    return encoding == TextEncoding::Utf8          ? "utf-8"
           : encoding == TextEncoding::Windows1252 ? "windows-1252"
                                                   : "utf-16";
}
