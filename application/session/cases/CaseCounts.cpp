#include "session/cases/CaseCounts.h"

#include <mirel_datamanagement/Project.h>

#include <algorithm>
#include <cmath>

namespace {
/** What is known of one case. */
struct CaseState
{
    bool isExcluded = false;
    bool lacksInput = false;
    bool lacksOutput = false;
};

std::size_t markInvalid(const std::vector<double>& values, std::vector<CaseState>& states,
                        bool CaseState::*lack)
{
    std::size_t marked = 0;
    for (std::size_t i = 0; i < states.size(); ++i) {
        if (!states[i].isExcluded && !std::isfinite(values[i])) {
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
        const bool usable = !states[i].isExcluded && !states[i].lacksInput;
        valid += usable && std::isfinite(values[i]) ? 1 : 0;
    }
    return valid;
}
} // namespace

CaseCounts countCases(const Project& project, const std::vector<VarPtr>& inputs,
                      const std::vector<VarPtr>& outputs, const std::vector<std::size_t>& excluded)
{
    CaseCounts counts;
    counts.read = project.recordCount();
    counts.excluded = excluded.size();

    std::vector<CaseState> states(counts.read);
    for (const std::size_t position : excluded) {
        states[position].isExcluded = true;
    }
    for (const VarPtr& input : inputs) {
        counts.invalidByInput.push_back(
            markInvalid(project.numericValues(input), states, &CaseState::lacksInput));
    }
    for (const VarPtr& output : outputs) {
        const std::vector<double>& values = project.numericValues(output);
        counts.validAlone.push_back(countValidAlone(values, states));
        counts.invalidByOutput.push_back(markInvalid(values, states, &CaseState::lacksOutput));
    }

    counts.invalid = static_cast<std::size_t>(
        std::count_if(states.begin(), states.end(), [](const CaseState& state) {
            return !state.isExcluded && (state.lacksInput || state.lacksOutput);
        }));
    counts.valid = counts.read - counts.excluded - counts.invalid;
    return counts;
}

std::vector<std::size_t> validCases(const Project& project, const std::vector<VarPtr>& inputs,
                                    const std::vector<VarPtr>& outputs,
                                    const std::vector<std::size_t>& excluded)
{
    std::vector<bool> isValid(project.recordCount(), true);
    for (const std::size_t position : excluded) {
        isValid[position] = false;
    }
    for (const std::vector<VarPtr>* const variables : {&inputs, &outputs}) {
        for (const VarPtr& variable : *variables) {
            const std::vector<double>& values = project.numericValues(variable);
            for (std::size_t i = 0; i < values.size(); ++i) {
                isValid[i] = isValid[i] && std::isfinite(values[i]);
            }
        }
    }
    std::vector<std::size_t> positions;
    for (std::size_t i = 0; i < isValid.size(); ++i) {
        if (isValid[i]) {
            positions.push_back(i);
        }
    }
    return positions;
}
