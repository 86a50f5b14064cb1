#include "session/cases/ColumnRole.h"

#include "session/cases/ColumnFigures.h"
#include "session/cases/ColumnNames.h"
#include "session/text/DateText.h"
#include "session/text/DecimalText.h"
#include "session/text/QuotedText.h"
#include "session/text/SettingHint.h"

#include <mirel_fitting/numerics/TextPieces.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <optional>

namespace {
/** Fewer numbers come in any order by chance. */
constexpr std::size_t fewestRuns = 5;

constexpr char ofAnotherFit[] = "a figure of another fit by its name";

bool isWholeNumber(double number)
{
    constexpr double largestExact = 9007199254740992.0;
    return std::floor(number) == number && std::fabs(number) < largestExact;
}

bool countsUp(const std::vector<double>& numbers)
{
    std::size_t filled = 0;
    double offset = 0.0;
    for (std::size_t row = 0; row < numbers.size(); ++row) {
        if (std::isnan(numbers[row])) {
            continue;
        }
        const double difference = numbers[row] - static_cast<double>(row);
        if (!isWholeNumber(numbers[row]) || (filled > 0 && difference != offset)) {
            return false;
        }
        offset = difference;
        ++filled;
    }
    return filled >= fewestRuns;
}

/** In the order of the cases, without missing ones. */
std::vector<double> filledNumbers(const std::vector<double>& numbers)
{
    std::vector<double> filled;
    std::copy_if(numbers.begin(), numbers.end(), std::back_inserter(filled),
                 [](double number) { return !std::isnan(number); });
    return filled;
}

bool areDifferent(std::vector<double> filled)
{
    std::sort(filled.begin(), filled.end());
    return std::adjacent_find(filled.begin(), filled.end()) == filled.end();
}

bool ascend(const std::vector<double>& filled)
{
    return std::adjacent_find(filled.begin(), filled.end(), std::greater_equal<>()) == filled.end();
}

bool areWhole(const std::vector<double>& filled)
{
    return std::all_of(filled.begin(), filled.end(), isWholeNumber);
}

/** Whether all are written like 19580329, and not all the same. */
bool areDates(const std::vector<double>& filled)
{
    const auto mayBeDate = [](double number) {
        constexpr double first = 19000101.0;
        constexpr double last = 21001231.0;
        if (!(number >= first && number <= last) || !isWholeNumber(number)) {
            return false;
        }
        const int date = static_cast<int>(number);
        const int month = date / 100 % 100;
        const int day = date % 100;
        return month >= 1 && month <= 12 && day >= 1 && day <= 31;
    };
    return std::all_of(filled.begin(), filled.end(), mayBeDate) && filled.front() != filled.back();
}

bool areYears(const std::vector<double>& filled)
{
    constexpr double first = 1000.0;
    constexpr double last = 3000.0;
    return filled.front() >= first && filled.back() < last;
}

/** What the numbers are that only say which case it is, "counts up by one, from 1 to 11"; empty for
 *  others. @param filled the numbers of the column. */
std::string numberingText(const CaseColumn& column, const std::vector<double>& filled)
{
    if (filled.size() < fewestRuns) {
        return "";
    }
    // The first column, whose cell in the heading is empty: an index.
    const bool isIndex = !column.isNamed && column.name == "C1";
    const bool isNumbering = isIndex || ColumnNames::isNameOf(NameOf::Numbering, column.name);
    const bool isSerial = ColumnNames::endsAsNumbering(column.name);
    const char* const text =
        countsUp(column.numbers) ? "counts up by one"
        : areWhole(filled) &&
                ((isNumbering && areDifferent(filled)) || (isSerial && ascend(filled)))
            ? "numbers the cases"
        : areDates(filled) ? "dates written as numbers"
        : ColumnNames::isNameOf(NameOf::Year, column.name) && ascend(filled) && areYears(filled)
            ? "years that only ascend"
        : ColumnNames::isNameOf(NameOf::Time, column.name) && ascend(filled)
            ? "times that only ascend"
            : "";
    const auto [least, greatest] = std::minmax_element(filled.begin(), filled.end());
    return *text == '\0' ? ""
                         : std::string(text) + ", from " + numberText(*least) + " to " +
                               numberText(*greatest);
}

std::string reasonOfTexts(const CaseColumn& column)
{
    const std::vector<std::string>& spellings = column.withoutNumber.spellings;
    if (!spellings.empty() && std::all_of(spellings.begin(), spellings.end(), isDateOrTime)) {
        return "dates or times";
    }
    return spellings.empty() ? "text" : "text, such as " + quotedText(spellings.front());
}

/** A line through all points (number, output), up to rounding. */
struct ExactLine
{
    double slope;
    double constant;
};

/** None unless both columns have several values in the same cases.
 *  @param rounding of the numbers, as a share of their range. */
std::optional<ExactLine> lineBetween(const std::vector<double>& numbers,
                                     const std::vector<double>& output, double rounding)
{
    constexpr std::size_t fewestValues = 5; // fewer lie on a line by chance

    // Through the cases with the least and the greatest output.
    std::size_t low = output.size();
    std::size_t high = output.size();
    const std::size_t cases = std::min(numbers.size(), output.size());
    const auto isFilled = [&](std::size_t row) {
        return std::isfinite(numbers[row]) && std::isfinite(output[row]);
    };
    for (std::size_t row = 0; row < cases; ++row) {
        if (isFilled(row)) {
            low = low == output.size() || output[row] < output[low] ? row : low;
            high = high == output.size() || output[row] > output[high] ? row : high;
        }
    }
    if (low == output.size() || output[low] == output[high] || numbers[low] == numbers[high]) {
        return std::nullopt;
    }
    const double slope = (numbers[high] - numbers[low]) / (output[high] - output[low]);
    const double tolerance = rounding * std::fabs(numbers[high] - numbers[low]);
    std::vector<double> values;
    for (std::size_t row = 0; row < cases; ++row) {
        if (!isFilled(row)) {
            continue;
        }
        const double onLine = numbers[low] + slope * (output[row] - output[low]);
        if (std::fabs(numbers[row] - onLine) > tolerance) {
            return std::nullopt;
        }
        if (values.size() < fewestValues &&
            std::find(values.begin(), values.end(), output[row]) == values.end()) {
            values.push_back(output[row]);
        }
    }
    if (values.size() < fewestValues) {
        return std::nullopt;
    }
    const double constant = numbers[low] - slope * output[low];
    return ExactLine{slope, std::fabs(constant) <= tolerance ? 0.0 : constant};
}

/** None where a number has none. */
std::vector<double> logarithmsOf(std::vector<double> numbers)
{
    for (double& number : numbers) {
        if (number <= 0.0) {
            return {};
        }
        number = std::log(number);
    }
    return numbers;
}

std::string lineText(const ExactLine& line, const std::string& name)
{
    constexpr int digits = 4;
    std::string text = line.slope == 1.0 ? "" : shownNumber(line.slope, digits) + " times ";
    text += quotedText(name);
    if (line.constant != 0.0) {
        text +=
            (line.constant < 0.0 ? " - " : " + ") + shownNumber(std::fabs(line.constant), digits);
    }
    return text;
}
} // namespace

std::string reasonsText(const ReasonedNames& names)
{
    constexpr std::size_t most = 8;
    std::vector<std::string> texts;
    for (const auto& [name, reason] : names) {
        if (texts.size() < most) {
            texts.push_back(quotedText(name) + " (" + reason + ')');
        }
    }
    return joinedText(texts) + andMore(names.size() - texts.size());
}

const char* roleName(ColumnRole::Role role)
{
    switch (role) {
    case ColumnRole::Input:
        return "input";
    case ColumnRole::Output:
        return "output";
    default:
        return "none";
    }
}

bool ColumnRoles::areRunNumbers(const CaseColumn& column)
{
    return !numberingText(column, filledNumbers(column.numbers)).empty();
}

std::string ColumnRoles::reasonAgainstInput(const CaseColumn& column)
{
    const std::string ofBlocks =
        ColumnNames::isNameOf(NameOf::Blocks, column.name)
            ? "blocks by its name, which may have a mean each" + settingHint(Setting::Blocks)
            : "";
    if (!column.isNumeric) {
        return ofBlocks.empty() ? reasonOfTexts(column) : ofBlocks;
    }
    const std::vector<double> filled = filledNumbers(column.numbers);
    const std::size_t cases = column.numbers.size();
    if (filled.empty()) {
        return cases == 0 ? "" : "no number in it"; // of no case nothing is known
    }
    if (filled.size() > 1 && std::count(filled.begin(), filled.end(), filled.front()) ==
                                 static_cast<std::ptrdiff_t>(filled.size())) {
        return "the same in every case, " + shownNumber(filled.front());
    }
    if (!ofBlocks.empty()) {
        return ofBlocks;
    }
    if (cases >= fewestRuns && 2 * filled.size() < cases) {
        return "lacks a number in " + std::to_string(cases - filled.size()) + " of " +
               std::to_string(cases) + " cases";
    }
    if (ColumnNames::isNameOf(NameOf::KindOfPoint, column.name)) {
        return "says which kind of point a case is";
    }
    if (ColumnNames::isNameOf(NameOf::FigureOfFit, column.name)) {
        return ofAnotherFit;
    }
    if (ColumnNames::isNameOf(NameOf::Repeat, column.name) && areWhole(filled)) {
        return "numbers the repeats";
    }
    return numberingText(column, filled);
}

std::string ColumnRoles::reasonAgainstInput(const CaseColumn& column, const CaseColumn& output)
{
    if (ColumnNames::areRepeats(column.name, output.name)) {
        return "named like the output " + quotedText(output.name);
    }
    if (ColumnNames::isNameOf(NameOf::Errors, column.name)) { // which may be the output itself
        return ofAnotherFit;
    }
    if (ColumnNames::isFigureOf(column.name, output.name)) {
        return "a figure of the output " + quotedText(output.name) + " by its name";
    }
    constexpr double fiveDigits = 1e-5;
    constexpr double threeDigits = 1e-3;
    const std::optional<ExactLine> line = lineBetween(column.numbers, output.numbers, fiveDigits);
    if (line) {
        return "equals " + lineText(*line, output.name) + ", an output";
    }
    return lineBetween(column.numbers, logarithmsOf(output.numbers), threeDigits) ||
                   lineBetween(logarithmsOf(column.numbers), output.numbers, threeDigits)
               ? "follows from " + quotedText(output.name) + ", an output, by a logarithm"
               : "";
}

std::vector<std::size_t>
ColumnRoles::lastThatHardlyRepeat(const CaseTable& table,
                                  const std::vector<std::size_t>& candidates)
{
    const auto hardlyRepeats = [&](std::size_t position) {
        const ColumnFigures figures = ColumnFigures::of(table.columns[position].numbers);
        return figures.hasMoreDistinct || 2 * figures.distinct > figures.count;
    };
    auto first = candidates.end();
    while (first != candidates.begin() && hardlyRepeats(*(first - 1))) {
        --first;
    }
    return first == candidates.begin() ? std::vector<std::size_t>()
                                       : std::vector<std::size_t>(first, candidates.end());
}

std::vector<std::pair<std::size_t, std::string>>
ColumnRoles::likelyOutputs(const CaseTable& table, std::vector<std::size_t> candidates)
{
    std::vector<std::pair<std::size_t, std::string>> outputs;
    // Whether a run converged is no quantity to predict, unless there is nothing else.
    const auto isTruth = [&](std::size_t position) {
        const std::vector<std::string>& columns = table.layout.truthValues;
        return std::find(columns.begin(), columns.end(), table.columns[position].name) !=
               columns.end();
    };
    while (candidates.size() > 1 && isTruth(candidates.back())) {
        candidates.pop_back();
    }
    if (candidates.size() < 2) {
        for (const std::size_t only : candidates) {
            outputs.emplace_back(only, "suggested: no other column can be one");
        }
        return outputs;
    }
    for (const std::size_t position : candidates) {
        // Behind x and before another column y is a coordinate.
        const bool isCoordinate =
            position > 0 && position != candidates.back() &&
            ColumnNames::isNameOf(NameOf::Y, table.columns[position].name) &&
            ColumnNames::isNameOf(NameOf::X, table.columns[position - 1].name);
        if (ColumnNames::isNameOf(NameOf::Output, table.columns[position].name) && !isCoordinate) {
            outputs.emplace_back(position, "suggested by its name");
        }
    }
    if (!outputs.empty() && outputs.size() < candidates.size()) {
        return outputs;
    }
    outputs.clear();
    for (const std::size_t position : lastThatHardlyRepeat(table, candidates)) {
        outputs.emplace_back(position, "suggested: its values hardly repeat");
    }
    if (outputs.empty()) {
        outputs.emplace_back(candidates.back(), "suggested, as the last one");
    }
    return outputs;
}
