#pragma once

#include <session/cases/CaseTable.h>

#include <surrogate_session/Export.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

/** What a column of a case file is for in a model, and why. */
struct ColumnRole
{
    enum Role
    {
        Input,
        Output,
        None
    };

    Role role = None;
    /** Part of a sentence, "counts up by one, from 1 to 11"; empty where a user named the role. */
    std::string reason;
};

/** The names of columns with the reasons why they are no inputs. */
using ReasonedNames = std::vector<std::pair<std::string, std::string>>;

/** `"Run" (counts up by one, from 1 to 11), "Site" (text, such as "north") and 3 more`: eight at
 *  most. */
SURROGATE_SESSION_EXPORT std::string reasonsText(const ReasonedNames& names);

/** "input", "output" or "none". */
SURROGATE_SESSION_EXPORT const char* roleName(ColumnRole::Role role);

/** How the roles of columns that nobody named are chosen. One pass over each column. */
namespace ColumnRoles {
/** Of inputs that nobody named and that may be outputs: outputs stand behind inputs, and their
 *  values hardly repeat. */
inline constexpr char behindOutput[] = "an input, though it stands behind the output";
inline constexpr char likeOutput[] = "an input, though it looks like an output";

/**
 * Whether the numbers of a column count up by one, as run numbers do; or differ from each other and
 * are whole, in a column that is called Run, Id, No. or the like; or are dates such as 19580329, or
 * years that only ascend. Cells may be missing. Fewer than five cases never count.
 */
bool areRunNumbers(const CaseColumn& column);

/** Why a column is no input: it holds texts, dates or times, no number, the same number in all
 *  cases, or run numbers, or is called like blocks or figures of a fit; empty if it may be one. */
std::string reasonAgainstInput(const CaseColumn& column);

/** Why a column is no input beside this output: it has the same name with another number, or equals
 *  a multiple of the output or of its logarithm plus a constant; empty otherwise. */
std::string reasonAgainstInput(const CaseColumn& column, const CaseColumn& output);

/** The columns among the candidates that are most likely outputs, each with the reason: those with
 *  names as of outputs, else the last ones whose values hardly repeat, else the last one; the only
 *  candidate. Truth values at the end are none. */
std::vector<std::pair<std::size_t, std::string>> likelyOutputs(const CaseTable& table,
                                                               std::vector<std::size_t> candidates);

/** The last ones among the candidates whose values hardly repeat, as outputs' do; none if that
 * holds for all of them. */
std::vector<std::size_t> lastThatHardlyRepeat(const CaseTable& table,
                                              const std::vector<std::size_t>& candidates);
} // namespace ColumnRoles
