#pragma once

#include <session/cases/CaseTable.h>

#include <surrogate_session/Export.h>

#include <cstddef>
#include <string>
#include <vector>

/** The columns of a case table that a model works with, as positions in the order wanted. */
struct CaseRoles
{
    std::vector<std::size_t> inputs;
    std::vector<std::size_t> outputs;
};

/**
 * Chooses them by name.
 * @param inputTexts  each a name or a comma list (VariableNames::listed()); none at all: every
 *                    numeric column that is no output, in the order of the file.
 * @param outputTexts likewise; none at all: no output.
 * @throw UsageError for a name that is unknown, comes twice or is a text column's.
 */
SURROGATE_SESSION_EXPORT CaseRoles chooseCaseRoles(const CaseTable& table,
                                                   const std::vector<std::string>& inputTexts,
                                                   const std::vector<std::string>& outputTexts);

/** The same, but where no text is given these roles stay, without what the other texts take. */
SURROGATE_SESSION_EXPORT CaseRoles chooseCaseRoles(const CaseTable& table,
                                                   const std::vector<std::string>& inputTexts,
                                                   const std::vector<std::string>& outputTexts,
                                                   const CaseRoles& present);
