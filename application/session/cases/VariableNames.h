#pragma once

#include <mirel_datamanagement/Variable.h>

#include <surrogate_session/Export.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

/**
 * Finds variables by what a user types: one name, a list of names, a name with a value. Names may
 * hold every character, the separators of these forms included; they are compared byte by byte.
 */
class SURROGATE_SESSION_EXPORT VariableNames
{
public:
    /** @param names without duplicates; positions below count in this order. */
    explicit VariableNames(std::vector<std::string> names);

    const std::vector<std::string>& names() const;

    /** @throw UsageError with the names there are, and the nearest one if there is one
     *  (nearestText()). */
    std::size_t position(const std::string& name) const;

    /**
     * The positions that a comma list names, in its order. The text is looked for as one name
     * first, then taken apart at its commas, longer names before shorter ones, so that a name that
     * holds a comma need not be marked. Blanks around a name do not count.
     * @throw UsageError for a part that is no name.
     */
    std::vector<std::size_t> listed(const std::string& text) const;

    /**
     * Splits NAME=VALUE: the longest name that fits, so that both may hold an equals sign.
     * @throw UsageError if there is no equals sign, or no name before one.
     */
    std::pair<std::size_t, std::string> assignment(const std::string& text) const;

    /** The sentences that say that `name` is not among the names. */
    std::string unknownMessage(const std::string& name) const;

private:
    std::vector<std::string> nameList;
};

/** The names of variables, in their order. @throw HandleError as VarPtr::lock() does. */
SURROGATE_SESSION_EXPORT std::vector<std::string> namesOf(const std::vector<VarPtr>& variables);

/** The same for messages, pages and pictures: shortened like shortText(). */
SURROGATE_SESSION_EXPORT std::vector<std::string>
shownNamesOf(const std::vector<VarPtr>& variables);
