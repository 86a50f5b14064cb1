#include "session/cases/CaseCounts.h"

#include <mirel_datamanagement/Project.h>
#include <mirel_datapipeline/isInvalidValue.h>

#include <algorithm>

namespace {
/** What is known of one case; an excluded one lacks nothing. */
struct CaseState
{
    bool isValid() const { return !isExcluded && !lacksInput && !lacksOutput; }

    bool isExcluded = false;
    bool lacksInput = false;
    bool lacksOutput = false;
};

std::vector<CaseState> statesOf(const Project& project, const std::vector<std::size_t>& excluded)
{
    std::vector<CaseState> states(project.recordCount());
    for (const std::size_t position : excluded) {
        states[position].isExcluded = true;
    }
    return states;
}

/** Marks the included cases that lack a value; returns how many there are. */
std::size_t markInvalid(const std::vector<double>& values, std::vector<CaseState>& states,
                        bool CaseState::*lack)
{
    std::size_t marked = 0;
    for (std::size_t i = 0; i < states.size(); ++i) {
        if (!states[i].isExcluded && isInvalidNumber(values[i])) {
            states[i].*lack = true;
            ++marked;
        }
    }
    return marked;
}

std::size_t countValidAlone(const std::vector<double>& values, const std::vector<CaseState>& states)
{
    std::size_t valid = 0;
    for (std::size_t i = 0; i < states.size(); ++i) {
        const bool isUsable = !states[i].isExcluded && !states[i].lacksInput;
        valid += isUsable && !isInvalidNumber(values[i]) ? 1 : 0;
    }
    return valid;
}
} // namespace

CaseCounts countCases(const Project& project, const std::vector<VarPtr>& inputs,
                      const std::vector<VarPtr>& outputs, const std::vector<std::size_t>& excluded)
{
    CaseCounts counts;
    std::vector<CaseState> states = statesOf(project, excluded);
    for (const VarPtr& input : inputs) {
        counts.invalidByInput.push_back(
            markInvalid(project.numericValues(input), states, &CaseState::lacksInput));
    }
    for (const VarPtr& output : outputs) {
        const std::vector<double>& values = project.numericValues(output);
        counts.validAlone.push_back(countValidAlone(values, states));
        counts.invalidByOutput.push_back(markInvalid(values, states, &CaseState::lacksOutput));
    }
    counts.read = states.size();
    counts.excluded = excluded.size();
    counts.valid = static_cast<std::size_t>(std::count_if(
        states.begin(), states.end(), [](const CaseState& state) { return state.isValid(); }));
    counts.invalid = counts.read - counts.excluded - counts.valid;
    return counts;
}

std::vector<std::size_t> validCases(const Project& project, const std::vector<VarPtr>& inputs,
                                    const std::vector<VarPtr>& outputs,
                                    const std::vector<std::size_t>& excluded)
{
    std::vector<CaseState> states = statesOf(project, excluded);
    for (const VarPtr& input : inputs) {
        markInvalid(project.numericValues(input), states, &CaseState::lacksInput);
    }
    for (const VarPtr& output : outputs) {
        markInvalid(project.numericValues(output), states, &CaseState::lacksOutput);
    }
    std::vector<std::size_t> positions;
    for (std::size_t i = 0; i < states.size(); ++i) {
        if (states[i].isValid()) {
            positions.push_back(i);
        }
    }
    return positions;
}

std::vector<double> valuesAt(const std::vector<double>& column,
                             const std::vector<std::size_t>& rows)
{
    std::vector<double> values(rows.size());
    std::transform(rows.begin(), rows.end(), values.begin(),
                   [&](std::size_t row) { return column[row]; });
    return values;
}

std::pair<double, double> sweepRange(const Project& project, const VarPtr& input,
                                     const std::vector<std::size_t>& cases)
{
    const auto variable = input.lock();
    if (cases.empty() || variable->chosenRange()) {
        return variable->range();
    }
    const std::vector<double>& values = project.numericValues(input);
    std::pair<double, double> range(values[cases.front()], values[cases.front()]);
    for (const std::size_t row : cases) {
        range.first = std::min(range.first, values[row]);
        range.second = std::max(range.second, values[row]);
    }
    return range;
}
