#pragma once

#include <mirel_fitting/BoxCoxProfile.h>
#include <mirel_fitting/CaseDesign.h>
#include <mirel_fitting/FittedModel.h>
#include <mirel_fitting/OutputTransform.h>
#include <mirel_fitting/TransformSetting.h>

#include <functional>
#include <memory>
#include <optional>

/**
 * A model of any kind, some of whose outputs are fitted as their square root or logarithm and
 * predicted in their own units. Only an output that is positive in all cases is transformed.
 *
 * Predictions are medians: those of the transform, transformed back, and so are the ends of
 * prediction intervals, which keep their probability. A standard error is half the distance between
 * the predictions of the transform plus and minus its standard error, transformed back: to first
 * order that of the delta method, but not 0 where the square root is. Metrics and leave-one-out
 * predictions are in the output's units; what the model inside reports of its parameters is in
 * those of the transform, and so are its warnings and texts.
 *
 * Box, Cox: An analysis of transformations, J. R. Stat. Soc. B 26 (1964).
 */
class MIREL_FITTING_EXPORT TransformedOutput : public FittedModel
{
public:
    /** Makes the model that is fitted: of these columns, borrowed for the call, and as many rows.
     *  Its outputs should be fitted when they are first used, since some never are. The design is
     * of these rows. */
    using Maker =
        std::function<std::unique_ptr<FittedModel>(const std::vector<double*>& independentColumns,
                                                   const std::vector<double*>& dependentColumns,
                                                   std::size_t rowCount, const CaseDesign& design)>;

    /**
     * @param setting SquareRoot, Logarithm and None hold for every output that can be transformed.
     *        Automatic, and Usual likewise, choose for each output when it is first used: a
     *        transform is taken if with it both the log-likelihood and the log-density of left-out
     *        cases, in the output's units, are larger by more than 5, or 10 where only some cases
     *        are compared. Where the two disagree, the likelihood rests on cases that the model
     *        does not predict. They are compared on 100 of the distinct cases; an output whose
     *        largest value is less than 1.5 times its smallest is left as it is, since no transform
     *        would bend it much. BoxCox chooses for each output by BoxCoxProfile, with all cases:
     *        for response surfaces, whose fits cost little.
     * @throw Error as the model that `maker` makes.
     */
    TransformedOutput(const std::vector<double*>& independentColumns,
                      const std::vector<double*>& dependentColumns, std::size_t rowCount,
                      Maker maker, TransformSetting setting = TransformSetting::Automatic,
                      const CaseDesign& design = {});
    ~TransformedOutput() override;

    /** What the output is fitted as; None for the output itself. Chosen by the first call. */
    OutputTransform transform(int offset) const;

    /** How much larger log-likelihood and log-density are than for the output itself, the smaller
     *  of the two; NaN if nothing was compared. */
    double gain(int offset) const;

    /** What the choice by TransformSetting::BoxCox rests on; none for another setting, and for an
     * output that is not positive in all cases. */
    std::optional<BoxCoxProfile> boxCoxProfile(int offset) const;

    /** The model inside and the offset of the output, or its transform, there. Valid as long as
     *  this object. @{ */
    const FittedModel& inner() const;
    int innerOffset(int offset) const;
    /** @} */

    void activateDependentVariables(const std::set<int>& offsets) override;
    void interpolateDependentValues(const std::vector<double*>& inputs,
                                    const std::set<int>& offsets, std::vector<double*>& outputs,
                                    std::size_t count) const override;
    bool surfaceCoefficientInformationAvailable() const override;
    bool qualityMetricInformationAvailable() const override;
    /** Of the transform, within exp() or max(0, ...)^2. */
    std::string surfaceCoefficientInformation(int offset) const override;
    /** Of the transform, after a line that says so. */
    std::string qualityMetricInformation(int offset) const override;

    FitMetrics fitMetrics(int offset) const override;
    std::vector<std::string>
    fitWarnings(int offset, const std::vector<std::string>& inputNames = {}) const override;
    std::vector<std::string>
    fitNotes(int offset, const std::vector<std::string>& inputNames = {}) const override;
    std::vector<double> extrapolations(const std::vector<double*>& inputs,
                                       std::size_t count) const override;
    Extrapolation extrapolation(const std::vector<double*>& inputs, std::size_t count,
                                const std::vector<std::string>& inputNames = {}) const override;
    std::vector<char> outsideCases(const std::vector<double*>& inputs,
                                   std::size_t count) const override;
    PredictorDescription predictorDescription(int offset) const override;

    std::vector<double> standardErrors(const std::vector<double*>& inputs, int offset,
                                       ErrorKind kind, std::size_t count) const override;
    PredictionIntervals predictionIntervals(const std::vector<double*>& inputs, int offset,
                                            double level, std::size_t count) const override;
    /** Of the transform. */
    double intervalQuantile(int offset, double level) const override;
    double confidenceQuantile(int offset, double level) const override;
    CalibrationReport calibrationReport(int offset) const override;
    std::vector<LeaveOneOutPrediction> leaveOneOutPredictions(int offset) const override;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
