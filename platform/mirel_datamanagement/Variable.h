#pragma once

#include <mirel_datamanagement/Export.h>
#include <mirel_datamanagement/WeakPtr.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>

/**
 * One column of a project: what it is called, what part it plays, which values it may take. Made
 * and changed by its Project only. An object that is kept by lock() answers also after its
 * removal and after the end of its project, with what it was then.
 */
class MIREL_DATAMANAGEMENT_EXPORT Variable
{
public:
    /** The part that a variable plays in a model. */
    enum Nature
    {
        Unassigned = 0, ///< none
        Dependent = 1,  ///< an output
        Independent = 2 ///< an input, if the model's list of independent variables has it
    };

    virtual ~Variable();

    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

    /** UTF-8; no other variable of the project has the same bytes. */
    std::string name() const;

    /** The part it plays now, see Project::setNature(). */
    Nature nature() const;

    /** Whether the cells are numbers; a variable never changes between numbers and text. */
    bool isNumeric() const;

    /**
     * The range in the variable's units: as it was set (finite, first <= second), else minimum and
     * maximum of the finite values, else (0, 0). Computed once per change
     * of the values.
     */
    std::pair<double, double> range() const;

    /** The range as it was set; none while it follows the values. */
    std::optional<std::pair<double, double>> chosenRange() const;

    /** Whether it is in its project now: not removed, and the project still open. */
    bool isInProject() const;

private:
    friend class Project;
    class Impl;

    explicit Variable(std::unique_ptr<Impl> impl);

    std::unique_ptr<Impl> impl;
};

/** The handle of a variable; identities are the order of creation in the process, from 1. */
using VarPtr = WeakPtr<Variable, std::size_t>;
