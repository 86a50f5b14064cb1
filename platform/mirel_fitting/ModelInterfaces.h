#pragma once

#include <mirel_fitting/BoxCoxProfile.h>
#include <mirel_fitting/FittedModel.h>
#include <mirel_fitting/KrigingReport.h>
#include <mirel_fitting/OutputTransform.h>
#include <mirel_fitting/ResponseSurfaceStatistics.h>

#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

/** What of an output was modelled. */
struct ModelledTransform
{
    OutputTransform transform = OutputTransform::None;      ///< None: the output itself
    double gain = std::numeric_limits<double>::quiet_NaN(); ///< as TransformedOutput has it
    std::optional<BoxCoxProfile> profile;                   ///< likewise
};

/**
 * What programs ask of a model beyond SurrogateModelInterface; the only place that looks at the
 * class of a model. A model need not have any of it. Valid as long as the model.
 */
class MIREL_FITTING_EXPORT ModelInterfaces
{
public:
    /** @param model of any class; borrowed. */
    explicit ModelInterfaces(const SurrogateModelInterface& model);

    /** Null for a model that only predicts. */
    const PredictiveModel* predictive() const;

    /** Null also for a model that was read from a file, without cases. */
    const FittedModel* fitted() const;

    /** Of a model that was fitted; otherwise of none.
     *  @throw SurrogateModelInterface::Error if the output cannot be fitted. */
    ModelledTransform transform(int offset) const;

    /**
     * Limits of the mean of an output of a fitted model: confidenceQuantile() standard errors on
     * both sides of the prediction, transformed back where a transform was modelled. NaN where
     * there are no standard errors, as of as many terms as cases.
     */
    PredictionIntervals confidenceLimits(const std::vector<double*>& points, int offset,
                                         double level, std::size_t count) const;

    /**
     * As FittedModel::predictionIntervals() of a fitted model, of a case of its own weight at each
     * point: the variance of its noise is that of a case of mean weight over `weights`.
     * @param weights one per point, in mean weights of the fitted cases.
     * @throw SurrogateModelInterface::Error as FittedModel::predictionIntervals()
     */
    PredictionIntervals predictionIntervals(const std::vector<double*>& points, int offset,
                                            double level, const std::vector<double>& weights) const;

    /** Of a model fitted by Kriging only. Its rows are those of the fitted columns. The figures are
     *  those of the transform, but the worst cases are in the output's unit.
     *  @throw SurrogateModelInterface::Error if the output cannot be fitted. */
    std::optional<KrigingReport> krigingReport(int offset) const;

    /** Of a fitted response surface only; otherwise as krigingReport(): values at the stationary
     *  point and along the ridges are in the output's unit. */
    std::optional<ResponseSurfaceStatistics>
    responseSurfaceStatistics(int offset, InputCoding coding = InputCoding::Axial) const;

private:
    const SurrogateModelInterface& model;
};
