#include "session/cases/CaseRoles.h"

#include "session/cases/VariableNames.h"
#include "session/text/SessionErrors.h"

#include <algorithm>
#include <iterator>

namespace {
class RoleChooser
{
public:
    explicit RoleChooser(const CaseTable& cases)
        : table(cases), names(cases.names()), roleOf(cases.columns.size())
    {}

    std::vector<std::size_t> choose(const std::vector<std::string>& texts, const std::string& role)
    {
        std::vector<std::size_t> chosen;
        for (const std::string& text : texts) {
            for (const std::size_t position : names.listed(text)) {
                take(position, role);
                chosen.push_back(position);
            }
        }
        return chosen;
    }

    /** Those of `positions` that have no role yet. */
    std::vector<std::size_t> remaining(const std::vector<std::size_t>& positions) const
    {
        std::vector<std::size_t> rest;
        std::copy_if(positions.begin(), positions.end(), std::back_inserter(rest),
                     [&](std::size_t position) { return roleOf[position].empty(); });
        return rest;
    }

private:
    void take(std::size_t position, const std::string& role)
    {
        const CaseColumn& column = table.columns[position];
        if (!column.isNumeric) {
            throw UsageError("\"" + column.name + "\" cannot be an " + role +
                             ", it is a text column: line " +
                             std::to_string(column.withoutNumber.firstLine) + " of " + table.path +
                             " holds \"" + column.withoutNumber.spellings.front() + "\".");
        }
        if (roleOf[position] == role) {
            throw UsageError("\"" + column.name + "\" is named twice as " + role + '.');
        }
        if (!roleOf[position].empty()) {
            throw UsageError("\"" + column.name + "\" cannot be both " + roleOf[position] +
                             " and " + role + '.');
        }
        roleOf[position] = role;
    }

    const CaseTable& table;
    VariableNames names;
    std::vector<std::string> roleOf;
};
} // namespace

CaseRoles chooseCaseRoles(const CaseTable& table, const std::vector<std::string>& inputTexts,
                          const std::vector<std::string>& outputTexts)
{
    CaseRoles numeric;
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        if (table.columns[i].isNumeric) {
            numeric.inputs.push_back(i);
        }
    }
    return chooseCaseRoles(table, inputTexts, outputTexts, numeric);
}

CaseRoles chooseCaseRoles(const CaseTable& table, const std::vector<std::string>& inputTexts,
                          const std::vector<std::string>& outputTexts, const CaseRoles& present)
{
    RoleChooser chooser(table);
    CaseRoles roles;
    roles.outputs = chooser.choose(outputTexts, "output");
    roles.inputs = chooser.choose(inputTexts, "input");
    if (outputTexts.empty()) {
        roles.outputs = chooser.remaining(present.outputs);
    }
    if (inputTexts.empty()) {
        roles.inputs = chooser.remaining(present.inputs);
    }
    return roles;
}
