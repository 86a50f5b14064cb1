#pragma once

#include <session/cases/CaseCounts.h>
#include <session/cases/CaseRoles.h>
#include <session/cases/CaseTable.h>
#include <session/model/SweepInterpolationVariables.h>
#include <session/project/ModelChoices.h>

#include <surrogatemodel/SurrogateModelManagerInterface.h>

#include <mirel_datamanagement/Variable.h>

#include <surrogate_session/Export.h>

#include <boost/shared_ptr.hpp>
#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

class Project;
class ProjectDocument;
class SessionModelFactory;
struct ExportedModel;

/**
 * The cases of one table and all that is chosen about them: roles, exclusions, the model and its
 * terms, the values at which it is evaluated. Its project is the open one, so that one workspace
 * lives at a time.
 *
 * Inputs and outputs are addressed by their position in the roles. project(), manager() and
 * interpolation() report the changes. The undo stack records a loaded document as one step, and
 * each change of the model's settings (type, terms, inputs, evaluation point), unless the caller
 * suspends recording; it records no other changes.
 */
class SURROGATE_SESSION_EXPORT Workspace
{
public:
    using ModelType = SurrogateModelManagerInterface::ModelType;
    static constexpr ModelType Kriging = SurrogateModelManagerInterface::Kriging;
    static constexpr ModelType ResponseSurface = SurrogateModelManagerInterface::ResponseSurface;

    /**
     * All cases included, without roles, for a response surface of all terms. Opening is no step
     * on the undo stack.
     * @param table moved in: the columns are not copied.
     * @throw CaseDataError for a name that a project cannot carry.
     */
    explicit Workspace(CaseTable table);

    /** The same with choices made. @param excluded positions of cases, from 0, ascending. */
    Workspace(CaseTable table, const CaseRoles& roles, const std::vector<std::size_t>& excluded,
              ModelType type);

    /**
     * A finished model without cases. The inputs have the ranges of the export, and stay where it
     * held them; without such a value at their minima.
     * @throw SurrogateModelInterface::Error if the model cannot be used.
     */
    explicit Workspace(const ExportedModel& model);

    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    /** Closes the project. */
    ~Workspace();

    const Project& project() const;
    boost::shared_ptr<const SurrogateModelManagerInterface> manager() const;
    boost::shared_ptr<const SweepInterpolationVariables> interpolation() const;

    /** Makes the models of the manager. */
    const SessionModelFactory& modelFactory() const;

    /** In the order of the roles. */
    const std::vector<VarPtr>& inputs() const;
    const std::vector<VarPtr>& outputs() const;

    /** What the models call the outputs. Valid until the roles change. */
    const std::vector<int>& outputOffsets() const;

    /** Valid until the cases or their roles change. */
    const CaseCounts& counts() const;

    /** What is known of the case file, without the values, which project() has: its path ("-" for
     *  the standard input, empty for an exported model), how it was read, its columns. */
    const CaseTable& source() const;

    /** The unit of a variable as the case file says it, empty if it says none. */
    std::string unitOf(const std::string& name) const;

    /** The name with its unit, as pictures and tables show it: "Pressure (MPa)", or the name alone.
     */
    std::string labelOf(const std::string& name) const;

    /** The roles of all variables in the order of the project, with the reasons of those that
     *  chooseRoles() got; without reasons after a document was loaded. */
    std::vector<ColumnRole> columnRoles() const;

    /** Those of them that are no inputs for a reason, by name. */
    ReasonedNames reasonsAgainstInputs() const;

    /** The positions of the valid cases, ascending: what a model calls its rows. */
    std::vector<std::size_t> validCases() const;

    /** The columns at these positions become inputs and outputs, all others neither. */
    void chooseRoles(const CaseRoles& roles);

    /** Excludes these cases, by their positions from 0, ascending, and includes all others. */
    void exclude(const std::vector<std::size_t>& excluded);

    void chooseModel(ModelType type);
    ModelType modelType() const;

    /** What concerns response surfaces is kept without effect while the model is Kriging, but the
     *  cases that the columns of weights and blocks leave out stay out.
     *  @throw UsageError for columns that cannot be taken. */
    void choose(const ModelChoices& choices);
    ModelChoices modelChoices() const;

    /**
     * Replaces the choices by those of a document, all or none: after a failure everything is as
     * before. The library reports a distribution text that cannot be read, and leaves it out.
     * @throw ProjectDocumentError if the document does not fit the cases.
     */
    void load(const ProjectDocument& document);

    /**
     * The choices as a document, with what the document loaded last contains beyond them.
     * @throw FileError if the case file cannot be read any more; UsageError if the cases came from
     *        the standard input.
     */
    ProjectDocument document() const;

    /** Sweeps an input over the values of a distribution text. @throw DistributionTextError */
    void sweep(std::size_t input, const std::string& text);

    /** Sweeps an input evenly over its range in the valid cases.
     *  @param count from 2 to ProjectDocument::maxSweptValues, else UsageError. */
    void sweepEvenly(std::size_t input, std::size_t count);

    /** Moves the evaluation point, which is each input's minimum at first.
     *  @throw DistributionTextError unless the text is one number. */
    void stayAt(std::size_t input, const std::string& text);

    /** Moves the evaluation point to the medians of the valid cases for inputs that nothing was
     * said about; without valid cases it stays. A document keeps them with mode Auto. */
    void holdAtMedians(const std::vector<std::size_t>& inputs);

    /** The range of each input over which it is swept: see sweepRange(). */
    std::vector<std::pair<double, double>> sweepRanges() const;

    /** Where each input stays unless it is swept, in its units. */
    std::vector<double> heldValues() const;

    /** The inputs that are swept, by their positions in the roles, ascending. */
    std::vector<std::size_t> sweptInputs() const;

    /** The report of an exported model; null for cases. */
    const nlohmann::ordered_json& exportedReport() const;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
