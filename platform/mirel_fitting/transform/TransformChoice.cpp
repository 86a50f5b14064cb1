#include <mirel_fitting/transform/TransformChoice.h>

#include <mirel_fitting/ColumnPointers.h>
#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/cases/KrigingCases.h>
#include <mirel_fitting/cases/SpaceFillingSubset.h>
#include <mirel_fitting/numerics/Picked.h>

#include <cmath>
#include <utility>

namespace {

/** Gain in log-likelihood and log-density above which a transform is taken: one of 1.3 has made
 *  predictions worse. */
constexpr double leastGain = 5.0;

/** The same where it is that of a subset, which does not show how the gain goes on: by 5.5 a tenth
 * of the cases favours the square root of the OTL circuit, at 1.27 times the error. */
constexpr double leastGainOfSubset = 10.0;

/** Leave-one-out error in the output's units over that without a transform, above which none is
 *  taken. In 11 of 115 folds of R's data sets it is more, with 0.9 to 31 times the error at the
 *  other cases (geometric mean 2.3); with 1.5, two of these folds would change by 5 and 7 %. */
constexpr double maxErrorRatio = 1.25;

/** Largest over smallest value: below, logarithm and straight line differ by at most a twentieth of
 *  the range. */
constexpr double leastRatio = 1.5;

/** No transform is chosen for more cases: Kriging estimates the parameters of more from a part of
 * them (KrigingSizes::maxSearched), and the logarithm of 100 000 cases of borehole takes twice the
 * time.
 */
constexpr std::size_t maxCases = 5000;

/** Three fits to so many cost some 5 % of one fit to 1000. Twice as many choose no better. */
constexpr std::size_t comparedPoints = 100;

/** What a transform is multiplied by so that the product of its derivatives over the cases is 1:
 * the likelihoods of what results are in the output's units, restricted ones too. */
double factorOfUnitJacobian(OutputTransform transform, const std::vector<double>& output)
{
    double meanLogarithm = 0.0;
    for (const double y : output) {
        meanLogarithm += std::log(y) / static_cast<double>(output.size());
    }
    const double geometricMean = std::exp(meanLogarithm);
    return transform == OutputTransform::Logarithm ? geometricMean : 2.0 * std::sqrt(geometricMean);
}

/** The logarithm of the density of a left-out case, but for a constant, under the normal
 *  distribution that the fit to the others predicts; NaN where these do not determine it. */
double leftOutDensity(const LeaveOneOutPrediction& one)
{
    const double deviations = (one.output - one.predicted) / one.standardError;
    return -std::log(one.standardError) - 0.5 * deviations * deviations;
}

/** How much greater the densities of all left-out cases are with an output than with the first. */
double gainOfDensity(const FittedModel& model, int offset)
{
    const std::vector<LeaveOneOutPrediction> first = model.leaveOneOutPredictions(0);
    const std::vector<LeaveOneOutPrediction> other = model.leaveOneOutPredictions(offset);
    double sum = 0.0;
    for (std::size_t i = 0; i < first.size(); ++i) {
        const double gain = leftOutDensity(other[i]) - leftOutDensity(first[i]);
        sum += std::isnan(gain) ? 0.0 : gain;
    }
    return sum;
}

/** How much better a model describes the cases with its second output than with its first; NaN if
 *  that cannot be said. */
double gainOf(const FittedModel& model, int offset)
{
    const double likelihood =
        model.fitMetrics(offset).logLikelihood - model.fitMetrics(0).logLikelihood;
    // Infinite: the trend passes through all cases, and the densities are quotients of roundings.
    if (std::isinf(likelihood) || std::isnan(likelihood)) {
        return likelihood;
    }
    const double density = gainOfDensity(model, offset);
    return density < likelihood || std::isnan(density) ? density : likelihood;
}

/** The root mean square error of left-out cases in the output's units where the model's output at
 *  `offset` is its transform times `factor`, over that of its first, the output itself; NaN without
 *  left-out cases. */
double errorRatio(const FittedModel& model, int offset, OutputTransform transform, double factor)
{
    const std::vector<LeaveOneOutPrediction> first = model.leaveOneOutPredictions(0);
    const std::vector<LeaveOneOutPrediction> other = model.leaveOneOutPredictions(offset);
    double firstSquares = 0.0;
    double otherSquares = 0.0;
    for (std::size_t i = 0; i < first.size(); ++i) {
        const double predicted = OutputTransforms::invert(transform, other[i].predicted / factor);
        const double firstError = first[i].output - first[i].predicted;
        const double otherError = first[i].output - predicted;
        if (!std::isnan(firstError) && !std::isnan(otherError)) {
            firstSquares += firstError * firstError;
            otherSquares += otherError * otherError;
        }
    }
    return std::sqrt(otherSquares / firstSquares);
}

/** All rows at some of the distinct points, chosen whatever the order of the rows. */
std::vector<std::size_t> rowsToCompare(TransformChoice::Columns& inputs, std::size_t rowCount)
{
    const KrigingCases cases(pointersTo(inputs), rowCount);
    std::vector<std::size_t> rows;
    for (const std::size_t point : randomSubset(cases.pointCount(), comparedPoints)) {
        const std::vector<std::size_t> atPoint = cases.rowsAt(point);
        rows.insert(rows.end(), atPoint.begin(), atPoint.end());
    }
    return rows;
}

} // namespace

bool TransformChoice::isWorthwhile(double smallest, double largest, std::size_t cases)
{
    return largest > leastRatio * smallest && cases <= maxCases;
}

TransformChoice TransformChoice::of(Columns inputs, const std::vector<double>& output,
                                    const CaseDesign& design, const Maker& maker)
{
    const std::vector<std::size_t> rows = rowsToCompare(inputs, output.size());
    for (std::vector<double>& input : inputs) {
        input = picked(input, rows);
    }
    Columns candidates = {picked(output, rows)};
    std::vector<double> factors;
    for (const OutputTransform transform : transforms) {
        factors.push_back(factorOfUnitJacobian(transform, candidates.front()));
        std::vector<double> values;
        for (const double y : candidates.front()) {
            values.push_back(OutputTransforms::apply(transform, y) * factors.back());
        }
        candidates.push_back(std::move(values));
    }
    const auto model =
        maker(pointersTo(inputs), pointersTo(candidates), rows.size(), design.of(rows));
    for (std::size_t k = 0; k < candidates.size(); ++k) {
        const auto count = static_cast<double>(candidates.size());
        const FitProgress::Portion portion(static_cast<double>(k) / count,
                                           static_cast<double>(k + 1) / count);
        model->activateDependentVariables({static_cast<int>(k)});
    }
    TransformChoice choice;
    for (std::size_t k = 0; k < transforms.size(); ++k) {
        const int offset = static_cast<int>(k + 1);
        const double gain = gainOf(*model, offset);
        const bool isWorse = errorRatio(*model, offset, transforms[k], factors[k]) > maxErrorRatio;
        if (!isWorse && (std::isnan(choice.gain) || gain > choice.gain)) {
            choice = {transforms[k], gain};
        }
    }
    if (!(choice.gain > (rows.size() < output.size() ? leastGainOfSubset : leastGain))) {
        choice.transform = OutputTransform::None;
    }
    return choice;
}
