#pragma once

#include <mirel_fitting/FittedModel.h>
#include <mirel_fitting/KrigingOptions.h>
#include <mirel_fitting/KrigingReport.h>

#include <memory>

/**
 * Universal Kriging with a tensor-product Matern 5/2 correlation, one length per input, estimated
 * by restricted maximum likelihood with a weak prior of the lengths. Each output is fitted once,
 * when it is first used. Stein: Interpolation of Spatial Data, Springer 1999; Santner, Williams,
 * Notz: The Design and Analysis of Computer Experiments, 2nd ed., Springer 2018, ch. 3.
 *
 * Exact copies of a case count once. Replicates, cases with the same inputs and different outputs,
 * are smoothed by the nugget, and exact copies then count as measurements like the others; they are
 * averaged where the nugget is fixed, or its lower bound is larger than their variance explains.
 * Inputs that are constant, up to a few units in the last place, have no influence; a constant
 * output, a single case or no input that varies give a constant. Where the nugget is the smallest
 * that keeps the factorisation sound, the prediction is corrected for it, so that the model
 * interpolates the cases.
 *
 * Points that form a Cartesian grid of the inputs, in any nesting, with constant inputs or some
 * that vary together, are predicted by matrix products or sums along one input, at a few percent of
 * the cost of scattered points.
 *
 * A fit costs some ten to thirty times n^3 multiplications and two n x n matrices for n distinct
 * cases; above 5000 the lengths are those of 2500, refined by one or two steps with all of them,
 * and a few times n^3 remain. More than 10 000 are modelled in two layers: an exact model of 10 000
 * spread over all of them, and nearest-neighbour Kriging of what it leaves, unless one of the two
 * alone predicts left-out cases better; the memory is then some 1.5 GiB, 1.8 GiB for a million.
 * fitWarnings() says what was chosen. The order of the cases and the number of threads do not
 * change a fit.
 */
class MIREL_FITTING_EXPORT KrigingSurrogateModel : public FittedModel
{
public:
    /** Of a model whose correlation lengths are estimated, not counting inputs that are constant:
     *  each start of the search holds a matrix of 8 bytes per pair of inputs, and a step takes time
     *  with the cube of their number. */
    static constexpr std::size_t maxInputs = 2000;

    /** @throw Error also if the range of an input is not finite, an option is out of its range, or
     *         more than maxInputs vary. */
    KrigingSurrogateModel(const std::vector<double*>& independentColumns,
                          const std::vector<double*>& dependentColumns, int rowCount,
                          const KrigingOptions& options);

    /** The same with the options one by one. @param nuggetMode 0: estimated; 1: fixed. */
    KrigingSurrogateModel(const std::vector<double*>& independentColumns,
                          const std::vector<double*>& dependentColumns, int rowCount,
                          double tolerance, const std::vector<double>& correlationLengths,
                          int trendOrder, double initialCorrelationLength, double nugget,
                          int nuggetMode);
    ~KrigingSurrogateModel() override;

    void activateDependentVariables(const std::set<int>& offsets) override;
    void interpolateDependentValues(const std::vector<double*>& inputs,
                                    const std::set<int>& offsets, std::vector<double*>& outputs,
                                    std::size_t count) const override;
    bool surfaceCoefficientInformationAvailable() const override;
    bool qualityMetricInformationAvailable() const override;
    std::string surfaceCoefficientInformation(int offset) const override;
    std::string qualityMetricInformation(int offset) const override;

    FitMetrics fitMetrics(int offset) const override;
    std::vector<std::string>
    fitWarnings(int offset, const std::vector<std::string>& inputNames = {}) const override;
    std::vector<std::string>
    fitNotes(int offset, const std::vector<std::string>& inputNames = {}) const override;
    std::vector<double> extrapolations(const std::vector<double*>& inputs,
                                       std::size_t count) const override;
    /** Also names points where a smooth process has more than 1.1 times the largest leave-one-out
     *  variance of the cases, or whose leverage exceeds four times the largest of theirs. */
    Extrapolation extrapolation(const std::vector<double*>& inputs, std::size_t count,
                                const std::vector<std::string>& inputNames = {}) const override;
    std::vector<char> outsideCases(const std::vector<double*>& inputs,
                                   std::size_t count) const override;
    PredictorDescription predictorDescription(int offset) const override;

    /**
     * Of universal Kriging, the uncertainty of the trend included; with the process variance and
     * the lengths as they were estimated. Of a model in two layers the larger of the Kriging errors
     * of both, given the nearest cases, and outside the ranges of the cases at least those of the
     * exact model of the subset. Where the model interpolates, the error of the mean is 0 at a case
     * and at least 1.5e-7 of the process's standard deviation elsewhere. Keeps n x n numbers from
     * the first call on, for n distinct cases (of a subset, once a point lies outside) and each
     * output asked for.
     */
    std::vector<double> standardErrors(const std::vector<double*>& inputs, int offset,
                                       ErrorKind kind, std::size_t count) const override;
    /** The first call may refit the model to parts of the cases, with FitProgress like a fit. */
    double intervalQuantile(int offset, double level) const override;
    CalibrationReport calibrationReport(int offset) const override;

    /**
     * With the lengths, the nugget and the process variance of all cases; the trend is estimated
     * anew. Rows with the same inputs are left out together. Of more than 10 000 distinct cases
     * those that fitMetrics() is measured at.
     */
    std::vector<LeaveOneOutPrediction> leaveOneOutPredictions(int offset) const override;

    /** The estimated parameters. */
    KrigingReport krigingReport(int offset) const;

    /** The derivatives of the predictions by the inputs, in the unit of the output per unit of the
     *  input: one vector of `count` values per input. */
    std::vector<std::vector<double>> gradients(const std::vector<double*>& inputs, int offset,
                                               std::size_t count) const;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
