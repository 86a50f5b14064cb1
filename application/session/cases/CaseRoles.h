#pragma once

#include <session/cases/CaseDesignColumns.h>
#include <session/cases/CaseTable.h>
#include <session/cases/ColumnRole.h>

#include <surrogate_session/Export.h>

#include <cstddef>
#include <string>
#include <vector>

/** The columns of a case table that a model works with, as positions in the order wanted. */
struct CaseRoles
{
    std::vector<std::size_t> inputs;
    std::vector<std::size_t> outputs;
    /** Of all columns of the table, with the reasons; empty where nobody asked for reasons. */
    std::vector<ColumnRole> columns = {};
};

/** What is done where no output is named. */
enum class UnnamedOutputs
{
    None,
    Suggested ///< the likely ones are taken (ColumnRoles::likelyOutputs())
};

/**
 * Chooses them by name.
 * @param inputTexts  each a name or a comma list (VariableNames::listed()); none at all: every
 *                    column that is no output and that nothing speaks against
 *                    (ColumnRoles::reasonAgainstInput()), in the order of the file. A column that
 *                    only looks like an output is one all the same if no other is left, then one
 *                    of run numbers with a name.
 * @param outputTexts likewise; none at all: as `unnamed` says.
 * @param design      its columns are neither inputs nor outputs.
 * @throw UsageError for a name that is unknown, comes twice or is a text column's.
 */
SURROGATE_SESSION_EXPORT CaseRoles chooseCaseRoles(const CaseTable& table,
                                                   const std::vector<std::string>& inputTexts,
                                                   const std::vector<std::string>& outputTexts,
                                                   UnnamedOutputs unnamed = UnnamedOutputs::None,
                                                   const CaseDesignColumns& design = {});

/** The same, but where no text is given these roles stay, without what the other texts take. */
SURROGATE_SESSION_EXPORT CaseRoles chooseCaseRoles(const CaseTable& table,
                                                   const std::vector<std::string>& inputTexts,
                                                   const std::vector<std::string>& outputTexts,
                                                   const CaseRoles& present,
                                                   const CaseDesignColumns& design = {});
