#pragma once

#include <session/cases/CaseRoles.h>
#include <session/cases/CaseTable.h>
#include <session/model/SessionModelFactory.h>
#include <session/model/SessionSettings.h>

#include <property/Property.h>

#include <surrogate_session/Export.h>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <string>
#include <vector>

class Project;
class ProjectDocument;
class SurrogateModelInterface;
class SurrogateModelManager;
class SurrogateModelUserDist;

/**
 * The project, the manager and the choices of a session, and what changes several of them at once.
 * The undo stack records changes of the manager's settings and of the terms, unless the caller
 * suspends recording; it records no other changes.
 */
class SessionState
{
public:
    /**
     * Opens the project of a table, whose columns are moved into it.
     * @param model what all models are, of all outputs in the order of their columns; null: models
     *              are fitted to the cases.
     * @throw CaseDataError for a name that a project cannot carry.
     */
    explicit SessionState(CaseTable& table,
                          const boost::shared_ptr<SurrogateModelInterface>& model = nullptr);

    ~SessionState();
    SessionState(const SessionState&) = delete;
    SessionState& operator=(const SessionState&) = delete;

    SessionSettings settings() const;

    /** Makes the settings these; the project emits one change. */
    void setSettings(const SessionSettings& settings);

    /**
     * Gives the variables their roles: those at these positions of the project become inputs and
     * outputs, all others neither.
     */
    void chooseRoles(const CaseRoles& roles);

    /** Excludes these cases, by their positions, ascending, and includes all others that
     *  the columns of weights and blocks do not leave out. */
    void exclude(const std::vector<std::size_t>& excluded);
    const std::vector<std::size_t>& excluded() const { return excludedByUser; }

    /**
     * Takes the settings of a document, all or none.
     * @throw ProjectDocumentError if the document does not fit the cases.
     */
    void load(const ProjectDocument& document);

    /** Puts the settings into a document, without what concerns the case file. */
    void save(ProjectDocument& document) const;

    const boost::shared_ptr<Project> project;
    const boost::shared_ptr<SessionModelFactory> factory;
    const boost::shared_ptr<SurrogateModelManager> manager;
    const boost::shared_ptr<veska::Property<SurrogateModelUserDistCollection>> userDistributions;
    const boost::shared_ptr<SweepInterpolationVariables> interpolation;

private:
    void includeOthers();
    void check(const ProjectDocument& document) const;
    void checkValueCounts() const;

    std::vector<std::size_t> excludedByUser;
    boost::signals2::scoped_connection designConnection;
};

/** The sentence that refuses a text of more values than ProjectContents::maxTypedValues; empty for
 *  others. @param name of the text's variable, if it has one. */
SURROGATE_SESSION_EXPORT std::string excessOfValues(const SurrogateModelUserDist& distribution,
                                                    const std::string& name = "");
