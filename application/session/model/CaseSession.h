#pragma once

#include <session/cases/CaseCounts.h>
#include <session/cases/CaseRoles.h>
#include <session/cases/CaseTable.h>

#include <mirel_datamanagement/Variable.h>
#include <mirel_fitting/FitMetrics.h>
#include <mirel_fitting/KrigingReport.h>
#include <mirel_fitting/PolynomialTerms.h>

#include <surrogate_session/Export.h>

#include <boost/shared_ptr.hpp>
#include <vtkSmartPointer.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class Project;
class ProjectDocument;
class SurrogateModelInterface;
class SurrogateModelManagerInterface;
class vtkTable;
struct ResponseSurfaceStatistics;
struct ExportedModel;

/** What fitting one output came to. */
struct OutputFit
{
    std::string name;
    FitMetrics metrics;
    std::vector<std::string> warnings;    ///< what changed the result, a sentence each
    std::optional<KrigingReport> kriging; ///< of a Kriging model only; rows are cases, from 0
};

/** Between which values one more case at each of some points would lie, with some probability. */
struct PredictionLimits
{
    std::vector<double> lower; ///< one per point; NaN where there are none, like `upper`
    std::vector<double> upper;
};

/** Wall-clock time in seconds that the steps of a session took, 0 for those not taken. */
struct SessionTimes
{
    double fit = 0.0;      ///< from asking for the model to the finished fit of all outputs
    double evaluate = 0.0; ///< filling the grid and evaluating the model, without writing
};

/**
 * The open project of a program: the cases of one table with their roles, the model over them and
 * the values at which it is evaluated. All outputs are fitted together, from the cases that are
 * valid for all of them.
 *
 * Nothing that it does is recorded for undoing, but load() where asked. Inputs and outputs are
 * addressed by their position in the roles. One lives at a time, since its project is the open one.
 */
class SURROGATE_SESSION_EXPORT CaseSession
{
public:
    enum Model
    {
        Kriging,
        ResponseSurface
    };

    /** Which terms of its polynomial a response surface keeps. */
    enum Terms
    {
        AllTerms,
        SelectedTerms ///< those that lower the corrected Akaike information criterion, per output
    };

    /** More values of one input than these would not fit a table that anybody can use. */
    static constexpr std::size_t mostSweptValues = 100000000;

    enum Recording
    {
        NoUndoStep,
        OneUndoStep
    };

    /**
     * The cases without roles, all included, for Kriging.
     * @param table moved in: the columns are not copied.
     * @throw CaseDataError for a name that a project cannot carry.
     */
    explicit CaseSession(CaseTable table);

    /** The same with choices made. @param excluded positions of cases, from 0, ascending. */
    CaseSession(CaseTable table, const CaseRoles& roles, const std::vector<std::size_t>& excluded,
                Model model);

    /**
     * A model that is there already, without cases; its inputs have the ranges that it brings, and
     * stay at their minima.
     * @throw SurrogateModelInterface::Error if it cannot be used.
     */
    explicit CaseSession(const ExportedModel& model);

    /** What is moved from can only be destroyed. */
    CaseSession(CaseSession&&) noexcept;

    /** Closes the project. */
    ~CaseSession();

    const Project& project() const;
    const SurrogateModelManagerInterface& manager() const;
    Model modelType() const;

    /** In the order of the roles. */
    const std::vector<VarPtr>& inputs() const;
    const std::vector<VarPtr>& outputs() const;

    /** Valid until the cases, their roles or the chosen inputs change. */
    const CaseCounts& counts() const;

    /** The positions of the valid cases, ascending: what a model calls its rows. */
    std::vector<std::size_t> validCases() const;

    /** The columns at these positions become inputs and outputs, all others neither. */
    void chooseRoles(const CaseRoles& roles);

    /** Takes these cases out, by their positions from 0, ascending, and all others in. */
    void exclude(const std::vector<std::size_t>& excluded);

    void chooseModel(Model model);

    /** All terms unless chosen. The choice stays, without effect, while the model is Kriging. */
    void chooseTerms(Terms terms);
    Terms terms() const;

    /** The polynomial of a response surface, the full quadratic one unless chosen. It stays like
     *  the choice of terms, which is made among those that it has. */
    void choosePolynomial(PolynomialTerms terms);
    PolynomialTerms polynomial() const;

    /**
     * Takes the choices of a document instead of those made so far, all or none: after a failure
     * everything is as before. A distribution text that cannot be read is told as the library
     * does it, and left out.
     * @throw ProjectDocumentError if the document does not fit the cases.
     */
    void load(const ProjectDocument& document, Recording recording = NoUndoStep);

    /**
     * The choices as a document, with what the document loaded last holds beyond them.
     * @throw FileError if the case file cannot be read any more; UsageError if the cases came from
     *        the standard input.
     */
    ProjectDocument document() const;

    /** Sweeps an input over the values of a distribution text. @throw DistributionTextError */
    void sweep(std::size_t input, const std::string& text);

    /** Sweeps an input evenly over its range.
     *  @param count from 2 to mostSweptValues, else UsageError. */
    void sweepEvenly(std::size_t input, std::size_t count);

    /** Moves the evaluation point, which is each input's minimum at first.
     *  @throw DistributionTextError unless the text is one number. */
    void stayAt(std::size_t input, const std::string& text);

    /** The inputs that are swept, by their positions in the roles, ascending. */
    std::vector<std::size_t> sweptInputs() const;

    /**
     * Fits all outputs, once.
     * @return valid as long as this object.
     * @throw SurrogateModelInterface::Error
     */
    SurrogateModelInterface& fit();

    /** What the fit came to, one per output. @throw SurrogateModelInterface::Error */
    std::vector<OutputFit> fits();

    /** The statistics of a response surface, one per output; none at all of another model. The rows
     *  of the largest leverages are positions of cases, from 0.
     *  @throw SurrogateModelInterface::Error */
    std::vector<ResponseSurfaceStatistics> statistics();

    /**
     * Every combination of the inputs' values with the outputs there: a column per input, then one
     * per output, in the order of the roles.
     * @throw SurrogateModelInterface::Error
     */
    vtkSmartPointer<vtkTable> evaluate();

    /**
     * The outputs at given points.
     * @param points one column of `count` numbers per input, borrowed for the call. A point with a
     *               number that is not finite gets NaN.
     * @return one column per output.
     * @throw SurrogateModelInterface::Error
     */
    std::vector<std::vector<double>> predict(const std::vector<const double*>& points,
                                             std::size_t count);

    /**
     * Prediction intervals of the outputs at given points, for the noise of a case included. An
     * output whose model has none gets NaN; limitFaults() says why.
     * @param points  as for predict().
     * @param percent above 0 and below 100: how many of such cases lie between the limits.
     * @return one per output.
     * @throw SurrogateModelInterface::Error
     */
    std::vector<PredictionLimits> limits(const std::vector<const double*>& points,
                                         std::size_t count, double percent);

    /** The same at the points of a table that evaluate() has made. */
    std::vector<PredictionLimits> limits(vtkTable& table, double percent);

    /** Which outputs of the last limits() have none and why, a sentence each. */
    const std::vector<std::string>& limitFaults() const;

    /** What the points of the last evaluate() or predict() have outside the valid cases, a
     * sentence; empty if nothing. */
    const std::string& extrapolation() const;

    /** The legend and the equations of all outputs. @throw SurrogateModelInterface::Error */
    std::string equationText();

    /** The equation of each output alone. @throw SurrogateModelInterface::Error */
    std::vector<std::string> equations();

    /** What the exporter of a model reported of it, a JSON object; empty for cases. */
    const std::string& exportedReport() const;

    const SessionTimes& times() const;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
