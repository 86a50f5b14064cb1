#include "session/diagnosis/RepeatFindings.h"

#include "session/diagnosis/FindingWords.h"

#include "session/text/DecimalText.h"
#include "session/text/SettingHint.h"

#include <mirel_fitting/cases/ReplicatedCases.h>
#include <mirel_fitting/numerics/TextPieces.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <numeric>
#include <string>

using Column = DiagnosedCases::Column;
using FindingWords::names;

namespace {
using Rows = std::vector<std::size_t>;

/** "0.4142 and 0.9642", with more digits where four do not tell them apart. */
std::string distinctFigures(double one, double other)
{
    const auto show = shownFigure(one) == shownFigure(other) ? numberText : shownFigure;
    return show(one) + " and " + show(other);
}

/** Rows that are replicates: groups of two and more. */
std::vector<Rows> replicates(const DiagnosedCases& cases)
{
    std::vector<const double*> columns = pointersTo(cases.inputs);
    if (!cases.blocks.empty()) {
        columns.push_back(cases.blocks.data());
    }
    const ReplicatedCases points(columns, cases.count());
    std::vector<Rows> groups(cases.count());
    for (std::size_t row = 0; row < cases.count(); ++row) {
        groups[points.pointOf(row)].push_back(row);
    }
    groups.erase(std::remove_if(groups.begin(), groups.end(),
                                [](const Rows& group) { return group.size() < 2; }),
                 groups.end());
    return groups;
}

/** Those of a group with the same outputs: groups of two and more. */
std::vector<Rows> copiesIn(const Rows& group, const DiagnosedCases& cases)
{
    std::map<std::vector<double>, Rows> byOutputs;
    for (const std::size_t row : group) {
        std::vector<double> outputs;
        for (const Column& output : cases.outputs) {
            outputs.push_back(output.values[row]);
        }
        byOutputs[outputs].push_back(row);
    }
    std::vector<Rows> copies;
    for (const auto& [outputs, rows] : byOutputs) {
        if (rows.size() > 1) {
            copies.push_back(rows);
        }
    }
    return copies;
}

/** That two cases have the same outputs, if these were independent of each other. */
double chanceOfEqualOutputs(const DiagnosedCases& cases)
{
    double chance = 1.0;
    for (const Column& output : cases.outputs) {
        std::map<double, double> counts;
        for (const double value : output.values) {
            counts[value] += 1.0;
        }
        double equal = 0.0;
        for (const auto& [value, count] : counts) {
            equal += count * (count - 1.0);
        }
        const double all = static_cast<double>(cases.count());
        chance *= equal / (all * (all - 1.0));
    }
    return chance;
}

double pairsIn(const Rows& group)
{
    return 0.5 * static_cast<double>(group.size() * (group.size() - 1));
}

struct PureError
{
    double variance() const { return squares / static_cast<double>(degreesOfFreedom); }

    double squares = 0.0;
    std::size_t degreesOfFreedom = 0;
    double largestRange = 0.0;
    Rows worst; ///< the cases with the least and the greatest output of the group
};

PureError pureErrorOf(const Column& output, const std::vector<Rows>& groups)
{
    PureError error;
    for (const Rows& group : groups) {
        double sum = 0.0;
        std::size_t least = group.front();
        std::size_t greatest = group.front();
        for (const std::size_t row : group) {
            sum += output.values[row];
            least = output.values[row] < output.values[least] ? row : least;
            greatest = output.values[row] > output.values[greatest] ? row : greatest;
        }
        const double mean = sum / static_cast<double>(group.size());
        for (const std::size_t row : group) {
            error.squares += (output.values[row] - mean) * (output.values[row] - mean);
        }
        error.degreesOfFreedom += group.size() - 1;
        const double range = output.values[greatest] - output.values[least];
        if (range > error.largestRange) {
            error.largestRange = range;
            error.worst = {least, greatest};
        }
    }
    return error;
}

/** How many pairs in groups of the same inputs have the same outputs by chance: where outputs have
 *  few values, or vary by few steps of their last digit among repeats. */
double copiesByChance(const DiagnosedCases& cases, const std::vector<Rows>& groups)
{
    double expected = 0.0;
    const double overall = chanceOfEqualOutputs(cases);
    std::vector<double> steps;
    std::vector<double> pooled;
    for (const Column& output : cases.outputs) {
        steps.push_back(lastDigit(output.values));
        pooled.push_back(std::sqrt(pureErrorOf(output, groups).variance()));
    }
    for (const Rows& group : groups) {
        // Two normal numbers of the deviation s fall on the same step with a chance of
        // step / (2 sqrt(pi) s), if s is large against it.
        constexpr double twoRootPi = 3.5449;
        double chance = 1.0;
        for (std::size_t k = 0; k < cases.outputs.size(); ++k) {
            const double own = std::sqrt(pureErrorOf(cases.outputs[k], {group}).variance());
            const double deviation = own > 0.0 ? std::min(own, pooled[k]) : pooled[k];
            chance *= deviation > 0.0 ? std::min(1.0, steps[k] / (twoRootPi * deviation)) : 0.0;
        }
        expected += pairsIn(group) * std::max(chance, overall);
    }
    return expected;
}

void addCopies(const DiagnosedCases& cases, const std::vector<Rows>& groups,
               std::vector<Finding>& findings)
{
    std::vector<Rows> copies;
    double copiedPairs = 0.0;
    std::size_t repeated = 0;
    std::size_t copiedCases = 0;
    std::size_t groupedCases = 0;
    for (const Rows& group : groups) {
        groupedCases += group.size();
        for (const Rows& same : copiesIn(group, cases)) {
            copies.push_back(same);
            copiedPairs += pairsIn(same);
            repeated += same.size() - 1;
            copiedCases += same.size();
        }
    }
    const double expected = copiesByChance(cases, groups);
    if (copies.empty() || copiedPairs <= expected + 3.0 * std::sqrt(expected)) {
        return;
    }

    const bool areAllCopies = groupedCases == copiedCases && copies.size() == groups.size();
    std::string text = repeated == 1
                           ? "1 case is an exact copy of another ("
                           : std::to_string(repeated) + " cases are exact copies of others (";
    text += (repeated == 1 ? "" : "such as ") +
            FindingWords::cases(cases.positionsOf({copies.front()[0], copies.front()[1]})) +
            "): counted again they make errors look smaller than they are";
    if (areAllCopies && !cases.isKriging) {
        text += ", and the lack of fit is not available: the repeats are exact copies";
    }
    constexpr std::size_t casesPerCopy = 20; // in as many one copy changes little
    findings.push_back(
        Finding("exactCopies",
                casesPerCopy * repeated <= cases.count() ? Finding::Note : Finding::Warning, {},
                text + "; exclude them" + settingHint(Setting::ExcludedCases) +
                    " unless each was measured."));
}

void addConflicts(const DiagnosedCases& cases, const Column& output,
                  const std::vector<Rows>& groups, std::vector<Finding>& findings)
{
    constexpr std::size_t minCases = 8;
    constexpr double unexplained = 0.5;  // of the variance, by the variance of repeats
    constexpr double conflicting = 0.4;  // of the range
    constexpr double otherRepeats = 0.1; // of the variance, without the worst pair
    constexpr std::size_t minDegrees = 3;
    const PureError error = pureErrorOf(output, groups);
    Rows all(cases.count()); // as one group: the squares about the mean
    std::iota(all.begin(), all.end(), std::size_t(0));
    const double squares = pureErrorOf(output, {all}).squares;
    const double variance = squares / static_cast<double>(cases.count() - 1);
    if (cases.count() < minCases || error.worst.empty() || variance == 0.0) {
        return;
    }
    const std::vector<std::size_t> pair = cases.positionsOf(error.worst);
    const std::string figures =
        distinctFigures(output.values[error.worst[0]], output.values[error.worst[1]]);
    if (error.variance() > unexplained * variance && error.degreesOfFreedom >= minDegrees) {
        findings.push_back(
            Finding("unexplainedOutput", Finding::Warning, {output.name},
                    "Cases with the same inputs differ in " + names({output.name}) + " (" +
                        FindingWords::cases(pair) + " have " + figures +
                        "): no model of these inputs can explain more than " +
                        FindingWords::percent(std::max(0.0, 1.0 - error.squares / squares)) +
                        " of its variance; check these cases, or look for the input that "
                        "is missing."));
        return;
    }
    const double worstSquares = 0.5 * error.largestRange * error.largestRange;
    const std::size_t others = error.degreesOfFreedom - 1;
    const bool stand = others == 0 || error.squares - worstSquares <=
                                          otherRepeats * variance * static_cast<double>(others);
    if (error.largestRange >= conflicting * output.range() && stand) {
        findings.push_back(
            Finding("conflictingRepeats", Finding::Warning, {output.name},
                    FindingWords::casesFirst(pair) + " have the same inputs and yet " +
                        names({output.name}) + " = " + figures + ", " +
                        FindingWords::percent(error.largestRange / output.range()) +
                        " of its range apart: no model can pass near both; check both "
                        "cases, and exclude a wrong one" +
                        settingHint(Setting::ExcludedCases) + '.'));
    }
}

/** The share of the pairs of values that differ by no more than the tolerance. */
double shareOfNearPairs(std::vector<double> values, double tolerance)
{
    std::sort(values.begin(), values.end());
    double pairs = 0.0;
    std::size_t begin = 0;
    for (std::size_t end = 0; end < values.size(); ++end) {
        while (values[end] - values[begin] > tolerance) {
            ++begin;
        }
        pairs += static_cast<double>(end - begin);
    }
    const double count = static_cast<double>(values.size());
    return pairs / (0.5 * count * (count - 1.0));
}
} // namespace

std::vector<Finding> RepeatFindings::repeats(const DiagnosedCases& cases)
{
    std::vector<Finding> findings;
    if (cases.inputs.empty() || cases.outputs.empty() || cases.count() < 3) {
        return findings;
    }
    const std::vector<Rows> groups = replicates(cases);
    if (groups.empty()) {
        return findings;
    }
    addCopies(cases, groups, findings);
    for (const Column& output : cases.outputs) {
        addConflicts(cases, output, groups, findings);
    }
    return findings;
}

std::vector<Finding> RepeatFindings::nearCopies(const DiagnosedCases& cases)
{
    constexpr double nearest = 1e-3; // of the range
    constexpr double same = ReplicatedCases::nearness;
    std::vector<Finding> findings;
    std::vector<const Column*> varying;
    for (const Column& input : cases.inputs) {
        if (!input.isConstant()) {
            varying.push_back(&input);
        }
    }
    const std::size_t count = cases.count();
    if (varying.empty() || count < 8) {
        return findings;
    }

    std::vector<double> tolerances;
    for (const Column* input : varying) {
        tolerances.push_back(nearest * input->range());
    }
    Rows order(count);
    std::iota(order.begin(), order.end(), std::size_t(0));
    const std::vector<double>& first = varying.front()->values;
    std::sort(order.begin(), order.end(),
              [&](std::size_t left, std::size_t right) { return first[left] < first[right]; });
    std::size_t found = 0;
    Rows example;
    for (std::size_t a = 0; a < count; ++a) {
        for (std::size_t b = a + 1;
             b < count && first[order[b]] - first[order[a]] <= tolerances.front(); ++b) {
            bool isNear = true;
            bool isSame = true;
            for (std::size_t k = 0; k < varying.size() && isNear; ++k) {
                const double distance =
                    std::fabs(varying[k]->values[order[a]] - varying[k]->values[order[b]]);
                isNear = distance <= tolerances[k];
                isSame = isSame && nearest * distance <= same * tolerances[k];
            }
            if (isNear && !isSame) {
                ++found;
                example = example.empty() ? Rows{order[a], order[b]} : example;
            }
        }
    }
    // As many as that if the inputs were independent of each other.
    double expected = 0.5 * static_cast<double>(count) * static_cast<double>(count);
    for (std::size_t k = 0; k < varying.size(); ++k) {
        expected *= shareOfNearPairs(varying[k]->values, tolerances[k]);
    }
    if (found == 0 || static_cast<double>(found) <= 10.0 * expected) {
        return findings;
    }
    std::string text = FindingWords::casesFirst(cases.positionsOf(example));
    if (found > 1) {
        text += cases.isSample ? " and at least " : " and ";
        text += countedText(found - 1, "other pair");
    }
    findings.push_back(
        Finding("nearCopies", Finding::Note, {},
                text + " differ by less than a thousandth of the range in every input: the "
                       "model takes what their outputs differ by for noise; give repeats "
                       "the same inputs if they are meant to be the same."));
    return findings;
}
