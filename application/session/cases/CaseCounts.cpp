#include "session/cases/CaseCounts.h"

#include <mirel_datamanagement/Project.h>
#include <mirel_datapipeline/isInvalidValue.h>

#include <algorithm>

namespace {
/** Which cases are still valid after some columns have been looked at. */
class ValidCases
{
public:
    ValidCases(const Project& project, const std::vector<std::size_t>& excluded)
        : project(project), isIncluded(project.recordCount(), true)
    {
        for (const std::size_t position : excluded) {
            isIncluded[position] = false;
        }
        isValid = isIncluded;
    }

    /** Drops the cases that lack a number here; returns how many of the included ones do. */
    std::size_t drop(const VarPtr& variable)
    {
        const std::vector<double>& values = project.numericValues(variable);
        std::size_t lacking = 0;
        for (std::size_t i = 0; i < isValid.size(); ++i) {
            const bool lacks = isInvalidNumber(values[i]);
            lacking += lacks && isIncluded[i] ? 1 : 0;
            isValid[i] = isValid[i] && !lacks;
        }
        return lacking;
    }

    std::vector<std::size_t> positions() const
    {
        std::vector<std::size_t> valid;
        for (std::size_t i = 0; i < isValid.size(); ++i) {
            if (isValid[i]) {
                valid.push_back(i);
            }
        }
        return valid;
    }

    std::size_t count() const
    {
        return static_cast<std::size_t>(std::count(isValid.begin(), isValid.end(), true));
    }

private:
    const Project& project;
    std::vector<bool> isIncluded;
    std::vector<bool> isValid;
};
} // namespace

CaseCounts countCases(const Project& project, const std::vector<VarPtr>& inputs,
                      const std::vector<VarPtr>& outputs, const std::vector<std::size_t>& excluded)
{
    CaseCounts counts;
    ValidCases valid(project, excluded);
    for (const VarPtr& input : inputs) {
        counts.invalidByInput.push_back(valid.drop(input));
    }
    const ValidCases withInputs = valid;
    for (const VarPtr& output : outputs) {
        ValidCases alone = withInputs;
        alone.drop(output);
        counts.validAlone.push_back(alone.count());
        counts.invalidByOutput.push_back(valid.drop(output));
    }
    counts.read = project.recordCount();
    counts.excluded = excluded.size();
    counts.valid = valid.count();
    counts.invalid = counts.read - counts.excluded - counts.valid;
    return counts;
}

std::vector<std::size_t> validCases(const Project& project, const std::vector<VarPtr>& inputs,
                                    const std::vector<VarPtr>& outputs,
                                    const std::vector<std::size_t>& excluded)
{
    ValidCases valid(project, excluded);
    for (const auto* const variables : {&inputs, &outputs}) {
        for (const VarPtr& variable : *variables) {
            valid.drop(variable);
        }
    }
    return valid.positions();
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
