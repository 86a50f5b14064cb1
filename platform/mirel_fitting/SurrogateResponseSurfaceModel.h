#pragma once

#include <mirel_fitting/CaseDesign.h>
#include <mirel_fitting/FittedModel.h>
#include <mirel_fitting/ResponseSurfaceOptions.h>
#include <mirel_fitting/ResponseSurfaceStatistics.h>

#include <memory>

/**
 * Response surface: a full quadratic polynomial of the inputs, fitted by least squares.
 *
 * Terms: intercept, V1 ... Vd, then V_i V_j with i <= j (for two inputs V1^2, V1 V2, V2^2); they
 * are fitted, stored, printed and listed in this order; on request only some of them. With fewer
 * cases than terms the order is lowered, to linear, then to constant; terms that the cases cannot
 * separate are dropped, higher orders before lower ones and products before squares; on request, so
 * are terms that an output does not need. fitWarnings() names them.
 *
 * Everything is computed in the constructor, for all outputs, in a few passes over the columns and
 * on all cores that setThreadCount() allows: time grows with cases times terms squared, memory with
 * the square of the terms. The fit does not depend on the units and origins of the inputs and
 * outputs, beyond rounding.
 *
 * The equation text is one line, `5.5 - 1.25 * V1 + 2 * V1^2 + 0.5 * V1 * V2` and a newline. A
 * dropped term is not in it. Where multiplying out would lose more than 1e-9 of the output's
 * spread, (V1 - c) stands in the place of V1, and so on.
 *
 * Figures that do not exist are NaN in fitMetrics() and "not available" in the text: R2, adjusted
 * and predicted R2 of an output that is the same in every case; what needs residual degrees of
 * freedom when there are as many terms as cases; PRESS and what is computed from it when a case has
 * leverage 1.
 */
class MIREL_FITTING_EXPORT SurrogateResponseSurfaceModel : public FittedModel
{
public:
    /** Which terms of the polynomial an output keeps. */
    using Selection = ResponseSurfaceOptions::Selection;

    /** What is fitted where the cases are too few for a full quadratic polynomial. */
    enum class Fallback
    {
        Linear, ///< without products and squares
        /** Linear with interactions where each input has two levels at most, which show no squares,
         *  the cases can separate all terms and one case more than terms is left; else Linear. */
        InteractionsOfTwoLevels
    };

    /** Of a polynomial, the constant among them: the triangular factor of so many takes 800 MB, and
     *  three of them are held at a time. */
    static constexpr std::size_t maxTerms = 10000;

    /** @throw Error also if the polynomial has more than maxTerms, or a FitProgress cancels. */
    SurrogateResponseSurfaceModel(const std::vector<double*>& independentColumns,
                                  const std::vector<double*>& dependentColumns,
                                  std::size_t rowCount);

    /** @param highestOrder 0 constant, 1 linear, 2 full quadratic; anything else is an Error. */
    SurrogateResponseSurfaceModel(const std::vector<double*>& independentColumns,
                                  const std::vector<double*>& dependentColumns,
                                  std::size_t rowCount, int highestOrder);

    /** @param design weights of the cases, and blocks, whose average effect predictions have.
     * @throw Error also for weights that are not positive, or too few. */
    SurrogateResponseSurfaceModel(const std::vector<double*>& independentColumns,
                                  const std::vector<double*>& dependentColumns,
                                  std::size_t rowCount, const ResponseSurfaceOptions& options,
                                  const CaseDesign& design = {},
                                  Fallback fallback = Fallback::Linear);

    /**
     * How many terms such a polynomial has, the constant among them, if the cases suffice.
     * @param isVarying one per input: constant ones have no terms.
     * @throw Error for a formula that is none of these inputs.
     */
    static std::size_t termCount(const ResponseSurfaceOptions& options,
                                 const std::vector<bool>& isVarying);

    ~SurrogateResponseSurfaceModel() override;

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
    /** Also names points whose leverage exceeds 1.5 times the largest of the cases, or that break a
     *  relation between terms that holds in all cases. */
    Extrapolation extrapolation(const std::vector<double*>& inputs, std::size_t count,
                                const std::vector<std::string>& inputNames = {}) const override;
    std::vector<char> outsideCases(const std::vector<double*>& inputs,
                                   std::size_t count) const override;
    PredictorDescription predictorDescription(int offset) const override;

    /** RMSE times the root of the leverage that the point would have, plus 1 for an observation.
     *  NaN where there are as many terms as cases. */
    std::vector<double> standardErrors(const std::vector<double*>& inputs, int offset,
                                       ErrorKind kind, std::size_t count) const override;
    double intervalQuantile(int offset, double level) const override;
    double confidenceQuantile(int offset, double level) const override;
    CalibrationReport calibrationReport(int offset) const override;

    /**
     * Equal to refits without each case, RMSE included: the standard error has one degree of
     * freedom less than the fit. Of more than 100 000 cases a stratified sample of 100 000, one at
     * random of each stratum of rows.
     */
    std::vector<LeaveOneOutPrediction> leaveOneOutPredictions(int offset) const override;

    /**
     * With more than 100 000 cases the analysis of variance has no pure error and lack of fit.
     * @param level  of the confidence limits.
     * @param coding of the coded coefficients alone.
     * @throw Error also for a level that is not between 0 and 1.
     */
    ResponseSurfaceStatistics
    responseSurfaceStatistics(int offset, double level = 0.95,
                              InputCoding coding = InputCoding::Axial) const;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
