#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include <mirel_fitting/CaseRanges.h>
#include <mirel_fitting/Distributions.h>
#include <mirel_fitting/EquationText.h>
#include <mirel_fitting/PolynomialFit.h>
#include <mirel_fitting/PolynomialPredictor.h>
#include <mirel_fitting/PolynomialUnits.h>
#include <mirel_fitting/ReplicatedCases.h>
#include <mirel_fitting/ResponseSurfaceAnalysis.h>
#include <mirel_fitting/TrainingColumns.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

using Error = SurrogateModelInterface::Error;

/** The triangular factor of so many terms takes 800 MB; three of them are held at a time. */
constexpr std::size_t mostTerms = 10000;

const char* nameOfOrder(int order)
{
    return order == 0 ? "constant" : order == 1 ? "linear" : "full quadratic";
}

QuadraticBasis basisFor(const TrainingColumns& columns, int highestOrder)
{
    if (highestOrder < 0 || highestOrder > 2) {
        throw Error("The highest order of a response surface is 0, 1 or 2, not " +
                    std::to_string(highestOrder) + ".");
    }
    const int order = QuadraticBasis::highestOrder(columns.inputs(), highestOrder, columns.cases());
    const std::size_t terms = QuadraticBasis::termCount(columns.inputs(), order);
    if (terms > mostTerms) {
        throw Error("The " + std::string(nameOfOrder(order)) + " polynomial of " +
                    std::to_string(columns.inputs()) + " inputs has " + std::to_string(terms) +
                    " terms; at most " + std::to_string(mostTerms) + " can be fitted.");
    }
    return {columns.inputs(), order};
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

PolynomialPredictor predictorOf(const PolynomialFit& fit)
{
    std::vector<PolynomialPredictor::Scale> scales;
    for (const ColumnScale& scale : fit.inputScales()) {
        scales.push_back({scale.centre(), scale.unit()});
    }
    std::vector<PolynomialPredictor::Output> outputs;
    for (const PolynomialFit::Output& output : fit.outputs()) {
        outputs.push_back({output.scale.centre() + output.coefficients[0], output.coefficients});
    }
    return {fit.basis(), std::move(scales), std::move(outputs)};
}

/** Eight digits: as many as tell two fits apart. */
std::string figure(double value)
{
    char buffer[32];
    const std::to_chars_result end =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 8);
    return {buffer, end.ptr};
}

std::string line(const std::string& name, double value, const std::string& reasonForNone)
{
    return name + ": " +
           (std::isnan(value) ? "not available (" + reasonForNone + ")" : figure(value)) + "\n";
}

} // namespace

class SurrogateResponseSurfaceModel::Impl
{
public:
    Impl(const std::vector<double*>& independentColumns,
         const std::vector<double*>& dependentColumns, std::size_t rowCount, int highestOrder)
        : columns(independentColumns, dependentColumns, rowCount),
          ranges(independentColumns, rowCount), wantedOrder(highestOrder),
          fit(basisFor(columns, highestOrder), independentColumns,
              fittable(columns, dependentColumns), rowCount),
          predictor(predictorOf(fit))
    {
        findPureErrors(independentColumns, fittable(columns, dependentColumns));
    }

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

    const PolynomialFit::Output& output(int offset) const
    {
        return fit.outputs()[position(offset)];
    }

    ResponseSurfaceAnalysis analysis(int offset) const
    {
        const std::size_t k = position(offset);
        return {fit, k, pureErrors[k]};
    }

    void findPureErrors(const std::vector<double*>& independentColumns,
                        const std::vector<double*>& outputs)
    {
        pureErrors.resize(outputs.size());
        if (fit.cases() > PolynomialFit::mostSampled) {
            return;
        }
        std::vector<const double*> varying;
        for (std::size_t input = 0; input < independentColumns.size(); ++input) {
            if (!fit.inputScales()[input].isConstantUpToRounding()) {
                varying.push_back(independentColumns[input]);
            }
        }
        const ReplicatedCases replicated(varying, fit.cases());
        std::vector<double> scaled(replicated.areThere() ? fit.cases() : 0);
        for (std::size_t k = 0; k < outputs.size() && replicated.areThere(); ++k) {
            fit.outputs()[k].scale.apply(outputs[k], fit.cases(), scaled.data());
            pureErrors[k].degreesOfFreedom = replicated.degreesOfFreedom();
            pureErrors[k].squares = replicated.squaresWithin(scaled.data());
        }
    }

    std::string droppedTerms() const
    {
        std::string names;
        for (std::size_t term = 0; term < fit.basis().size(); ++term) {
            if (!fit.isKept(term)) {
                names += (names.empty() ? "" : ", ") + fit.basis().name(term);
            }
        }
        return names;
    }

    void requirePoints(const std::vector<double*>& inputs, std::size_t count) const
    {
        std::vector<double*> noOutputs;
        columns.requireEvaluation(inputs, {}, noOutputs, count);
    }

    TrainingColumns columns;
    CaseRanges ranges;
    int wantedOrder;
    PolynomialFit fit;
    PolynomialPredictor predictor;
    std::vector<ResponseSurfaceAnalysis::PureError> pureErrors; // one per fit
};

SurrogateResponseSurfaceModel::SurrogateResponseSurfaceModel(
    const std::vector<double*>& independentColumns, const std::vector<double*>& dependentColumns,
    std::size_t rowCount)
    : SurrogateResponseSurfaceModel(independentColumns, dependentColumns, rowCount, 2)
{}

SurrogateResponseSurfaceModel::SurrogateResponseSurfaceModel(
    const std::vector<double*>& independentColumns, const std::vector<double*>& dependentColumns,
    std::size_t rowCount, int highestOrder)
    : impl(std::make_unique<Impl>(independentColumns, dependentColumns, rowCount, highestOrder))
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
    impl->predictor.predict(inputs, wanted, outputs, count);
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
    const PolynomialFit& fit = impl->fit;
    const PolynomialFit::Output& output = impl->output(offset);
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
    const FitMetrics metrics = fitMetrics(offset);
    const PolynomialFit& fit = impl->fit;
    const bool isConstant = impl->output(offset).scale.spread() == 0.0;
    const std::string noSpread = "the output is the same in every case";
    const std::string noFreedom = "there are as many terms as cases";
    const std::string noPress = fit.degreesOfFreedom() == 0
                                    ? noFreedom
                                    : "a case alone determines a term, and leaving it out leaves "
                                      "no such fit";

    std::string text = "Cases: " + std::to_string(metrics.cases) + "\n";
    text +=
        "Terms: " + std::to_string(metrics.terms) +
        (metrics.terms < fit.basis().size() ? " of " + std::to_string(fit.basis().size()) : "") +
        "\n";
    text += std::string("Order: ") + nameOfOrder(fit.basis().order()) + "\n";
    text += line("R2", metrics.r2, noSpread);
    text += line("Adjusted R2", metrics.adjustedR2, isConstant ? noSpread : noFreedom);
    text += line("RMSE", metrics.rmse, noFreedom);
    text += line("PRESS", metrics.press, noPress);
    text += line("Predicted R2", metrics.predictedR2, isConstant ? noSpread : noPress);
    for (const std::string& warning : fitWarnings(offset)) {
        text += warning + "\n";
    }
    return text;
}

FitMetrics SurrogateResponseSurfaceModel::fitMetrics(int offset) const
{
    const PolynomialFit& fit = impl->fit;
    const PolynomialFit::Output& output = impl->output(offset);
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
    impl->columns.requireOutput(offset);
    const QuadraticBasis& basis = impl->fit.basis();
    std::vector<std::string> warnings;
    if (basis.inputs() > 0 && basis.order() < impl->wantedOrder) {
        const std::size_t wantedTerms =
            QuadraticBasis::termCount(basis.inputs(), impl->wantedOrder);
        warnings.push_back(std::string("The order was lowered from ") +
                           nameOfOrder(impl->wantedOrder) + " to " + nameOfOrder(basis.order()) +
                           ": " + std::to_string(wantedTerms) +
                           " terms need at least as many cases.");
    }
    const std::string dropped = impl->droppedTerms();
    if (!dropped.empty()) {
        warnings.push_back(
            "Terms that the cases cannot separate from the others were left out: " + dropped + ".");
    }
    return warnings;
}

std::vector<PolynomialCoefficient> SurrogateResponseSurfaceModel::coefficientTable(int offset) const
{
    const PolynomialFit& fit = impl->fit;
    const PolynomialFit::Output& output = impl->output(offset);
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
    return table;
}

ResponseSurfaceStatistics
SurrogateResponseSurfaceModel::responseSurfaceStatistics(int offset, double level) const
{
    Distributions::requireLevel(level);
    const FitMetrics metrics = fitMetrics(offset);
    const ResponseSurfaceAnalysis analysis = impl->analysis(offset);
    const PolynomialFit& fit = impl->fit;

    ResponseSurfaceStatistics statistics;
    statistics.coefficients = analysis.coefficients(level);
    statistics.codedCoefficients = analysis.codedCoefficients(level);
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
    statistics.stationaryPoint = analysis.stationaryPoint();
    for (const CoefficientStatistics& coefficient : statistics.coefficients) {
        if (!coefficient.isKept) {
            statistics.droppedTerms.push_back(coefficient.term);
        }
    }
    return statistics;
}

void SurrogateResponseSurfaceModel::standardErrors(const std::vector<double*>& inputs,
                                                   const std::set<int>& offsets, Kind kind,
                                                   std::vector<double*>& errors,
                                                   std::size_t count) const
{
    impl->columns.requireEvaluation(inputs, offsets, errors, count);
    const double noise = kind == Kind::Observation ? 1.0 : 0.0;
    std::size_t k = 0;
    for (const int offset : offsets) {
        double* result = errors[k++];
        const double deviation = fitMetrics(offset).rmse;
        impl->fit.variances(inputs, count, result);
        for (std::size_t point = 0; point < count; ++point) {
            result[point] = deviation * std::sqrt(noise + result[point]);
        }
    }
}

void SurrogateResponseSurfaceModel::predictionIntervals(const std::vector<double*>& inputs,
                                                        const std::set<int>& offsets, double level,
                                                        std::vector<double*>& lower,
                                                        std::vector<double*>& upper,
                                                        std::size_t count) const
{
    Distributions::requireLevel(level);
    impl->columns.requireEvaluation(inputs, offsets, upper, count);
    const auto freedom = static_cast<double>(impl->fit.degreesOfFreedom());
    if (freedom == 0.0 && !offsets.empty()) {
        throw Error("There are no prediction intervals: the polynomial has as many terms as there "
                    "are cases, and none is left to tell the error by.");
    }
    interpolateDependentValues(inputs, offsets, lower, count);
    standardErrors(inputs, offsets, Kind::Observation, upper, count);
    const double quantile = Distributions::studentQuantile(level, freedom);
    for (std::size_t output = 0; output < offsets.size(); ++output) {
        for (std::size_t k = 0; k < count; ++k) {
            const double prediction = lower[output][k];
            const double reach = quantile * upper[output][k];
            lower[output][k] = prediction - reach;
            upper[output][k] = prediction + reach;
        }
    }
}

std::vector<LeaveOneOutPrediction>
SurrogateResponseSurfaceModel::leaveOneOutPredictions(int offset) const
{
    const PolynomialFit& fit = impl->fit;
    const PolynomialFit::Output& output = impl->output(offset);
    const double squares = impl->analysis(offset).residualSquares();
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

void SurrogateResponseSurfaceModel::extrapolations(const std::vector<double*>& inputs,
                                                   double* distances, std::size_t count) const
{
    impl->requirePoints(inputs, count);
    impl->ranges.distances(inputs, count, distances);
}

std::string SurrogateResponseSurfaceModel::extrapolationWarning(const std::vector<double*>& inputs,
                                                                std::size_t count) const
{
    impl->requirePoints(inputs, count);
    return impl->ranges.warning(inputs, count);
}

PredictorDescription SurrogateResponseSurfaceModel::predictorDescription(int offset) const
{
    const PolynomialPredictor& predictor = impl->predictor;
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
