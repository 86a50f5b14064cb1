#include <mirel_fitting/responsesurface/ResponseSurfaceFit.h>

#include <mirel_fitting/SurrogateModelInterface.h>
#include <mirel_fitting/cases/LeftOutCasesWarning.h>
#include <mirel_fitting/numerics/TextPieces.h>
#include <mirel_fitting/responsesurface/CaseSupport.h>
#include <mirel_fitting/responsesurface/ResponseSurfaceTexts.h>
#include <mirel_fitting/responsesurface/StationaryPointFinder.h>
#include <mirel_fitting/responsesurface/TermSelection.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

/** Distances along a ridge: tenths, as tables have them. */
constexpr std::size_t ridgeSteps = 10;

bool haveTwoLevels(const std::vector<double*>& inputs, std::size_t cases)
{
    return std::all_of(inputs.begin(), inputs.end(), [&](const double* values) {
        const auto [low, high] = std::minmax_element(values, values + cases);
        return std::all_of(values, values + cases, [&, low = *low, high = *high](double value) {
            return value == low || value == high;
        });
    });
}

/** Whether a dropped second-order term depends on one that the fit has.
 *  @param common the fit of all wanted terms. */
bool hasAliasedCurvature(const PolynomialFit& common, const PolynomialFit& fit)
{
    const std::size_t firstOfSecondOrder = 1 + common.basis().inputs();
    for (const PolynomialFit::Dependence& one : common.dependences()) {
        for (std::size_t term = firstOfSecondOrder; term < common.basis().size(); ++term) {
            if (one.term >= firstOfSecondOrder && fit.isKept(term) &&
                std::fabs(one.combination[term]) > PolynomialFit::Dependence::rounding) {
                return true;
            }
        }
    }
    return false;
}

} // namespace

ResponseSurfaceFit::ResponseSurfaceFit(const std::vector<double*>& inputs,
                                       const std::vector<double*>& outputs, std::size_t cases,
                                       const PolynomialForm& wanted,
                                       ResponseSurfaceOptions::Selection selection,
                                       const CaseDesign& design)
    : inputCount(inputs.size()), factorialCoding(inputs, cases),
      weightedBlocks(std::make_shared<WeightedBlocks>(design, cases)), wantedForm(wanted)
{
    wantedForm.mayLoseSquares = wanted.mayLoseSquares && haveTwoLevels(inputs, cases);
    fittedForm = wantedForm.lowered(inputCount, cases - weightedBlocks->columns());
    common = fitted(inputs, outputs, cases);
    if (isWithoutSquares() &&
        common->keptCount() < fittedForm.termCount(inputCount) + weightedBlocks->columns()) {
        wantedForm.mayLoseSquares = false;
        fittedForm = wantedForm.lowered(inputCount, cases - weightedBlocks->columns());
        common = fitted(inputs, outputs, cases);
    }
    for (std::size_t k = 0; k < outputs.size(); ++k) {
        fits.push_back({common, k, {}, {}});
        if (selection == ResponseSurfaceOptions::Selection::BackwardAicc) {
            selectTerms(fits.back(), inputs, outputs[k]);
        }
    }
    findPureErrors(inputs, outputs);
    polynomials = std::make_unique<const PolynomialPredictor>(makePredictor());
}

std::shared_ptr<PolynomialFit> ResponseSurfaceFit::fitted(const std::vector<double*>& inputs,
                                                          const std::vector<double*>& outputs,
                                                          std::size_t cases) const
{
    const QuadraticBasis basis(inputCount, fittedForm.order);
    return std::make_shared<PolynomialFit>(basis, inputs, outputs, cases,
                                           fittedForm.wantedTerms(basis), weightedBlocks);
}

void ResponseSurfaceFit::selectTerms(OutputFit& one, const std::vector<double*>& inputs,
                                     double* output)
{
    const std::shared_ptr<const PolynomialFit> whole = one.fit;
    const TermSelection selection(*whole, one.position);
    if (!selection.dropsAny()) {
        return;
    }
    for (std::size_t term = 0; term < whole->basis().size(); ++term) {
        if (whole->isKept(term) && !selection.isWanted()[term]) {
            one.unneeded.push_back(term);
        }
    }
    one.fit = std::make_shared<PolynomialFit>(whole->basis(), inputs, std::vector<double*>{output},
                                              whole->cases(), selection.isWanted(),
                                              whole->sharedWeightedBlocks());
    one.position = 0;
}

void ResponseSurfaceFit::findPureErrors(const std::vector<double*>& inputs,
                                        const std::vector<double*>& outputs)
{
    const std::size_t cases = common->cases();
    if (cases > PolynomialFit::maxSampled) {
        return;
    }
    std::vector<const double*> varying;
    for (std::size_t input = 0; input < inputs.size(); ++input) {
        if (!common->inputScales()[input].isConstantUpToRounding()) {
            varying.push_back(inputs[input]);
        }
    }
    const std::vector<double> blocks(weightedBlocks->positions().begin(),
                                     weightedBlocks->positions().end());
    if (!blocks.empty()) {
        varying.push_back(blocks.data());
    }
    std::vector<double> weights;
    for (std::size_t row = 0; row < cases && weightedBlocks->areWeighted(); ++row) {
        weights.push_back(weightedBlocks->weight(row));
    }
    replicated = ReplicatedCases(varying, cases);
    std::vector<double> scaled(replicated.any() ? cases : 0);
    for (std::size_t k = 0; k < outputs.size() && replicated.any(); ++k) {
        fits[k].output().scale.apply(outputs[k], cases, scaled.data());
        fits[k].pureError.degreesOfFreedom = replicated.degreesOfFreedom();
        fits[k].pureError.squares = replicated.withinSquares(scaled.data(), weights);
    }
}

PolynomialPredictor ResponseSurfaceFit::makePredictor() const
{
    std::vector<PolynomialPredictor::Scale> scales;
    for (const ColumnScale& scale : common->inputScales()) {
        scales.push_back({scale.centre(), scale.unit()});
    }
    std::vector<PolynomialPredictor::Output> outputs;
    for (const OutputFit& one : fits) {
        const PolynomialFit::Output& output = one.output();
        const auto end =
            output.coefficients.begin() + static_cast<std::ptrdiff_t>(common->basis().size());
        outputs.push_back(
            {output.scale.centre() + output.coefficients[0], {output.coefficients.begin(), end}});
    }
    return {common->basis(), std::move(scales), std::move(outputs)};
}

PredictorDescription ResponseSurfaceFit::description(std::size_t output) const
{
    const PolynomialPredictor::Output& polynomial = polynomials->outputs()[output];
    PredictorDescription description;
    for (const PolynomialPredictor::Scale& scale : polynomials->inputScales()) {
        description.coordinates.push_back(
            {description.coordinates.size(), scale.centre, scale.unit});
    }
    description.offset = polynomial.constant;
    for (std::size_t t = 1; t < polynomial.coefficients.size(); ++t) {
        const QuadraticBasis::Term& term = polynomials->basis().terms()[t];
        if (polynomial.coefficients[t] != 0.0) {
            description.terms.push_back({term.first, term.second, polynomial.coefficients[t]});
        }
    }
    return description;
}

std::string ResponseSurfaceFit::equationText(std::size_t output) const
{
    return ResponseSurfaceTexts::equation(*fits[output].fit, fits[output].output());
}

std::string ResponseSurfaceFit::qualityText(std::size_t output) const
{
    constexpr double level = 0.95;
    std::string text = ResponseSurfaceTexts::quality(*fits[output].fit, fittedForm.name(),
                                                     metrics(output), statistics(output, level));
    for (const std::string& warning : warnings(output)) {
        text += warning + "\n";
    }
    return text;
}

FitMetrics ResponseSurfaceFit::metrics(std::size_t output) const
{
    return fits[output].analysis().metrics();
}

std::vector<std::string> ResponseSurfaceFit::warnings(std::size_t output,
                                                      const InputNames& names) const
{
    std::vector<std::string> warnings;
    const std::size_t wanted = wantedForm.termCount(inputCount);
    if (fittedForm.termCount(inputCount) < wanted && !isWithoutSquares()) {
        const std::size_t ofBlocks = weightedBlocks->columns();
        warnings.push_back(
            "The order was lowered from " + wantedForm.name() + " to " + fittedForm.name() + ": " +
            std::to_string(wanted + ofBlocks) + " terms" +
            (ofBlocks == 0 ? "" : " (" + std::to_string(ofBlocks) + " of the blocks)") +
            " need at least as many cases.");
    }
    for (std::string& sentence : ResponseSurfaceTexts::dependences(*common, names)) {
        warnings.push_back(std::move(sentence));
    }
    const FitMetrics ofOutput = metrics(output);
    const auto warning = leftOutCasesWarning(ofOutput.predictedR2);
    if (warning && ofOutput.terms > 1) {
        warnings.push_back(*warning);
    }
    for (std::string& sentence : notes(output, names)) {
        warnings.push_back(std::move(sentence));
    }
    return warnings;
}

std::vector<std::string> ResponseSurfaceFit::notes(std::size_t output,
                                                   const InputNames& names) const
{
    std::vector<std::string> notes;
    std::vector<std::string> added;
    for (const std::size_t input :
         wantedForm.formula ? wantedForm.formula->addedInputs() : std::vector<std::size_t>()) {
        added.push_back(names.input(input));
    }
    if (!added.empty()) {
        notes.push_back(listedText(added) + (added.size() == 1 ? " was" : " were") +
                        " added to the chosen terms, since a product or square needs the linear "
                        "terms of its inputs: without them the fit would depend on where the "
                        "inputs are 0.");
    }
    if (isWithoutSquares()) {
        notes.emplace_back("Each input has two levels, which show no curvature: the polynomial is "
                           "linear with interactions.");
    }
    std::vector<std::string> unneeded;
    for (const std::size_t term : fits[output].unneeded) {
        unneeded.push_back(common->basis().name(term, names));
    }
    if (!unneeded.empty()) {
        notes.push_back("AICc is lower without " + listedText(unneeded) +
                        (unneeded.size() == 1 ? ": it was" : ": they were") + " left out.");
    }
    if (weightedBlocks->areWeighted()) {
        notes.emplace_back("The cases are weighted: the residual standard deviation and prediction "
                           "limits are those of a case of mean weight.");
    }
    if (!weightedBlocks->blocks().empty()) {
        notes.push_back("Equation and predictions are those of the average of the " +
                        std::to_string(weightedBlocks->blocks().size()) + " blocks.");
    }
    if (fits[output].analysis().isExact() && degreesOfFreedom(output) > 0 &&
        fits[output].output().totalSquares > 0.0) {
        notes.push_back("The polynomial passes through all cases up to rounding: F, t, p and "
                        "AICc would be those of rounding errors and are not given.");
    }
    return notes;
}

/** Without the terms that were not asked for; one per term of the basis is given. */
std::vector<CoefficientStatistics>
ResponseSurfaceFit::onlyWanted(const std::vector<CoefficientStatistics>& ofBasis) const
{
    std::vector<CoefficientStatistics> result;
    for (std::size_t term = 0; term < ofBasis.size(); ++term) {
        if (common->isWanted(term)) {
            result.push_back(ofBasis[term]);
        }
    }
    return result;
}

std::vector<RidgePoint> ResponseSurfaceFit::withStandardErrors(std::size_t output,
                                                               std::vector<RidgePoint> points) const
{
    std::vector<std::vector<double>> columns(inputCount, std::vector<double>(points.size()));
    std::vector<double*> pointers;
    for (std::size_t input = 0; input < inputCount; ++input) {
        for (std::size_t k = 0; k < points.size(); ++k) {
            // An input that the polynomial does not have may be anywhere.
            const double coordinate = points[k].coordinates[input];
            columns[input][k] = std::isnan(coordinate) ? 0.0 : coordinate;
        }
        pointers.push_back(columns[input].data());
    }
    const std::vector<double> errors = standardErrors(output, pointers, false, points.size());
    for (std::size_t k = 0; k < points.size(); ++k) {
        points[k].standardError = errors[k];
    }
    return points;
}

ResponseSurfaceStatistics ResponseSurfaceFit::statistics(std::size_t output, double level,
                                                         InputCoding coding) const
{
    const PolynomialFit& fit = *fits[output].fit;
    const ResponseSurfaceAnalysis analysis = fits[output].analysis();
    const FitMetrics metrics = analysis.metrics();

    ResponseSurfaceStatistics statistics;
    using Inputs = ResponseSurfaceAnalysis::Inputs;
    statistics.coefficients = onlyWanted(analysis.coefficients(Inputs::Raw, level));
    statistics.codedCoefficients = onlyWanted(analysis.coefficients(Inputs::Coded, level));
    if (coding == InputCoding::Factorial) {
        factorialCoding.apply(statistics);
    }
    statistics.anova = analysis.anova();
    statistics.repeatsAreCopies = fits[output].pureError.isOfCopies();
    statistics.partialTests = analysis.partialTests();
    const std::vector<double> effects = analysis.blockEffects();
    for (std::size_t k = 0; k < effects.size(); ++k) {
        statistics.blockEffects.push_back({weightedBlocks->blocks()[k], effects[k]});
    }
    statistics.cases = analysis.caseDiagnostics();
    statistics.outlierLimit = analysis.outlierLimit();
    statistics.r2 = metrics.r2;
    statistics.adjustedR2 = metrics.adjustedR2;
    statistics.predictedR2 = metrics.predictedR2;
    statistics.press = metrics.press;
    statistics.rmse = metrics.rmse;
    statistics.aicc = analysis.aicc();
    statistics.residualDegreesOfFreedom = fit.degreesOfFreedom();
    if (fit.sampledCount() == fit.cases()) {
        statistics.leverages = fit.leverages();
    }
    statistics.meanLeverage =
        static_cast<double>(fit.keptCount()) / static_cast<double>(fit.cases());
    statistics.largestLeverages = analysis.largestLeverages();
    const StationaryPointFinder stationary(fit, fits[output].position);
    statistics.isCurved = stationary.isCurved();
    if (!statistics.isCurved || !hasAliasedCurvature(*common, fit)) {
        statistics.stationaryPoint = stationary.find();
        statistics.canonicalDirections = stationary.canonicalDirections();
        statistics.ascent = withStandardErrors(output, stationary.ridge(true, ridgeSteps));
        statistics.descent = withStandardErrors(output, stationary.ridge(false, ridgeSteps));
    }
    for (const CoefficientStatistics& coefficient : statistics.coefficients) {
        if (!coefficient.isKept) {
            statistics.droppedTerms.push_back(coefficient.term);
        }
    }
    return statistics;
}

std::vector<LeaveOneOutPrediction>
ResponseSurfaceFit::leaveOneOutPredictions(std::size_t output) const
{
    return fits[output].analysis().leaveOneOutPredictions();
}

std::size_t ResponseSurfaceFit::degreesOfFreedom(std::size_t output) const
{
    return fits[output].fit->degreesOfFreedom();
}

IntervalCalibration ResponseSurfaceFit::intervalCalibration(std::size_t output) const
{
    const std::size_t residualDegrees = degreesOfFreedom(output);
    if (residualDegrees == 0) {
        throw SurrogateModelInterface::Error(
            "There are no prediction intervals: the polynomial has as many terms as there are "
            "cases, and none is left to estimate the error from.");
    }
    const std::size_t cases = metrics(output).cases;
    const std::size_t points = replicated.any() ? cases - replicated.degreesOfFreedom() : cases;
    // Replicates are measured independently: the leverage says what the others know of each.
    std::vector<double> standardised;
    for (const LeaveOneOutPrediction& one : leaveOneOutPredictions(output)) {
        standardised.push_back((one.output - one.predicted) / one.standardError);
    }
    return {static_cast<double>(residualDegrees), standardised,
            points >= IntervalCalibration::minPoints ? IntervalCalibration::Basis::LeaveOneOut
                                                     : IntervalCalibration::Basis::Distribution};
}

std::vector<char> ResponseSurfaceFit::unsupported(const CaseRanges& ranges,
                                                  const std::vector<double*>& points,
                                                  std::size_t count) const
{
    return CaseSupport(*common, ranges).unsupported(points, count);
}

std::vector<double> ResponseSurfaceFit::standardErrors(std::size_t output,
                                                       const std::vector<double*>& points,
                                                       bool ofObservation, std::size_t count) const
{
    const double noise = ofObservation ? 1.0 : 0.0;
    const double rmse = metrics(output).rmse;
    std::vector<double> errors(count);
    fits[output].fit->variances(points, count, errors.data());
    for (double& error : errors) {
        error = rmse * std::sqrt(noise + error);
    }
    return errors;
}
