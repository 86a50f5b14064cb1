#include "session/diagnosis/ColumnFindings.h"

#include "session/cases/ColumnFigures.h"
#include "session/diagnosis/FindingWords.h"
#include "session/text/DecimalText.h"
#include "session/text/SettingHint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string>

using Column = DiagnosedCases::Column;
using FindingWords::names;

namespace {
/** Of fewer cases every one is far from the others. */
constexpr std::size_t minCases = 8;

void addConstantInputs(const DiagnosedCases& cases, std::vector<Finding>& findings)
{
    std::vector<std::string> constant;
    for (const Column& input : cases.inputs) {
        if (input.isConstant()) {
            constant.push_back(input.name);
        }
    }
    if (constant.empty()) {
        return;
    }
    const bool isOne = constant.size() == 1;
    const std::string them = isOne ? "it" : "them";
    findings.push_back(Finding("constantInput", Finding::Warning, constant,
                               names(constant) + (isOne ? " is" : " are") +
                                   " the same in every case: the model learns nothing about " +
                                   them + " and ignores " + them + "; leave " + them +
                                   " out of the inputs" + settingHint(Setting::Inputs) + '.'));
}

void addNearlyConstantInputs(const DiagnosedCases& cases, std::vector<Finding>& findings)
{
    constexpr double minVariation = 1e-6;
    constexpr std::size_t maxSentences = 3;
    const std::string outOfInputs =
        "leave it out of the inputs" + settingHint(Setting::Inputs) + '.';
    std::vector<std::string> columns;
    std::vector<Finding> found;
    for (const Column& input : cases.inputs) {
        if (input.isConstant()) {
            continue;
        }
        const double size = std::max(std::fabs(input.minimum()), std::fabs(input.maximum()));
        std::string text;
        if (const std::optional<std::size_t> row = input.onlyOtherRow()) {
            const double common = input.values[*row == 0 ? 1 : 0];
            text = " is " + shownNumber(common) + " in every case but case " +
                   std::to_string(cases.positions[*row] + 1) +
                   ": its effect rests on that case alone; vary it in more cases or ";
        } else if (input.range() < minVariation * size) {
            text = " varies by less than a millionth of its size: it may hold nothing but "
                   "rounding; write it with its offset taken off or ";
        } else {
            continue;
        }
        columns.push_back(input.name);
        found.push_back(Finding("nearlyConstantInput", Finding::Warning, {input.name},
                                names({input.name}) + text + outOfInputs));
    }
    if (found.size() > maxSentences) {
        found = {Finding("nearlyConstantInput", Finding::Warning, columns,
                         names(columns) +
                             " hardly vary, most of them in one case alone: their "
                             "effects rest on single cases; vary them in more cases "
                             "or leave them out of the inputs" +
                             settingHint(Setting::Inputs) + '.')};
    }
    findings.insert(findings.end(), found.begin(), found.end());
}

/** Neighbours in a sorted column. */
struct Part
{
    std::size_t count() const { return end - begin; }

    std::size_t begin;
    std::size_t end;
};

/** The values of a column in ascending order, divided at the widest interval. */
struct SortedColumn
{
    explicit SortedColumn(const Column& column) : sorted(column.values)
    {
        std::sort(sorted.begin(), sorted.end());
        double widest = 0.0;
        for (std::size_t i = 1; i < sorted.size(); ++i) {
            const double width = sorted[i] - sorted[i - 1];
            if (width > widest) {
                widest = width;
                split = i;
            }
        }
    }

    double value(std::size_t i) const { return sorted[i]; }
    std::size_t count() const { return sorted.size(); }
    double range() const { return sorted.back() - sorted.front(); }
    double gap() const { return value(split) - value(split - 1); }

    std::size_t distinct() const { return distinct({0, count()}); }
    std::size_t distinct(const Part& part) const
    {
        std::size_t different = 0;
        for (std::size_t i = part.begin; i < part.end; ++i) {
            different += i == part.begin || value(i) != value(i - 1) ? 1 : 0;
        }
        return different;
    }

    std::vector<double> sorted;
    std::size_t split = 0; ///< the widest interval lies below it; 0 of a constant column
};

/** Numbers that people write for a missing one. */
bool isCode(double number)
{
    static constexpr std::array<double, 8> codes = {-1, -9, -99, -999, 999, 9999, 99999, -9999};
    return std::find(codes.begin(), codes.end(), number) != codes.end();
}

/** The share of the far cases in the sum of squares about the mean of the others: their leverage in
 *  a line through all, but for the constant. */
double shareOfSquares(const SortedColumn& column, const Part& far, const Part& rest)
{
    double mean = 0.0;
    for (std::size_t i = rest.begin; i < rest.end; ++i) {
        mean += column.value(i) / static_cast<double>(rest.count());
    }
    double squares = 0.0;
    double ofFar = 0.0;
    for (std::size_t i = 0; i < column.count(); ++i) {
        const double square = std::pow((column.value(i) - mean) / column.range(), 2);
        squares += square;
        ofFar += i >= far.begin && i < far.end ? square : 0.0;
    }
    return ofFar / squares;
}

/** Whether the interval next to the far cases is wide in the logarithm, too: among values over
 *  decades the upper ones always lie far from each other. */
bool isWideInLogarithm(const SortedColumn& column)
{
    constexpr double minShare = 0.4;
    if (column.value(0) <= 0.0) {
        return true;
    }
    const double gap = std::log(column.value(column.split) / column.value(column.split - 1));
    return gap >= minShare * std::log(column.value(column.count() - 1) / column.value(0));
}

std::optional<Finding> farCasesOf(const DiagnosedCases& cases, const Column& column, bool isOutput)
{
    constexpr std::size_t casesPerFarOne = 20;
    constexpr std::size_t minOtherValues = 4;
    constexpr double maxCodedShare = 0.3;
    const SortedColumn sorted(column);
    if (sorted.split == 0) {
        return std::nullopt;
    }
    const bool isAbove = 2 * sorted.split > sorted.count();
    Part far = {0, sorted.split};
    Part rest = {sorted.split, sorted.count()};
    if (isAbove) {
        std::swap(far, rest);
    }
    const double least = sorted.value(far.begin);
    const double greatest = sorted.value(far.end - 1);
    const double restRange = sorted.value(rest.end - 1) - sorted.value(rest.begin);
    // The same number several times among numbers that hardly repeat stands for something.
    const bool isRepeated = far.count() > 1 && 2 * sorted.distinct(rest) > rest.count();
    const bool areCodes =
        sorted.distinct(far) == 1 && (isRepeated || isCode(least)) &&
        static_cast<double>(far.count()) <= maxCodedShare * static_cast<double>(sorted.count());
    const bool areFew = far.count() <= std::max<std::size_t>(1, sorted.count() / casesPerFarOne);
    const double widthWanted = sorted.value(0) > 0.0 || areCodes ? 1.0 : 2.0;
    if (!(areCodes || areFew) || sorted.gap() < widthWanted * restRange ||
        sorted.distinct(rest) < minOtherValues || !isWideInLogarithm(sorted)) {
        return std::nullopt;
    }

    std::vector<std::size_t> rows;
    for (std::size_t row = 0; row < column.values.size(); ++row) {
        const double value = column.values[row];
        if (value >= least && value <= greatest) {
            rows.push_back(row);
        }
    }
    const bool isOne = far.count() == 1;
    const std::string name = names({column.name});
    const std::string number = (areCodes ? numberText(least) : shownFigure(least)) +
                               (least < greatest ? " to " + shownFigure(greatest) : "");
    const std::string text = FindingWords::casesFirst(cases.positionsOf(rows)) +
                             (isOne ? " has " : " have ") + name + " = " + number +
                             ", all others lie between " + shownFigure(sorted.value(rest.begin)) +
                             " and " + shownFigure(sorted.value(rest.end - 1));
    if (areCodes) {
        return Finding("missingCode", Finding::Severe, {column.name},
                       text +
                           ": the model takes it for a measurement; if it marks a "
                           "missing value, read it as one" +
                           settingHint(Setting::MissingCodes, number) + '.');
    }
    constexpr double nearlyAll = 0.9;
    const bool decides = shareOfSquares(sorted, far, rest) > nearlyAll;
    const std::string that = isOne ? "that case" : "these cases";
    const std::string effect =
        isOutput  ? "the model bends towards " + std::string(isOne ? "it" : "them")
        : decides ? that + (isOne ? " alone decides" : " decide") + " the effect of " + name
                  : "the effect of " + name + " rests on " + that + " more than on others";
    return Finding("farCase", decides ? Finding::Severe : Finding::Warning, {column.name},
                   text + ": " + effect + "; check the " +
                       (isOne ? "cell, or exclude the case" : "cells, or exclude the cases") +
                       settingHint(Setting::ExcludedCases) + '.');
}

/** Whether the logarithms of a positive column are even where the column itself is not. */
bool isOverDecades(const Column& column, double minRatio)
{
    constexpr double low = 0.1; // of the range, below which half of the cases lie
    constexpr double middle = 0.25;
    const double minimum = column.minimum();
    const double maximum = column.maximum();
    if (minimum <= 0.0 || maximum < minRatio * minimum) {
        return false;
    }
    const double median = medianOf(column.values);
    const double share = std::log(median / minimum) / std::log(maximum / minimum);
    return median - minimum < low * (maximum - minimum) && share > middle && share < 1.0 - middle;
}

/** Names a value of an output that many cases with different inputs share while hardly another
 *  value repeats. */
std::optional<Finding> repeatedValue(const DiagnosedCases& cases, const Column& output)
{
    constexpr std::size_t casesPerRepeat = 25;
    constexpr std::size_t distinctOfTen = 9;
    const SortedColumn sorted(output);
    std::size_t longest = 0;
    double value = 0.0;
    for (std::size_t begin = 0, end = 0; begin < sorted.count(); begin = end) {
        while (end < sorted.count() && sorted.value(end) == sorted.value(begin)) {
            ++end;
        }
        if (end - begin > longest) {
            longest = end - begin;
            value = sorted.value(begin);
        }
    }
    const std::size_t others = sorted.count() - longest;
    if (longest < std::max<std::size_t>(3, sorted.count() / casesPerRepeat) || others < minCases ||
        10 * (sorted.distinct() - 1) < distinctOfTen * others) {
        return std::nullopt;
    }
    std::vector<std::size_t> rows;
    std::size_t differentInputs = 0;
    for (std::size_t row = 0; row < sorted.count(); ++row) {
        if (output.values[row] != value) {
            continue;
        }
        const auto isSame = [&](const Column& input) {
            return input.values[row] == input.values[rows.back()];
        };
        const bool isRepeat =
            !rows.empty() && std::all_of(cases.inputs.begin(), cases.inputs.end(), isSame);
        differentInputs += isRepeat ? 0 : 1;
        rows.push_back(row);
    }
    if (differentInputs < 3) {
        return std::nullopt;
    }
    return Finding(
        "repeatedOutput", Finding::Warning, {output.name},
        names({output.name}) + " is " + numberText(value) + " in " + std::to_string(longest) +
            " of " + std::to_string(sorted.count()) +
            " cases with different inputs, and hardly another value repeats: it may be a limit of "
            "the measurement, a stuck sensor or a default, but the model takes it for measured "
            "values; check " +
            FindingWords::cases(cases.positionsOf(rows)) + ", or exclude them" +
            settingHint(Setting::ExcludedCases) + '.');
}

std::string spanText(const Column& column)
{
    return names({column.name}) + " spans a factor of " +
           shownFigure(column.maximum() / column.minimum()) +
           " and half of its cases lie in the lowest " +
           FindingWords::percent((medianOf(column.values) - column.minimum()) / column.range()) +
           " of its range";
}
} // namespace

std::vector<Finding> ColumnFindings::constants(const DiagnosedCases& cases)
{
    std::vector<Finding> findings;
    if (cases.count() < 2) {
        return findings;
    }
    for (const Column& output : cases.outputs) {
        if (output.isConstant()) {
            findings.push_back(Finding("constantOutput", Finding::Severe, {output.name},
                                       names({output.name}) + " is the same in every case: there "
                                                              "is nothing to model; check the "
                                                              "column or choose another output."));
        }
    }
    addConstantInputs(cases, findings);
    if (cases.count() >= minCases) {
        addNearlyConstantInputs(cases, findings);
    }
    return findings;
}

std::vector<Finding> ColumnFindings::fewValues(const DiagnosedCases& cases)
{
    constexpr std::size_t fewOutputs = 4;
    std::vector<Finding> findings;
    if (cases.count() < minCases) {
        return findings;
    }
    std::vector<std::string> twoValued;
    for (const Column& input : cases.inputs) {
        if (input.isTwoValued() && !input.onlyOtherRow()) {
            twoValued.push_back(input.name);
        }
    }
    const bool hasSquares =
        !cases.isKriging && cases.responseSurface.terms == PolynomialTerms::Quadratic;
    if (!twoValued.empty() && (hasSquares || cases.isKriging)) {
        const bool isOne = twoValued.size() == 1;
        const std::string squares =
            ", and squares of " + std::string(isOne ? "it" : "them") + " are left out";
        findings.push_back(Finding(
            "fewValuesInput", Finding::Note, twoValued,
            names(twoValued) + (isOne ? " takes two values only" : " take two values only each") +
                ": what lies between them is a straight line at best" +
                (hasSquares ? squares : "") + "; measure a third value where curvature matters."));
    }
    for (const Column& output : cases.outputs) {
        const std::size_t distinct = distinctValues(output.values, fewOutputs + 1);
        if (distinct < 2 || distinct > fewOutputs || cases.count() < 5 * distinct) {
            continue;
        }
        findings.push_back(Finding(
            "fewValuesOutput", Finding::Warning, {output.name},
            names({output.name}) + " takes " +
                std::array<const char*, 5>{"", "", "two", "three", "four"}[distinct] +
                " values only: the model is smooth and predicts values between them, and "
                "its intervals are rough; read predictions as a tendency, not as a class."));
    }
    return findings;
}

std::vector<Finding> ColumnFindings::farCases(const DiagnosedCases& cases)
{
    std::vector<Finding> findings;
    if (cases.count() < minCases) {
        return findings;
    }
    const auto add = [&](const std::optional<Finding>& found) {
        if (found) {
            findings.push_back(*found);
        }
    };
    for (const Column& output : cases.outputs) {
        const std::optional<Finding> far = farCasesOf(cases, output, true);
        add(far ? far : repeatedValue(cases, output));
    }
    for (const Column& input : cases.inputs) {
        add(farCasesOf(cases, input, false));
    }
    return findings;
}

std::vector<Finding> ColumnFindings::decades(const DiagnosedCases& cases)
{
    constexpr double minRatioOfInputs = 100.0;
    constexpr double minRatioOfOutputs = 30.0;
    std::vector<Finding> findings;
    if (cases.count() < minCases) {
        return findings;
    }
    // Single cases, rather than decades, make the range of other columns wide.
    for (const Column& input : cases.inputs) {
        if (isOverDecades(input, minRatioOfInputs) && !farCasesOf(cases, input, false)) {
            findings.push_back(Finding("inputOverDecades", Finding::Warning, {input.name},
                                       spanText(input) +
                                           ": the few large values decide its effect; put its "
                                           "logarithm into the file and take that as the input."));
        }
    }
    for (const Column& output : cases.outputs) {
        if (!cases.transformsOutputs && isOverDecades(output, minRatioOfOutputs) &&
            !farCasesOf(cases, output, true)) {
            findings.push_back(Finding("skewedOutput", Finding::Warning, {output.name},
                                       spanText(output) +
                                           ": the large values decide the fit and the small ones "
                                           "are predicted badly; try a model of the logarithm" +
                                           settingHint(Setting::Transform, "log") + '.'));
        }
    }
    return findings;
}

std::vector<Finding> ColumnFindings::gaps(const DiagnosedCases& cases)
{
    constexpr double minShare = 0.4;
    constexpr std::size_t minValues = 8;
    constexpr std::size_t minValuesPerSide = 3;
    constexpr std::size_t casesPerGroup = 10;
    constexpr std::size_t minSpreadCases = 20; // fewer lie apart by chance
    std::vector<Finding> findings;
    if (cases.count() < minSpreadCases) {
        return findings;
    }
    for (const Column& input : cases.inputs) {
        const SortedColumn sorted(input);
        const std::size_t fewest = std::max<std::size_t>(3, sorted.count() / casesPerGroup);
        if (sorted.split < fewest || sorted.count() - sorted.split < fewest ||
            sorted.gap() < minShare * sorted.range() || sorted.distinct() < minValues ||
            sorted.distinct({0, sorted.split}) < minValuesPerSide ||
            sorted.distinct({sorted.split, sorted.count()}) < minValuesPerSide ||
            isOverDecades(input, 100.0)) {
            continue;
        }
        findings.push_back(Finding(
            "gap", Finding::Warning, {input.name},
            "No case has " + names({input.name}) + " between " +
                shownFigure(sorted.value(sorted.split - 1)) + " and " +
                shownFigure(sorted.value(sorted.split)) + ", " +
                FindingWords::percent(sorted.gap() / sorted.range()) +
                " of its range: predictions there rest on the model's form alone; add cases there "
                "or do not predict there."));
    }
    return findings;
}
