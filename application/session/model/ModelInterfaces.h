#pragma once

#include <mirel_fitting/KrigingReport.h>
#include <mirel_fitting/OutputTransform.h>
#include <mirel_fitting/ResponseSurfaceStatistics.h>

#include <surrogate_session/Export.h>

#include <limits>
#include <optional>

class FittedModel;
class PredictiveModel;
class SurrogateModelInterface;

/** What of an output was modelled. */
struct ModelledTransform
{
    OutputTransform transform = OutputTransform::None;
    double gain = std::numeric_limits<double>::quiet_NaN(); ///< as TransformedOutput has it
};

/**
 * What the session asks of a model beyond SurrogateModelInterface; the only place that looks at the
 * class of a model. A model need not have any of it. Valid as long as the model.
 */
class SURROGATE_SESSION_EXPORT ModelInterfaces
{
public:
    explicit ModelInterfaces(const SurrogateModelInterface& model);

    /** Null for a model that only predicts. */
    const PredictiveModel* predictive() const;

    /** Null also for a model that was read from a file, without cases. */
    const FittedModel* fitted() const;

    /** Of a model that was fitted; otherwise of none.
     *  @throw SurrogateModelInterface::Error if the output cannot be fitted. */
    ModelledTransform transform(int offset) const;

    /** Of a model fitted by Kriging only. Its rows are those of the fitted columns. The figures are
     *  those of the transform, but the worst cases are in the output's unit.
     *  @throw SurrogateModelInterface::Error if the output cannot be fitted. */
    std::optional<KrigingReport> krigingReport(int offset) const;

    /** Of a fitted response surface only; otherwise as krigingReport(). */
    std::optional<ResponseSurfaceStatistics> responseSurfaceStatistics(int offset) const;

private:
    const SurrogateModelInterface& model;
};
