#pragma once

#include <session/cases/VariableNames.h>

#include <surrogate_session/Export.h>

#include <cstddef>
#include <string>
#include <vector>

class Workspace;

/**
 * Gives inputs of a workspace their values by name. Each input may be named once, whatever for.
 * @throw UsageError from each function that takes a name: if it is unknown, no input's, or was
 *        named before.
 */
class SURROGATE_SESSION_EXPORT InputValues
{
public:
    /** @param workspace borrowed; its roles must not change as long as this object lives. */
    explicit InputValues(Workspace& workspace);

    /** Whether a text is a name without a value, perhaps of no variable. */
    bool isName(const std::string& text) const;

    /** @param assignment NAME=TEXT.
     *  @throw DistributionTextError also where the texts together have more values than
     *         ProjectDocument::maxTypedValues
     *  @throw UsageError for a comma between digits where the case file has decimal commas. */
    void sweep(const std::string& assignment);

    void sweepEvenly(const std::string& name, std::size_t count);

    /** @param assignment NAME=COUNT. @throw UsageError for anything but a number from 2 to
     *         ProjectDocument::maxSweptValues. */
    void sweepEvenly(const std::string& assignment);

    /** @param assignment NAME=VALUE, with a decimal comma too where the case file has them.
     *  @throw DistributionTextError */
    void hold(const std::string& assignment);

    /** The inputs that hold() has named, by their positions in the roles. */
    const std::vector<std::size_t>& held() const;

private:
    std::size_t take(std::size_t variable);
    std::string withPoint(std::string text) const;

    Workspace& workspace;
    VariableNames variables;
    std::vector<std::string> inputs;
    std::vector<bool> isTaken;
    std::vector<std::size_t> heldInputs;
    std::size_t typedValues = 0; ///< of all texts
};
