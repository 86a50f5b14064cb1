#include "session/cases/CaseRoles.h"

#include "session/cases/VariableNames.h"
#include "session/text/QuotedText.h"
#include "session/text/SessionErrors.h"
#include "session/text/SettingHint.h"

#include <algorithm>
#include <iterator>

namespace {
/** Of columns that are neither inputs nor outputs, and the reason why. */
const char weightsRole[] = "weights";
const char blocksRole[] = "blocks";

class RoleChooser
{
public:
    RoleChooser(const CaseTable& cases, const CaseDesignColumns& design)
        : table(cases), names(cases.names()), roleOf(cases.columns.size())
    {
        if (!design.weights.empty()) {
            give(names.position(design.weights), weightsRole);
        }
        if (!design.blocks.empty()) {
            give(names.position(design.blocks), blocksRole);
        }
    }

    /** Empty without one. */
    const std::string& role(std::size_t position) const { return roleOf[position]; }

    std::vector<std::size_t> choose(const std::vector<std::string>& texts, const std::string& role)
    {
        std::vector<std::size_t> chosen;
        for (const std::string& text : texts) {
            for (const std::size_t position : listed(text)) {
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
    std::vector<std::size_t> listed(const std::string& text) const
    {
        try {
            return names.listed(text);
        } catch (const UsageError& error) {
            const std::vector<std::string>& labels = table.columns.front().texts;
            if (std::find(labels.begin(), labels.end(), text) != labels.end()) {
                throw UsageError(quotedText(text) +
                                 " names a row of the table: write the table with a column for "
                                 "each variable and a row for each case.");
            }
            throw UsageError(error.what() +
                             std::string(table.layout.hasHeading
                                             ? ""
                                             : " The table was read without a heading: take its "
                                               "first row for one" +
                                                   settingHint(Setting::Heading) + '.'));
        }
    }

    void take(std::size_t position, const std::string& role)
    {
        const CaseColumn& column = table.columns[position];
        if (!column.isNumeric) {
            throw UsageError("\"" + column.name + "\" cannot be an " + role +
                             ", it is a text column: line " +
                             std::to_string(column.withoutNumber.firstLine) + " of " + table.path +
                             " holds \"" + column.withoutNumber.spellings.front() + "\".");
        }
        give(position, role);
    }

    void give(std::size_t position, const std::string& role)
    {
        const CaseColumn& column = table.columns[position];
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

/** Gives roles to columns that nobody named. */
class DefaultRoles
{
public:
    /** @param chosen what was named; what is found goes there, too. Borrowed. */
    DefaultRoles(const CaseTable& cases, CaseRoles& chosen) : table(cases), roles(chosen)
    {
        roles.columns.resize(table.columns.size());
        for (const std::size_t position : roles.inputs) {
            roles.columns[position].role = ColumnRole::Input;
        }
        for (const std::size_t position : roles.outputs) {
            roles.columns[position].role = ColumnRole::Output;
        }
    }

    /** Finds out which columns are no inputs by what they are for or hold. */
    void findReasons(const RoleChooser& designed)
    {
        for (std::size_t i = 0; i < table.columns.size(); ++i) {
            if (roles.columns[i].role == ColumnRole::None) {
                roles.columns[i].reason = designed.role(i);
                if (roles.columns[i].reason.empty()) {
                    roles.columns[i].reason = ColumnRoles::reasonAgainstInput(table.columns[i]);
                }
            }
        }
    }

    /** Where the inputs are named, the other columns need no reason. */
    void forgetReasons()
    {
        for (ColumnRole& column : roles.columns) {
            column.reason = column.role == ColumnRole::None ? "" : column.reason;
        }
    }

    void suggestOutputs()
    {
        for (const auto& [position, reason] : ColumnRoles::likelyOutputs(table, candidates())) {
            roles.columns[position] = {ColumnRole::Output, reason};
            roles.outputs.push_back(position);
        }
    }

    /** Points out inputs that would be outputs, too, if none were named. */
    void pointOutLikelyOutputs()
    {
        std::vector<std::size_t> positions = roles.inputs;
        positions.insert(positions.end(), roles.outputs.begin(), roles.outputs.end());
        std::sort(positions.begin(), positions.end());
        const std::vector<std::size_t> likely = ColumnRoles::lastThatHardlyRepeat(table, positions);
        const auto isLikely = [&](std::size_t position) {
            return std::binary_search(likely.begin(), likely.end(), position);
        };
        if (!std::all_of(roles.outputs.begin(), roles.outputs.end(), isLikely)) {
            return;
        }
        pointOut(ColumnRoles::likeOutput, isLikely);
    }

    /** Points out inputs that stand between or behind the outputs, where there are some before. */
    void pointOutInputsBehind()
    {
        if (roles.inputs.empty() || roles.outputs.empty() ||
            roles.inputs.front() > roles.outputs.front()) {
            return;
        }
        pointOut(ColumnRoles::behindOutput,
                 [&](std::size_t position) { return position > roles.outputs.front(); });
    }

    void takeInputs()
    {
        const std::vector<std::size_t> possible = candidates();
        for (const std::size_t position : possible) {
            roles.columns[position].reason = reasonAgainst(position);
        }
        const std::vector<std::size_t> independent = candidates();
        if (!independent.empty()) {
            return take(independent, "");
        }
        if (!possible.empty()) {
            // All look like the output, as C1, C2 and C3 do: its name says nothing then.
            for (const std::size_t position : possible) {
                roles.columns[position].reason.clear();
            }
            return take(possible, "");
        }
        take(runNumbers(), "; an input all the same, since no other column can be one");
    }

private:
    template <class Holds>
    void pointOut(const char* reason, const Holds& holds)
    {
        for (const std::size_t position : roles.inputs) {
            if (roles.columns[position].reason.empty() && holds(position)) {
                roles.columns[position].reason = reason;
            }
        }
    }

    /** Without a role, and nothing speaks against their being inputs. */
    std::vector<std::size_t> candidates() const
    {
        std::vector<std::size_t> positions;
        for (std::size_t i = 0; i < roles.columns.size(); ++i) {
            if (roles.columns[i].role == ColumnRole::None && roles.columns[i].reason.empty()) {
                positions.push_back(i);
            }
        }
        return positions;
    }

    std::vector<std::size_t> runNumbers() const
    {
        std::vector<std::size_t> positions;
        for (std::size_t i = 0; i < roles.columns.size(); ++i) {
            const CaseColumn& column = table.columns[i];
            const ColumnRole& role = roles.columns[i];
            if (role.role == ColumnRole::None && column.isNumeric && column.isNamed &&
                role.reason != weightsRole && role.reason != blocksRole &&
                ColumnRoles::areRunNumbers(column)) {
                positions.push_back(i);
            }
        }
        return positions;
    }

    /** What speaks against an input beside these outputs. */
    std::string reasonAgainst(std::size_t position) const
    {
        for (const std::size_t output : roles.outputs) {
            const std::string reason =
                ColumnRoles::reasonAgainstInput(table.columns[position], table.columns[output]);
            if (!reason.empty()) {
                return reason;
            }
        }
        return "";
    }

    void take(const std::vector<std::size_t>& positions, const std::string& doubt)
    {
        for (const std::size_t position : positions) {
            ColumnRole& column = roles.columns[position];
            column.role = ColumnRole::Input;
            column.reason += doubt;
            roles.inputs.push_back(position);
        }
    }

    const CaseTable& table;
    CaseRoles& roles;
};
} // namespace

CaseRoles chooseCaseRoles(const CaseTable& table, const std::vector<std::string>& inputTexts,
                          const std::vector<std::string>& outputTexts, UnnamedOutputs unnamed,
                          const CaseDesignColumns& design)
{
    const RoleChooser designed(table, design);
    RoleChooser chooser = designed;
    CaseRoles roles;
    roles.outputs = chooser.choose(outputTexts, "output");
    roles.inputs = chooser.choose(inputTexts, "input");
    DefaultRoles defaults(table, roles);
    defaults.findReasons(designed);
    if (outputTexts.empty() && unnamed == UnnamedOutputs::Suggested) {
        defaults.suggestOutputs();
    }
    if (inputTexts.empty()) {
        defaults.takeInputs();
        defaults.pointOutInputsBehind();
        if (!outputTexts.empty()) {
            defaults.pointOutLikelyOutputs();
        }
    } else {
        defaults.forgetReasons();
    }
    return roles;
}

CaseRoles chooseCaseRoles(const CaseTable& table, const std::vector<std::string>& inputTexts,
                          const std::vector<std::string>& outputTexts, const CaseRoles& present,
                          const CaseDesignColumns& design)
{
    RoleChooser chooser(table, design);
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
