#include "session/cases/ColumnRole.h"

#include "session/cases/ColumnFigures.h"
#include "session/text/DecimalText.h"
#include "session/text/QuotedText.h"
#include "session/text/SettingHint.h"
#include "session/text/AsciiText.h"

#include <mirel_fitting/numerics/TextPieces.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <functional>
#include <iterator>
#include <optional>
#include <string_view>

namespace {
/** Fewer numbers come in any order by chance. */
constexpr std::size_t fewestRuns = 5;

/** Letters and digits alone, the letters of ASCII in lower case: "Run No." is "runno". A unit in
 *  brackets behind the name does not count. */
std::string plainName(const std::string& name)
{
    std::string plain;
    for (const char character : name.substr(0, name.find_first_of("[(", 1))) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte >= 0x80 || std::isalnum(byte) != 0) {
            plain += static_cast<char>(byte < 0x80 ? std::tolower(byte) : byte);
        } else if (character == '#') {
            plain += character;
        }
    }
    return plain;
}

std::string withoutNumber(std::string plain)
{
    while (!plain.empty() && isDigit(plain.back())) {
        plain.pop_back();
    }
    return plain;
}

/** The plain name without a number, or an a, b or c after a blank, at its end: "OD b". A letter
 *  after an underscore is a subscript: "T_h" and "T_c" are different quantities. */
std::string withoutRepeat(const std::string& name)
{
    std::string plain = plainName(name);
    const std::string_view text = trimmedText(name);
    if (text.size() > 2 && text[text.size() - 2] == ' ' &&
        std::string_view("abcABC").find(text.back()) != std::string_view::npos) {
        plain.pop_back();
    }
    return withoutNumber(plain);
}

template <std::size_t Count>
bool isOneOf(const std::string& word, const std::array<std::string_view, Count>& words)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

bool isNameOfNumbering(const std::string& name)
{
    static constexpr std::array<std::string_view, 48> words = {
        "",         "#",        "run",    "runs",      "runorder",      "order",    "std",
        "num",      "stdorder", "index",  "idx",       "standardorder", "case",     "row",
        "obs",      "trial",    "exp",    "ids",       "observation",   "sample",   "seq",
        "sequence", "test",     "lfd",    "versuch",   "experiment",    "versuchs", "unnamed0",
        "part",     "serial",   "serien", "specimen",  "lot",           "batch",    "barcode",
        "point",    "node",     "record", "nodelabel", "scan",          "key",      "job",
        "sim",      "design",   "eval",   "coupon",    "simulation",    "messung"};
    std::string plain = plainName(name);
    for (const std::string_view end : {"number", "nummer", "no", "nr", "id"}) {
        if (plain.size() >= end.size() &&
            plain.compare(plain.size() - end.size(), end.size(), end) == 0) {
            plain.resize(plain.size() - end.size());
            return isOneOf(plain, words);
        }
    }
    return !plain.empty() && isOneOf(plain, words);
}

/** "Response 2 Activity", as programs for the design of experiments name outputs. */
bool isNumberedResponse(const std::string& name)
{
    constexpr std::string_view word = "response";
    const std::string plain = plainName(name);
    return plain.size() > word.size() && plain.compare(0, word.size(), word) == 0 &&
           isDigit(plain[word.size()]);
}

bool isNameOfOutput(const std::string& name)
{
    static constexpr std::array<std::string_view, 9> words = {
        "y", "f", "out", "output", "response", "result", "target", "ausgang", "zielgroesse"};
    return isNumberedResponse(name) || isOneOf(withoutNumber(plainName(name)), words);
}

/** "Stress predicted" or "sd of stress" beside the output "Stress", as plain names. */
bool isFigureOf(const std::string& name, const std::string& output)
{
    static constexpr std::array<std::string_view, 17> words = {
        "hat",   "pred",  "predicted", "prediction", "fit",  "fitted", "err",      "error", "lower",
        "upper", "stdev", "std",       "sd",         "sdof", "resid",  "residual", "sem"};
    const std::size_t at = output.empty() ? std::string::npos : name.find(output);
    return at != std::string::npos && name.size() > output.size() &&
           (at == 0 ? isOneOf(name.substr(output.size()), words)
                    : at + output.size() == name.size() && isOneOf(name.substr(0, at), words));
}

constexpr std::array<std::string_view, 5> namesOfBlocks = {"block", "blocks", "blk", "bloc",
                                                           "bloque"};

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

bool areDifferentWholeNumbers(const std::vector<double>& numbers)
{
    std::vector<double> filled = filledNumbers(numbers);
    if (filled.size() < fewestRuns || !std::all_of(filled.begin(), filled.end(), isWholeNumber)) {
        return false;
    }
    std::sort(filled.begin(), filled.end());
    return std::adjacent_find(filled.begin(), filled.end()) == filled.end();
}

/** Whether all are written like 19580329, and not all the same. */
bool areDates(const std::vector<double>& numbers)
{
    const auto mayBeDate = [](double number) {
        constexpr double first = 19000101.0;
        constexpr double last = 21001231.0;
        if (std::isnan(number)) {
            return true;
        }
        if (!(number >= first && number <= last) || !isWholeNumber(number)) {
            return false;
        }
        const int date = static_cast<int>(number);
        const int month = date / 100 % 100;
        const int day = date % 100;
        return month >= 1 && month <= 12 && day >= 1 && day <= 31;
    };
    if (!std::all_of(numbers.begin(), numbers.end(), mayBeDate)) {
        return false;
    }
    const std::vector<double> filled = filledNumbers(numbers);
    return filled.size() >= fewestRuns && filled.front() != filled.back();
}

bool ascend(const std::vector<double>& filled)
{
    return filled.size() >= fewestRuns &&
           std::adjacent_find(filled.begin(), filled.end(), std::greater_equal<>()) == filled.end();
}

/** Whether each case has a later year than the one before. */
bool areAscendingYears(const CaseColumn& column)
{
    constexpr double first = 1000.0;
    constexpr double last = 3000.0;
    static constexpr std::array<std::string_view, 5> words = {"year", "years", "yr", "jahr",
                                                              "date"};
    const std::vector<double> filled = filledNumbers(column.numbers);
    return isOneOf(plainName(column.name), words) && ascend(filled) && filled.front() >= first &&
           filled.back() < last;
}

/** Whether each case has a later time than the one before. */
bool areAscendingTimes(const CaseColumn& column)
{
    static constexpr std::array<std::string_view, 14> words = {
        "time",     "timestamp", "date",    "datetime", "zeit", "zeitstempel", "epoch",
        "unixtime", "datum",     "uhrzeit", "xvalue",   "ts",   "epochms",     "timestampms"};
    return isOneOf(plainName(column.name), words) && ascend(filledNumbers(column.numbers));
}

/** Whether each case has a higher whole number than the one before under a name such as PartNo. */
bool areSerialNumbers(const CaseColumn& column)
{
    std::string name = column.name.substr(0, column.name.find_first_of("[(", 1));
    while (!name.empty() && std::isalnum(static_cast<unsigned char>(name.back())) == 0) {
        name.pop_back();
    }
    const std::string_view end =
        std::string_view(name).substr(name.size() - std::min<std::size_t>(2, name.size()));
    const std::string plain = plainName(std::string(end));
    const auto before = static_cast<unsigned char>(name.size() > 2 ? name[name.size() - 3] : 'a');
    const bool isWord =
        std::isalpha(before) == 0 ||
        (std::islower(before) != 0 && std::islower(static_cast<unsigned char>(end.front())) == 0);
    const std::vector<double> filled = filledNumbers(column.numbers);
    return (plain == "no" || plain == "nr" || plain == "id") && isWord && ascend(filled) &&
           std::all_of(filled.begin(), filled.end(), isWholeNumber);
}

/** What the numbers are that only say which case it is; empty for others. */
std::string numberingText(const CaseColumn& column)
{
    // The first column, whose cell in the heading is empty: an index.
    const bool isIndex = !column.isNamed && column.name == "C1";
    return countsUp(column.numbers) ? "counts up by one, "
           : ((isNameOfNumbering(column.name) || isIndex) &&
              areDifferentWholeNumbers(column.numbers)) ||
                   areSerialNumbers(column)
               ? "numbers the cases, "
           : areDates(column.numbers)  ? "dates written as numbers, "
           : areAscendingYears(column) ? "years that only ascend, "
           : areAscendingTimes(column) ? "times that only ascend, "
                                       : "";
}

/** "from 1 to 11". */
std::string spanText(const std::vector<double>& numbers)
{
    double least = std::nan("");
    double greatest = least;
    for (const double number : numbers) {
        least = std::fmin(least, number);
        greatest = std::fmax(greatest, number);
    }
    return "from " + numberText(least) + " to " + numberText(greatest);
}

bool isMonth(const std::string& word)
{
    static constexpr std::array<std::string_view, 15> months = {"jan", "feb", "mar", "apr", "may",
                                                                "jun", "jul", "aug", "sep", "oct",
                                                                "nov", "dec", "mai", "okt", "dez"};
    return word.size() >= 3 && isOneOf(word.substr(0, 3), months);
}

/** "1/8", "1:4", "0.5-1.5" and "2.5-", which have the signs of dates. */
bool isFractionOrSpan(const std::string& text)
{
    if (text.find_first_not_of("0123456789.-/:") != std::string::npos) {
        return false;
    }
    std::string signs;
    std::size_t longest = 0;
    std::size_t digits = 0;
    for (const char character : text) {
        digits = isDigit(character) ? digits + 1 : 0;
        longest = std::max(longest, digits);
        signs += isDigit(character) ? "" : std::string(1, character);
    }
    constexpr std::size_t digitsOfYear = 4;
    if (signs.find(':') != std::string::npos) {
        return text.size() < 3 || !isDigit(text[text.size() - 2]); // a time has two digits there
    }
    return signs.find_first_not_of(signs.front()) != std::string::npos ||
           (signs.size() == 1 && longest < digitsOfYear);
}

/** Groups of digits with the separators of dates and times between them, at least two; month names
 *  and the like may stand among them. */
bool isDateOrTime(const std::string& text)
{
    std::size_t groups = 0;
    bool hasSeparator = false;
    if (isFractionOrSpan(text)) {
        return false;
    }
    for (std::size_t i = 0; i < text.size();) {
        std::size_t end = i;
        while (end < text.size() && isDigit(text[end])) {
            ++end;
        }
        if (end > i) {
            ++groups;
            i = end;
            continue;
        }
        while (end < text.size() && std::isalpha(static_cast<unsigned char>(text[end])) != 0) {
            ++end;
        }
        if (end > i) {
            const std::string word = plainName(text.substr(i, end - i));
            static constexpr std::array<std::string_view, 7> marks = {"t",   "z",   "am", "pm",
                                                                      "utc", "gmt", "uhr"};
            if (!isMonth(word) && !isOneOf(word, marks)) {
                return false;
            }
            hasSeparator = hasSeparator || isMonth(word);
            i = end;
            continue;
        }
        if (std::string_view(" -/.:,+").find(text[i]) == std::string_view::npos) {
            return false;
        }
        hasSeparator = hasSeparator || std::string_view("-/.:").find(text[i]) < 4;
        ++i;
    }
    return groups >= 2 && hasSeparator;
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
    return !numberingText(column).empty();
}

std::string ColumnRoles::reasonAgainstInput(const CaseColumn& column)
{
    const std::string ofBlocks =
        isOneOf(plainName(column.name), namesOfBlocks)
            ? "blocks by its name, which may have a mean each" + settingHint(Setting::Blocks)
            : "";
    if (!column.isNumeric) {
        return ofBlocks.empty() ? reasonOfTexts(column) : ofBlocks;
    }
    double first = std::nan("");
    std::size_t filled = 0;
    bool isConstant = true;
    for (const double number : column.numbers) {
        if (!std::isnan(number)) {
            first = filled++ == 0 ? number : first;
            isConstant = isConstant && number == first;
        }
    }
    if (filled == 0) {
        return column.numbers.empty() ? "" : "no number in it"; // of no case nothing is known
    }
    if (isConstant && filled > 1) {
        return "the same in every case, " + shownNumber(first);
    }
    if (!ofBlocks.empty()) {
        return ofBlocks;
    }
    if (column.numbers.size() >= fewestRuns && 2 * filled < column.numbers.size()) {
        return "lacks a number in " + std::to_string(column.numbers.size() - filled) + " of " +
               std::to_string(column.numbers.size()) + " cases";
    }
    static constexpr std::array<std::string_view, 3> kinds = {"pttype", "pointtype", "centerpt"};
    if (isOneOf(plainName(column.name), kinds)) {
        return "says which kind of point a case is";
    }
    static constexpr std::array<std::string_view, 13> figures = {
        "fits",      "resi", "sres",       "tres",     "fitted", "residual", "residuals",
        "predicted", "yhat", "prediction", "leverage", "resid",  "cooksd"};
    if (isOneOf(withoutNumber(plainName(column.name)), figures)) {
        return "a figure of another fit by its name";
    }
    static constexpr std::array<std::string_view, 6> repeats = {
        "replicate", "replication", "rep", "repeat", "repetition", "wiederholung"};
    if (isOneOf(plainName(column.name), repeats) &&
        std::all_of(column.numbers.begin(), column.numbers.end(),
                    [](double number) { return std::isnan(number) || isWholeNumber(number); })) {
        return "numbers the repeats";
    }
    const std::string numbering = numberingText(column);
    return numbering.empty() ? "" : numbering + spanText(column.numbers);
}

std::string ColumnRoles::reasonAgainstInput(const CaseColumn& column, const CaseColumn& output)
{
    const std::string stem = withoutRepeat(column.name);
    const bool hasNumber =
        stem != plainName(column.name) || withoutRepeat(output.name) != plainName(output.name);
    if ((isNumberedResponse(column.name) && isNumberedResponse(output.name)) ||
        (hasNumber && !stem.empty() && stem == withoutRepeat(output.name))) {
        return "named like the output " + quotedText(output.name);
    }
    const std::string plain = plainName(column.name);
    if (plain == "error") { // which may be the output itself
        return "a figure of another fit by its name";
    }
    const std::string plainOutput = plainName(output.name);
    // "T_upper" beside "T" is a quantity of its own, "y upper" a limit of y.
    const bool isSubscript = plainOutput.size() < 3 && column.name.find('_') != std::string::npos &&
                             (plain == plainOutput + "upper" || plain == plainOutput + "lower");
    if (!isSubscript && isFigureOf(plain, plainOutput)) {
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
        const bool isCoordinate = position > 0 && position != candidates.back() &&
                                  plainName(table.columns[position].name) == "y" &&
                                  plainName(table.columns[position - 1].name) == "x";
        if (isNameOfOutput(table.columns[position].name) && !isCoordinate) {
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
