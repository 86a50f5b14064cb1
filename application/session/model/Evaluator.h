#pragma once

#include <mirel_fitting/Extrapolation.h>
#include <mirel_fitting/FittedModel.h>
#include <mirel_fitting/KrigingReport.h>
#include <mirel_fitting/ModelInterfaces.h>
#include <session/model/SessionFindings.h>

#include <surrogate_session/Export.h>

#include <vtkSmartPointer.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class SurrogateModelInterface;
class vtkTable;
class Workspace;
struct ResponseSurfaceStatistics;

/** The fit of one output. */
struct OutputFit
{
    std::string name;
    FitMetrics metrics;
    std::vector<std::string> notes;    ///< what was asked for or is normal, a sentence each
    std::vector<std::string> warnings; ///< what else changed the result, likewise
    ModelledTransform modelled;
    std::optional<KrigingReport> kriging; ///< of a Kriging model only; rows are cases, from 0
    /** Of prediction intervals; none where the model has none, or nobody asked for them yet. */
    std::optional<CalibrationReport> calibration;
};

/** The fits of all outputs, in the order of the roles. */
struct FitResult
{
    std::vector<OutputFit> outputs;
    double seconds = 0.0; ///< wall-clock time, from asking for the model to its last fitted output
};

struct HeldInput
{
    std::string name;
    double value = 0.0; ///< at all points
};

/** What comes with values of a model at some points. */
struct Evaluation
{
    std::vector<PredictionIntervals> intervals; ///< one per output; none if not asked for
    std::vector<std::string> intervalFaults;    ///< why those of an output are NaN, a sentence each
    Extrapolation extrapolation;                ///< with the rows of the points
    double seconds = 0.0;                       ///< wall-clock time of the values alone
    std::vector<HeldInput> held; ///< the inputs that a grid does not sweep; none of other points
};

struct GridEvaluation : Evaluation
{
    vtkSmartPointer<vtkTable> table; ///< a column per input, then one per output
};

struct PointEvaluation : Evaluation
{
    std::vector<std::vector<double>> outputs; ///< one column per output
};

/**
 * Fits the model of a workspace when it is needed, and evaluates it. All outputs are fitted
 * together, from the cases that are valid for all of them; the model is kept until a choice that
 * it depends on changes. Inputs and outputs are in the order of the roles.
 *
 * Each function throws SurrogateModelInterface::Error where the model cannot be fitted.
 */
class SURROGATE_SESSION_EXPORT Evaluator
{
public:
    /** @param workspace borrowed for the life of this object. */
    explicit Evaluator(const Workspace& workspace);
    ~Evaluator();

    Evaluator(const Evaluator&) = delete;
    Evaluator& operator=(const Evaluator&) = delete;

    /** @return valid until a choice that the model depends on changes. */
    SurrogateModelInterface& model();

    /** The same model; null if it was read from a file, without cases. */
    const FittedModel* fittedModel();

    /** @return valid like model(). */
    const FitResult& fit();

    /** The same with the calibrations of all outputs, which may take a fifth of the fit's time. */
    const FitResult& calibratedFit();

    /** The statistics of a response surface, one per output; none at all of another model. The rows
     *  of leverages and diagnostics are positions of cases, from 0.
     *  @return valid like model(), and until another coding is chosen. */
    const std::vector<ResponseSurfaceStatistics>& statistics();

    /** What may be wrong with the cases and the fit: SessionFindings::ofFit().
     *  @return valid like model(). */
    const SessionFindings& findings();

    /**
     * Every combination of the inputs' values with the outputs there.
     * @param percent of the prediction intervals, above 0 and below 100: how many cases at a point
     * lie inside; none: no intervals are computed.
     */
    GridEvaluation evaluate(const std::optional<double>& percent = std::nullopt);

    /**
     * The outputs at given points.
     * @param points  one column of `count` numbers per input, borrowed for the call. A point with a
     *                number that is not finite gets NaN.
     * @param percent as for evaluate().
     */
    PointEvaluation predict(const std::vector<const double*>& points, std::size_t count,
                            const std::optional<double>& percent = std::nullopt);

    /** One flag per point: whether it lies outside the cases (PredictiveModel::outsideCases()); all
     *  0 for a model that does not know. @param points as for predict(). */
    std::vector<char> outsideCases(const std::vector<const double*>& points, std::size_t count);

    /** The legend and the equations of all outputs. */
    std::string equationText();

    /** The equation of each output alone. */
    std::vector<std::string> equations();

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
