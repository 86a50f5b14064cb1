#pragma once

#include <session/cases/CaseRoles.h>
#include <session/cases/CaseTable.h>
#include <session/model/SweepInterpolationVariables.h>
#include <session/project/TermSettings.h>

#include <surrogatemodel/SurrogateModelManagerInterface.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <mirel_datamanagement/Variable.h>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <map>
#include <optional>
#include <utility>
#include <vector>

class Project;
class ProjectDocument;
class SurrogateModelInterface;
class SessionPipeline;
class SurrogateModelManager;

namespace veska {
template <class T>
class Property;
}

/** Everything that can be chosen in a session besides its cases, as a value. */
struct SessionSettings
{
    struct VariableSettings
    {
        Variable::Nature nature = Variable::Unassigned;
        std::optional<std::pair<double, double>> range;

        bool operator==(const VariableSettings& other) const;
    };

    bool operator==(const SessionSettings& other) const;

    std::map<VarPtr, VariableSettings> variables;
    std::vector<std::size_t> excluded; ///< positions of records, ascending
    SurrogateModelManagerInterface::ModelType type = SurrogateModelManagerInterface::Kriging;
    std::vector<VarPtr> inputs;
    std::vector<VarPtr> outputs;
    SurrogateModelUserDistCollection evaluationPoint;
    SurrogateModelUserDistCollection userDistributions;
    std::map<VarPtr, SweepInterpolationVariables::Sweep> sweeps;
    TermSettings terms;
};

/**
 * The project, the manager and the choices of a session, and what changes several of them at once.
 * Nothing here is recorded for undoing by itself: the manager's settings are, unless the caller
 * suspends recording.
 */
class SessionState
{
public:
    /**
     * Opens the project of a table, whose columns are moved into it.
     * @throw CaseDataError for a name that a project cannot carry.
     */
    explicit SessionState(CaseTable& table);

    /** The same for a model that is there already: of all the columns that become outputs, in their
     *  order. */
    SessionState(CaseTable& table, const boost::shared_ptr<SurrogateModelInterface>& model);

    SessionSettings settings() const;

    /** Makes the settings these; the project tells its listeners once. */
    void setSettings(const SessionSettings& settings);

    /**
     * Gives the variables their roles: those at these positions of the project become inputs and
     * outputs, all others neither.
     */
    void chooseRoles(const CaseRoles& roles);

    /** Takes these cases out, by their positions, and all others in. */
    void exclude(const std::vector<std::size_t>& excluded);

    /** The terms of response surfaces. A model with others is dropped; whoever asks the manager for
     *  a model opens a TermSelectionScope. */
    void chooseTerms(const TermSettings& wanted);
    const TermSettings& terms() const { return chosenTerms; }

    /** Positions of the excluded cases, ascending. */
    std::vector<std::size_t> excluded() const;

    /**
     * Takes the settings of a document, all or none.
     * @throw ProjectDocumentError if the document does not fit the cases.
     */
    void load(const ProjectDocument& document);

    /** Puts the settings into a document, without what concerns the case file. */
    void save(ProjectDocument& document) const;

    const boost::shared_ptr<Project> project;
    const boost::shared_ptr<SessionPipeline> pipeline;
    const boost::shared_ptr<SurrogateModelManager> manager;
    const boost::shared_ptr<veska::Property<SurrogateModelUserDistCollection>> userDistributions;
    const boost::shared_ptr<SweepInterpolationVariables> interpolation;

    /** In the order wanted; the interpolation variables have them as a set. */
    std::vector<VarPtr> outputs;

private:
    void check(const ProjectDocument& document) const;
    void setOutputs(const std::vector<VarPtr>& wanted);

    TermSettings chosenTerms;
};
