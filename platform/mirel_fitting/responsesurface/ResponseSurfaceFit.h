#pragma once

#include <mirel_fitting/CaseDesign.h>
#include <mirel_fitting/FitMetrics.h>
#include <mirel_fitting/LeaveOneOutPrediction.h>
#include <mirel_fitting/PredictorDescription.h>
#include <mirel_fitting/ResponseSurfaceOptions.h>
#include <mirel_fitting/ResponseSurfaceStatistics.h>
#include <mirel_fitting/cases/CaseRanges.h>
#include <mirel_fitting/cases/ReplicatedCases.h>
#include <mirel_fitting/numerics/InputNames.h>
#include <mirel_fitting/numerics/IntervalCalibration.h>
#include <mirel_fitting/polynomial/PolynomialFit.h>
#include <mirel_fitting/polynomial/PolynomialPredictor.h>
#include <mirel_fitting/responsesurface/FactorialCoding.h>
#include <mirel_fitting/responsesurface/PolynomialForm.h>
#include <mirel_fitting/responsesurface/ResponseSurfaceAnalysis.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

/**
 * The polynomials fitted to several outputs over the same inputs, with their statistics and texts.
 * Outputs are addressed by their position among the columns given.
 */
class ResponseSurfaceFit
{
public:
    /**
     * @param inputs  one array of `cases` finite values per input, borrowed for the call.
     * @param outputs one array of `cases` finite values per output, borrowed for the call.
     * @throw SurrogateModelInterface::Error as PolynomialForm::lowered() and WeightedBlocks, or if
     * a FitProgress cancels.
     */
    ResponseSurfaceFit(const std::vector<double*>& inputs, const std::vector<double*>& outputs,
                       std::size_t cases, const PolynomialForm& wanted,
                       ResponseSurfaceOptions::Selection selection, const CaseDesign& design = {});

    const PolynomialPredictor& predictor() const { return *polynomials; }

    /** The numbers that predictor() computes from, without the ranges of the inputs. */
    PredictorDescription description(std::size_t output) const;

    std::string equationText(std::size_t output) const;
    std::string qualityText(std::size_t output) const;
    FitMetrics metrics(std::size_t output) const;
    std::vector<std::string> warnings(std::size_t output,
                                      const InputNames& names = InputNames()) const;
    /** The warnings that are no reason to doubt the fit: consequences of the options. */
    std::vector<std::string> notes(std::size_t output, const InputNames& names) const;
    ResponseSurfaceStatistics statistics(std::size_t output, double level,
                                         InputCoding coding = InputCoding::Axial) const;
    std::vector<LeaveOneOutPrediction> leaveOneOutPredictions(std::size_t output) const;
    std::size_t degreesOfFreedom(std::size_t output) const;
    /** @throw SurrogateModelInterface::Error without residual degrees of freedom. */
    IntervalCalibration intervalCalibration(std::size_t output) const;

    /** Which points the cases do not support, as CaseSupport says, by all terms that were wanted.
     *  @param ranges of the inputs. Arguments are borrowed for the call. */
    std::vector<char> unsupported(const CaseRanges& ranges, const std::vector<double*>& points,
                                  std::size_t count) const;

    /** @param points one array of `count` values per input, borrowed for the call. */
    std::vector<double> standardErrors(std::size_t output, const std::vector<double*>& points,
                                       bool ofObservation, std::size_t count) const;

private:
    struct OutputFit
    {
        std::shared_ptr<const PolynomialFit> fit;
        std::size_t position; ///< of the output in it
        ResponseSurfaceAnalysis::PureError pureError;
        std::vector<std::size_t> unneeded; ///< terms of the basis that were not selected

        const PolynomialFit::Output& output() const { return fit->outputs()[position]; }
        ResponseSurfaceAnalysis analysis() const { return {*fit, position, pureError}; }
    };

    static void selectTerms(OutputFit& one, const std::vector<double*>& inputs, double* output);
    std::shared_ptr<PolynomialFit> fitted(const std::vector<double*>& inputs,
                                          const std::vector<double*>& outputs,
                                          std::size_t cases) const;
    void findPureErrors(const std::vector<double*>& inputs, const std::vector<double*>& outputs);
    /** Though they were wanted: the cases are too few and have two levels. */
    bool isWithoutSquares() const { return wantedForm.hasSquares && !fittedForm.hasSquares; }
    PolynomialPredictor makePredictor() const;
    std::vector<RidgePoint> withStandardErrors(std::size_t output,
                                               std::vector<RidgePoint> points) const;
    std::vector<CoefficientStatistics>
    onlyWanted(const std::vector<CoefficientStatistics>& ofBasis) const;

    std::size_t inputCount;
    FactorialCoding factorialCoding;
    std::shared_ptr<const WeightedBlocks> weightedBlocks;
    PolynomialForm wantedForm;
    PolynomialForm fittedForm;                   // lowered as the cases need
    std::shared_ptr<const PolynomialFit> common; // of all outputs, before any selection of terms
    std::vector<OutputFit> fits;
    ReplicatedCases replicated; // none of more than maxSampled cases
    std::unique_ptr<const PolynomialPredictor> polynomials;
};
