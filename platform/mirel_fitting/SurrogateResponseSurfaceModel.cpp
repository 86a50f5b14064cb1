#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include <mirel_fitting/TermSelectionScope.h>
#include <mirel_fitting/cases/CaseRanges.h>
#include <mirel_fitting/cases/ReplicatedCases.h>
#include <mirel_fitting/cases/TrainingColumns.h>
#include <mirel_fitting/numerics/Distributions.h>
#include <mirel_fitting/polynomial/EquationText.h>
#include <mirel_fitting/polynomial/PolynomialFit.h>
#include <mirel_fitting/polynomial/PolynomialPredictor.h>
#include <mirel_fitting/polynomial/PolynomialUnits.h>
#include <mirel_fitting/responsesurface/ResponseSurfaceAnalysis.h>
#include <mirel_fitting/responsesurface/ResponseSurfaceTexts.h>
#include <mirel_fitting/responsesurface/TermSelection.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

using Error = SurrogateModelInterface::Error;

/** The triangular factor of so many terms takes 800 MB; three of them are held at a time. */
constexpr std::size_t mostTerms = 10000;

/** What a polynomial is to be made of. */
struct Wanted
{
    int order = 2;
    bool hasSquares = true; ///< if the order is 2

    static Wanted of(PolynomialTerms terms)
    {
        return {terms == PolynomialTerms::Linear ? 1 : 2, terms != PolynomialTerms::Interactions};
    }

    std::size_t terms(std::size_t inputs) const
    {
        return QuadraticBasis::termCount(inputs, order) - (order == 2 && !hasSquares ? inputs : 0);
    }

    std::string name() const { return ResponseSurfaceTexts::orderName(order, hasSquares); }
};

/** What the cases are enough for. */
Wanted lowered(Wanted wanted, const TrainingColumns& columns)
{
    if (wanted.order < 0 || wanted.order > 2) {
        throw Error("The highest order of a response surface is 0, 1 or 2, not " +
                    std::to_string(wanted.order) + ".");
    }
    // One input has no interactions.
    const bool isLinear = wanted.order == 2 && !wanted.hasSquares && columns.inputs() < 2;
    if (isLinear || columns.inputs() == 0) {
        wanted.order = columns.inputs() == 0 ? 0 : 1;
    }
    while (wanted.order > 0 && wanted.terms(columns.inputs()) > columns.cases()) {
        --wanted.order;
    }
    const std::size_t terms = wanted.terms(columns.inputs());
    if (terms > mostTerms) {
        throw Error("The " + wanted.name() + " polynomial of " + std::to_string(columns.inputs()) +
                    " inputs has " + std::to_string(terms) + " terms; at most " +
                    std::to_string(mostTerms) + " can be fitted.");
    }
    return wanted;
}

/** One per term of the basis; empty if all are wanted. */
std::vector<char> wantedTerms(const QuadraticBasis& basis, bool hasSquares)
{
    std::vector<char> isWanted;
    for (const QuadraticBasis::Term& term : basis.terms()) {
        const bool isSquare = term.second != QuadraticBasis::noInput && term.first == term.second;
        isWanted.push_back(isSquare ? 0 : 1);
    }
    return hasSquares || basis.order() < 2 ? std::vector<char>() : isWanted;
}

/** The columns of the outputs that can be fitted. */
std::vector<double*> fittable(const TrainingColumns& columns,
                              const std::vector<double*>& dependentColumns)
{
    std::vector<double*> result;
    for (std::size_t offset = 0; offset < dependentColumns.size(); ++offset) {
        if (columns.isFittable(offset)) {
            result.push_back(dependentColumns[offset]);
        }
    }
    return result;
}

} // namespace

class SurrogateResponseSurfaceModel::Impl
{
public:
    Impl(const std::vector<double*>& independentColumns,
         const std::vector<double*>& dependentColumns, std::size_t rowCount, const Wanted& wanted,
         Selection selection)
        : columns(independentColumns, dependentColumns, rowCount),
          ranges(independentColumns, rowCount), wanted(wanted), fitted(lowered(wanted, columns))
    {
        const std::vector<double*> outputs = fittable(columns, dependentColumns);
        const QuadraticBasis basis(columns.inputs(), fitted.order);
        const auto whole = std::make_shared<PolynomialFit>(
            basis, independentColumns, outputs, rowCount, wantedTerms(basis, fitted.hasSquares));
        common = whole;
        for (std::size_t k = 0; k < outputs.size(); ++k) {
            fits.push_back({whole, k, {}, {}});
        }
        if (selection == Selection::BackwardAicc) {
            for (std::size_t k = 0; k < outputs.size(); ++k) {
                select(fits[k], independentColumns, outputs[k]);
            }
        }
        findPureErrors(independentColumns, outputs);
        predictor = std::make_unique<PolynomialPredictor>(makePredictor());
    }

    /** How one output is fitted. */
    struct OutputFit
    {
        std::shared_ptr<const PolynomialFit> fit;
        std::size_t position; ///< in its outputs
        ResponseSurfaceAnalysis::PureError pureError;
        std::vector<std::string> unneeded; ///< terms that were not selected

        const PolynomialFit::Output& output() const { return fit->outputs()[position]; }
        ResponseSurfaceAnalysis analysis() const { return {*fit, position, pureError}; }
    };

    /** The position among the fits. */
    std::size_t position(int offset) const
    {
        columns.requireOutput(offset);
        std::size_t result = 0;
        for (int earlier = 0; earlier < offset; ++earlier) {
            result += columns.isFittable(static_cast<std::size_t>(earlier)) ? 1 : 0;
        }
        return result;
    }

    const OutputFit& at(int offset) const { return fits[position(offset)]; }

    static void select(OutputFit& one, const std::vector<double*>& inputs, double* output)
    {
        const PolynomialFit& whole = *one.fit;
        const TermSelection selection(whole, one.position);
        if (!selection.dropsAny()) {
            return;
        }
        for (std::size_t term = 0; term < whole.basis().size(); ++term) {
            if (whole.isKept(term) && !selection.isWanted()[term]) {
                one.unneeded.push_back(whole.basis().name(term));
            }
        }
        one.fit =
            std::make_shared<PolynomialFit>(whole.basis(), inputs, std::vector<double*>{output},
                                            whole.cases(), selection.isWanted());
        one.position = 0;
    }

    void findPureErrors(const std::vector<double*>& independentColumns,
                        const std::vector<double*>& outputs)
    {
        if (columns.cases() > PolynomialFit::mostSampled) {
            return;
        }
        std::vector<const double*> varying;
        for (std::size_t input = 0; input < independentColumns.size(); ++input) {
            if (!common->inputScales()[input].isConstantUpToRounding()) {
                varying.push_back(independentColumns[input]);
            }
        }
        const ReplicatedCases replicated(varying, columns.cases());
        std::vector<double> scaled(replicated.areThere() ? columns.cases() : 0);
        for (std::size_t k = 0; k < outputs.size() && replicated.areThere(); ++k) {
            fits[k].output().scale.apply(outputs[k], columns.cases(), scaled.data());
            fits[k].pureError.degreesOfFreedom = replicated.degreesOfFreedom();
            fits[k].pureError.squares = replicated.squaresWithin(scaled.data());
        }
    }

    PolynomialPredictor makePredictor() const
    {
        std::vector<PolynomialPredictor::Scale> scales;
        for (const ColumnScale& scale : common->inputScales()) {
            scales.push_back({scale.centre(), scale.unit()});
        }
        std::vector<PolynomialPredictor::Output> outputs;
        for (const OutputFit& one : fits) {
            const PolynomialFit::Output& output = one.output();
            outputs.push_back(
                {output.scale.centre() + output.coefficients[0], output.coefficients});
        }
        return {common->basis(), std::move(scales), std::move(outputs)};
    }

    /** Without the terms that were not asked for; one per term of the basis is given. */
    template <class Coefficient>
    std::vector<Coefficient> onlyWanted(const std::vector<Coefficient>& ofBasis) const
    {
        std::vector<Coefficient> result;
        for (std::size_t term = 0; term < ofBasis.size(); ++term) {
            if (common->isWanted(term)) {
                result.push_back(ofBasis[term]);
            }
        }
        return result;
    }

    void requirePoints(const std::vector<double*>& inputs, std::size_t count) const
    {
        std::vector<double*> noOutputs;
        columns.requireEvaluation(inputs, {}, noOutputs, count);
    }

    TrainingColumns columns;
    CaseRanges ranges;
    Wanted wanted;
    Wanted fitted;                               // what the cases are enough for
    std::shared_ptr<const PolynomialFit> common; // of all outputs, with all terms
    std::vector<OutputFit> fits;                 // of the outputs that can be fitted
    std::unique_ptr<PolynomialPredictor> predictor;
};

SurrogateResponseSurfaceModel::SurrogateResponseSurfaceModel(
    const std::vector<double*>& independentColumns, const std::vector<double*>& dependentColumns,
    std::size_t rowCount)
    : SurrogateResponseSurfaceModel(
          independentColumns, dependentColumns, rowCount,
          ResponseSurfaceOptions{TermSelectionScope::currentTerms(), TermSelectionScope::current()})
{}

SurrogateResponseSurfaceModel::SurrogateResponseSurfaceModel(
    const std::vector<double*>& independentColumns, const std::vector<double*>& dependentColumns,
    std::size_t rowCount, const ResponseSurfaceOptions& options)
    : impl(std::make_unique<Impl>(independentColumns, dependentColumns, rowCount,
                                  Wanted::of(options.terms), options.selection))
{}

SurrogateResponseSurfaceModel::SurrogateResponseSurfaceModel(
    const std::vector<double*>& independentColumns, const std::vector<double*>& dependentColumns,
    std::size_t rowCount, int highestOrder)
    : impl(std::make_unique<Impl>(independentColumns, dependentColumns, rowCount,
                                  Wanted{highestOrder, true}, TermSelectionScope::current()))
{}

SurrogateResponseSurfaceModel::~SurrogateResponseSurfaceModel() = default;

void SurrogateResponseSurfaceModel::activateDependentVariables(const std::set<int>& offsets)
{
    // All outputs are fitted since construction.
    impl->columns.requireOutputs(offsets);
}

void SurrogateResponseSurfaceModel::interpolateDependentValues(const std::vector<double*>& inputs,
                                                               const std::set<int>& offsets,
                                                               std::vector<double*>& outputs,
                                                               std::size_t count) const
{
    impl->columns.requireEvaluation(inputs, offsets, outputs, count);
    std::vector<std::size_t> wanted;
    for (const int offset : offsets) {
        wanted.push_back(impl->position(offset));
    }
    impl->predictor->predict(inputs, wanted, outputs, count);
}

bool SurrogateResponseSurfaceModel::surfaceCoefficientInformationAvailable() const
{
    return true;
}

bool SurrogateResponseSurfaceModel::qualityMetricInformationAvailable() const
{
    return true;
}

std::string SurrogateResponseSurfaceModel::surfaceCoefficientInformation(int offset) const
{
    // Beyond this fraction of the output's spread the text stays in centred inputs.
    constexpr double tolerableLoss = 1e-9;
    const Impl::OutputFit& one = impl->at(offset);
    const PolynomialFit& fit = *one.fit;
    const PolynomialFit::Output& output = one.output();
    const PolynomialUnits units(fit.basis(), fit.inputScales());
    EquationText text(fit.basis());
    for (std::size_t term = 0; term < fit.basis().size(); ++term) {
        if (!fit.isKept(term)) {
            text.leaveOut(term);
        }
    }

    std::vector<double> coefficients;
    if (units.expansionLoss(output.coefficients) <= tolerableLoss * output.scale.spread()) {
        coefficients = units.expanded(output.coefficients);
    } else {
        std::vector<double> centres;
        for (const ColumnScale& scale : fit.inputScales()) {
            centres.push_back(scale.centre());
        }
        text.setCentres(centres);
        coefficients = units.centred(output.coefficients);
    }
    coefficients[0] += output.scale.centre();
    return text.write(coefficients);
}

std::string SurrogateResponseSurfaceModel::qualityMetricInformation(int offset) const
{
    std::string text =
        ResponseSurfaceTexts::quality(*impl->at(offset).fit, impl->fitted.name(),
                                      fitMetrics(offset), responseSurfaceStatistics(offset));
    for (const std::string& warning : fitWarnings(offset)) {
        text += warning + "\n";
    }
    return text;
}

FitMetrics SurrogateResponseSurfaceModel::fitMetrics(int offset) const
{
    const Impl::OutputFit& one = impl->at(offset);
    const PolynomialFit& fit = *one.fit;
    const PolynomialFit::Output& output = one.output();
    const auto cases = static_cast<double>(fit.cases());
    const auto freedom = static_cast<double>(fit.degreesOfFreedom());
    const double unit = output.scale.unit();
    const bool hasSpread = output.scale.spread() > 0.0;
    // What the mean leaves is the spread: computed in another way it differs by rounding.
    const double residualSquares =
        fit.keptCount() == 1 ? output.totalSquares : output.residualSquares;

    FitMetrics metrics;
    metrics.cases = fit.cases();
    metrics.terms = fit.keptCount();
    if (hasSpread) {
        metrics.r2 = 1.0 - residualSquares / output.totalSquares;
    }
    if (freedom > 0.0) {
        metrics.rmse = unit * std::sqrt(residualSquares / freedom);
    }
    if (hasSpread && freedom > 0.0) {
        metrics.adjustedR2 =
            1.0 - residualSquares / freedom / (output.totalSquares / (cases - 1.0));
    }
    if (fit.isPressAvailable()) {
        metrics.press = unit * unit * output.press;
        metrics.looRmse = unit * std::sqrt(output.press / cases);
    }
    if (hasSpread && fit.isPressAvailable()) {
        metrics.predictedR2 = 1.0 - output.press / output.totalSquares;
    }
    return metrics;
}

std::vector<std::string> SurrogateResponseSurfaceModel::fitWarnings(int offset) const
{
    const Impl::OutputFit& one = impl->at(offset);
    const std::size_t inputs = impl->columns.inputs();
    std::vector<std::string> warnings;
    if (impl->fitted.terms(inputs) < impl->wanted.terms(inputs)) {
        warnings.push_back("The order was lowered from " + impl->wanted.name() + " to " +
                           impl->fitted.name() + ": " + std::to_string(impl->wanted.terms(inputs)) +
                           " terms need at least as many cases.");
    }
    for (std::string& sentence : ResponseSurfaceTexts::dependences(*impl->common)) {
        warnings.push_back(std::move(sentence));
    }
    if (!one.unneeded.empty()) {
        warnings.push_back("AICc is lower without " + ResponseSurfaceTexts::list(one.unneeded) +
                           (one.unneeded.size() == 1 ? ": it was" : ": they were") + " left out.");
    }
    return warnings;
}

std::vector<PolynomialCoefficient> SurrogateResponseSurfaceModel::coefficientTable(int offset) const
{
    const Impl::OutputFit& one = impl->at(offset);
    const PolynomialFit& fit = *one.fit;
    const PolynomialFit::Output& output = one.output();
    const PolynomialUnits units(fit.basis(), fit.inputScales());
    const std::vector<double> estimates = units.expanded(output.coefficients);
    const double deviation = fitMetrics(offset).rmse;

    std::vector<double> variances(estimates.size(), 0.0);
    for (std::size_t k = 0; k < fit.keptCount(); ++k) {
        const std::vector<double> expanded = units.expanded(fit.coefficientDirection(k));
        for (std::size_t term = 0; term < variances.size(); ++term) {
            variances[term] += expanded[term] * expanded[term];
        }
    }

    std::vector<PolynomialCoefficient> table(estimates.size());
    for (std::size_t term = 0; term < table.size(); ++term) {
        table[term].term = fit.basis().name(term);
        table[term].estimate = estimates[term] + (term == 0 ? output.scale.centre() : 0.0);
        table[term].isKept = fit.isKept(term);
        table[term].standardError =
            table[term].isKept ? deviation * std::sqrt(variances[term]) : FitMetrics::none;
    }
    return impl->onlyWanted(table);
}

ResponseSurfaceStatistics
SurrogateResponseSurfaceModel::responseSurfaceStatistics(int offset, double level) const
{
    Distributions::requireLevel(level);
    const FitMetrics metrics = fitMetrics(offset);
    const PolynomialFit& fit = *impl->at(offset).fit;
    const ResponseSurfaceAnalysis analysis = impl->at(offset).analysis();

    ResponseSurfaceStatistics statistics;
    statistics.coefficients = impl->onlyWanted(analysis.coefficients(level));
    statistics.codedCoefficients = impl->onlyWanted(analysis.codedCoefficients(level));
    statistics.anova = analysis.anova();
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
    analysis.findStationaryPoint(statistics);
    for (const CoefficientStatistics& coefficient : statistics.coefficients) {
        if (!coefficient.isKept) {
            statistics.droppedTerms.push_back(coefficient.term);
        }
    }
    return statistics;
}

std::vector<double>
SurrogateResponseSurfaceModel::standardErrors(const std::vector<double*>& inputs, int offset,
                                              ErrorKind kind, std::size_t count) const
{
    impl->requirePoints(inputs, count);
    const double noise = kind == ErrorKind::Observation ? 1.0 : 0.0;
    const double deviation = fitMetrics(offset).rmse;
    std::vector<double> errors(count);
    impl->at(offset).fit->variances(inputs, count, errors.data());
    for (double& error : errors) {
        error = deviation * std::sqrt(noise + error);
    }
    return errors;
}

double SurrogateResponseSurfaceModel::intervalQuantile(int offset, double level) const
{
    Distributions::requireLevel(level);
    const std::size_t freedom = impl->at(offset).fit->degreesOfFreedom();
    if (freedom == 0) {
        throw Error("There are no prediction intervals: the polynomial has as many terms as there "
                    "are cases, and none is left to tell the error by.");
    }
    return Distributions::studentQuantile(level, static_cast<double>(freedom));
}

std::vector<LeaveOneOutPrediction>
SurrogateResponseSurfaceModel::leaveOneOutPredictions(int offset) const
{
    const Impl::OutputFit& one = impl->at(offset);
    const PolynomialFit& fit = *one.fit;
    const PolynomialFit::Output& output = one.output();
    const double squares = one.analysis().residualSquares();
    const double freedom = static_cast<double>(fit.degreesOfFreedom()) - 1.0;
    const double unit = output.scale.unit();
    std::vector<LeaveOneOutPrediction> result;
    result.reserve(fit.sampledCount());
    for (std::size_t k = 0; k < fit.sampledCount(); ++k) {
        const double leverage = fit.leverages()[k];
        const double left =
            PolynomialFit::isDeterminedAlone(leverage) ? FitMetrics::none : 1.0 - leverage;
        const double residual = output.residuals[k] / left;
        // The other cases' own scatter; rounding may leave less than none.
        const double others =
            std::max(squares - residual * output.residuals[k], 0.0 * residual) / freedom;
        const double error = freedom > 0.0 ? std::sqrt(others / left) : FitMetrics::none;
        result.push_back({fit.sampledRow(k), output.values[k], output.values[k] - unit * residual,
                          unit * error});
    }
    return result;
}

std::vector<double>
SurrogateResponseSurfaceModel::extrapolations(const std::vector<double*>& inputs,
                                              std::size_t count) const
{
    impl->requirePoints(inputs, count);
    std::vector<double> distances(count);
    impl->ranges.distances(inputs, count, distances.data());
    return distances;
}

std::string SurrogateResponseSurfaceModel::extrapolationWarning(const std::vector<double*>& inputs,
                                                                std::size_t count) const
{
    impl->requirePoints(inputs, count);
    return impl->ranges.warning(inputs, count);
}

PredictorDescription SurrogateResponseSurfaceModel::predictorDescription(int offset) const
{
    const PolynomialPredictor& predictor = *impl->predictor;
    const PolynomialPredictor::Output& output = predictor.outputs()[impl->position(offset)];
    PredictorDescription description;
    description.inputs = impl->ranges.ranges();
    for (const PolynomialPredictor::Scale& scale : predictor.inputScales()) {
        description.coordinates.push_back(
            {description.coordinates.size(), scale.centre, scale.unit});
    }
    description.offset = output.constant;
    for (std::size_t t = 1; t < output.coefficients.size(); ++t) {
        const QuadraticBasis::Term& term = predictor.basis().terms()[t];
        if (output.coefficients[t] != 0.0) {
            description.terms.push_back({term.first, term.second, output.coefficients[t]});
        }
    }
    return description;
}
