#include <mirel_fitting/responsesurface/ResponseSurfaceAnalysis.h>

#include <mirel_fitting/machine/SingleThreadedBlas.h>
#include <mirel_fitting/numerics/Distributions.h>

#include <boost/math/constants/constants.hpp>
#include <lapacke.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <string>
#include <utility>

namespace {

constexpr double none = CoefficientStatistics::none;
using boost::math::double_constants::two_pi;

/** The kinds of terms, in the order in which the analysis of variance enters them. */
enum class Kind
{
    Constant,
    Blocks,
    Linear,
    Interaction,
    Square
};

constexpr std::size_t kinds = 5;

Kind kindOf(const PolynomialFit& fit, std::size_t term)
{
    if (fit.isOfBlocks(term)) {
        return Kind::Blocks;
    }
    const QuadraticBasis::Term& inputs = fit.basis().terms()[term];
    return inputs.order() == 0   ? Kind::Constant
           : inputs.order() == 1 ? Kind::Linear
           : inputs.isSquare()   ? Kind::Square
                                 : Kind::Interaction;
}

AnovaRow row(const std::string& source, std::size_t degreesOfFreedom, double squares)
{
    AnovaRow result;
    result.source = source;
    result.degreesOfFreedom = degreesOfFreedom;
    // Without degrees of freedom the sum of squares is rounding errors.
    if (degreesOfFreedom > 0) {
        result.sumOfSquares = squares;
        result.meanSquare = squares / static_cast<double>(degreesOfFreedom);
    }
    return result;
}

} // namespace

ResponseSurfaceAnalysis::ResponseSurfaceAnalysis(const PolynomialFit& fit, std::size_t output,
                                                 const PureError& pureError)
    : fit(fit), output(fit.outputs()[output]), units(fit.basis(), fit.inputScales()),
      pureError(pureError)
{}

FitMetrics ResponseSurfaceAnalysis::metrics() const
{
    const auto cases = static_cast<double>(fit.cases());
    const auto degreesOfFreedom = static_cast<double>(fit.degreesOfFreedom());
    const double unit = output.scale.unit();
    const bool hasSpread = output.scale.spread() > 0.0;

    FitMetrics metrics;
    metrics.cases = fit.cases();
    metrics.terms = fit.keptCount();
    metrics.rmse = deviation();
    if (hasSpread) {
        metrics.r2 = 1.0 - residualSquares() / output.totalSquares;
    }
    if (hasSpread && degreesOfFreedom > 0.0) {
        metrics.adjustedR2 =
            1.0 - residualSquares() / degreesOfFreedom / (output.totalSquares / (cases - 1.0));
    }
    if (fit.isPressAvailable()) {
        metrics.press = unit * unit * output.press;
        metrics.looRmse = unit * std::sqrt(output.press / cases);
    }
    if (hasSpread && fit.isPressAvailable()) {
        metrics.predictedR2 = 1.0 - output.press / output.totalSquares;
    }
    const double variance = unit * unit * residualSquares() / cases;
    metrics.logLikelihood = -0.5 * cases * (std::log(two_pi * variance) + 1.0) +
                            0.5 * fit.weightedBlocks().logarithms();
    return metrics;
}

/**
 * By the leverage h of each case, e its residual: the prediction without it is off by
 * d = e / (1 - h), and the residual sum of squares without it smaller by d e.
 */
std::vector<LeaveOneOutPrediction> ResponseSurfaceAnalysis::leaveOneOutPredictions() const
{
    const double squares = residualSquares();
    const double degreesOfFreedom = static_cast<double>(fit.degreesOfFreedom()) - 1.0;
    const double unit = output.scale.unit();
    const std::vector<double> effects = blockEffects();
    std::vector<LeaveOneOutPrediction> result;
    result.reserve(fit.sampledCount());
    for (std::size_t k = 0; k < fit.sampledCount(); ++k) {
        const double leverage = fit.leverages()[k];
        const double perResidual = unit / fit.rootOfSampledWeight(k);
        const double oneMinusLeverage =
            PolynomialFit::isDeterminedAlone(leverage) ? none : 1.0 - leverage;
        const double difference = output.residuals[k] / oneMinusLeverage;
        // Rounding may make the difference negative; NaN stays NaN.
        const double squaresOfOthers =
            std::max(squares - difference * output.residuals[k], 0.0 * difference);
        const double error = degreesOfFreedom > 0.0
                                 ? std::sqrt(squaresOfOthers / degreesOfFreedom / oneMinusLeverage)
                                 : none;
        const double effect =
            effects.empty() ? 0.0 : effects[fit.weightedBlocks().positions()[fit.sampledRow(k)]];
        result.push_back({fit.sampledRow(k), output.values[k],
                          output.values[k] - perResidual * difference, perResidual * error,
                          effect});
    }
    return result;
}

/** The residual sum of squares of the scaled output. */
double ResponseSurfaceAnalysis::residualSquares() const
{
    // A fit by the mean leaves the total sum of squares: the same bits, so that R2 is 0.
    return fit.keptCount() == 1 ? output.totalSquares : output.residualSquares;
}

/** The residual standard deviation in the output's unit; NaN without degrees of freedom. */
double ResponseSurfaceAnalysis::deviation() const
{
    const auto degrees = static_cast<double>(fit.degreesOfFreedom());
    return degrees > 0.0 ? output.scale.unit() * std::sqrt(residualSquares() / degrees) : none;
}

/** From the coefficients for scaled inputs. */
ResponseSurfaceAnalysis::Vector ResponseSurfaceAnalysis::coefficientsOf(Inputs inputs,
                                                                        const Vector& scaled) const
{
    return inputs == Inputs::Coded ? units.coded(scaled) : units.expanded(scaled);
}

std::vector<CoefficientStatistics> ResponseSurfaceAnalysis::coefficients(Inputs inputs,
                                                                         double level) const
{
    Vector estimates = coefficientsOf(inputs, output.coefficients);
    estimates[0] += output.scale.centre();
    const Vector variances = coefficientVariances(inputs);
    const auto degrees = static_cast<double>(fit.degreesOfFreedom());
    const double quantile = degrees > 0.0 ? Distributions::studentQuantile(level, degrees) : none;

    const bool isTested = !isExact();
    std::vector<CoefficientStatistics> result(estimates.size());
    for (std::size_t term = 0; term < result.size(); ++term) {
        CoefficientStatistics& one = result[term];
        one.term = fit.basis().name(term);
        one.factors = fit.basis().terms()[term].inputs();
        one.isKept = fit.isKept(term);
        if (!one.isKept) {
            continue;
        }
        one.estimate = estimates[term] + 0.0; // -0, of a constant output, becomes 0
        one.standardError = deviation() * std::sqrt(variances[term]);
        one.t = isTested ? one.estimate / one.standardError : none;
        if (!std::isnan(one.t)) {
            one.p = Distributions::studentTails(one.t, degrees);
        }
        one.lower = one.estimate - quantile * one.standardError;
        one.upper = one.estimate + quantile * one.standardError;
        if (term > 0) {
            one.varianceInflation = varianceInflation(inputs, term, variances[term]);
        }
    }
    return result;
}

/** The diagonal of (X'X)^-1 for these inputs: variances for residuals of variance 1. */
ResponseSurfaceAnalysis::Vector ResponseSurfaceAnalysis::coefficientVariances(Inputs inputs) const
{
    Vector variances(fit.basis().size(), 0.0);
    for (std::size_t k = 0; k < fit.keptCount(); ++k) {
        const Vector direction = coefficientsOf(inputs, fit.coefficientDirection(k));
        for (std::size_t term = 0; term < variances.size(); ++term) {
            variances[term] += direction[term] * direction[term];
        }
    }
    return variances;
}

/** The coefficient's variance over the one that it would have alone, 1 / (sum of the squares of
 *  the term's column about its mean). */
double ResponseSurfaceAnalysis::varianceInflation(Inputs inputs, std::size_t term,
                                                  double variance) const
{
    // As a combination of the terms of scaled inputs.
    Vector column(fit.basis().size(), 0.0);
    column[term] = 1.0;
    if (inputs == Inputs::Raw) {
        column = units.term(term);
    }
    // The column may be a multiple m of the term, whose coefficient then has the variance times
    // m^-2.
    const double multiple = coefficientsOf(inputs, column)[term];
    return variance / (multiple * multiple) * squaresAboutMean(column);
}

/** The sum of squares about its mean, over the cases, of a combination of terms of scaled inputs.
 */
double ResponseSurfaceAnalysis::squaresAboutMean(const Vector& combination) const
{
    // The first kept term is the constant, so the first row of the factor holds the means.
    const std::size_t kept = fit.keptCount();
    double squares = 0.0;
    for (std::size_t i = 1; i < kept; ++i) {
        double value = 0.0;
        for (std::size_t j = i; j < kept; ++j) {
            if (!fit.isOfBlocks(fit.keptTerm(j))) {
                value += fit.factorElement(i, j) * combination[fit.keptTerm(j)];
            }
        }
        squares += value * value;
    }
    return squares;
}

/** Sequential (type I) sums of squares by kind of term, of the scaled output: how much entering the
 *  terms of a kind reduces the residual sum of squares. Blocks are entered before all others but
 *  the constant, or as the last. */
std::vector<double> ResponseSurfaceAnalysis::sequentialSquares(bool areBlocksLast) const
{
    const std::size_t kept = fit.keptCount();
    std::vector<std::size_t> order(kept);
    for (std::size_t k = 0; k < kept; ++k) {
        order[k] = k;
    }
    const auto kind = [&](std::size_t k) { return kindOf(fit, fit.keptTerm(k)); };
    const auto place = [&](std::size_t k) {
        return areBlocksLast && kind(k) == Kind::Blocks ? kinds : static_cast<std::size_t>(kind(k));
    };
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return place(a) < place(b); });

    // Permute the columns of R to this order and rotate it back to triangular form; Q' applied to
    // R b gives the effects, whose squares are the sums.
    const auto n = static_cast<lapack_int>(kept);
    std::vector<double> matrix(kept * kept, 0.0);
    std::vector<double> rotated(kept, 0.0);
    for (std::size_t column = 0; column < kept; ++column) {
        const std::size_t k = order[column];
        const double coefficient = output.coefficients[fit.keptTerm(k)] / output.scale.unit();
        for (std::size_t i = 0; i <= k; ++i) {
            matrix[column * kept + i] = fit.factorElement(i, k);
            rotated[i] += fit.factorElement(i, k) * coefficient;
        }
    }
    const SingleThreadedBlas singleThreaded;
    std::vector<double> reflections(kept);
    LAPACKE_dgeqrf(LAPACK_COL_MAJOR, n, n, matrix.data(), n, reflections.data());
    LAPACKE_dormqr(LAPACK_COL_MAJOR, 'L', 'T', n, 1, n, matrix.data(), n, reflections.data(),
                   rotated.data(), n);
    std::vector<double> squares(kinds, 0.0);
    for (std::size_t column = 0; column < kept; ++column) {
        squares[static_cast<std::size_t>(kind(order[column]))] += rotated[column] * rotated[column];
    }
    return squares;
}

/** With F and p where these are more than rounding. */
AnovaRow ResponseSurfaceAnalysis::tested(AnovaRow effect, const AnovaRow& error) const
{
    if (isExact() || effect.degreesOfFreedom == 0 || error.degreesOfFreedom == 0) {
        return effect;
    }
    effect.f = effect.meanSquare / error.meanSquare;
    if (!std::isnan(effect.f)) {
        effect.p = Distributions::fisherTail(effect.f, static_cast<double>(effect.degreesOfFreedom),
                                             static_cast<double>(error.degreesOfFreedom));
    }
    return effect;
}

std::vector<AnovaRow> ResponseSurfaceAnalysis::anova() const
{
    const double unit = output.scale.unit() * output.scale.unit();
    const std::vector<double> squares = sequentialSquares();
    std::vector<std::size_t> counts(squares.size(), 0);
    for (std::size_t k = 0; k < fit.keptCount(); ++k) {
        ++counts[static_cast<std::size_t>(kindOf(fit, fit.keptTerm(k)))];
    }

    const AnovaRow residual = row("Residual", fit.degreesOfFreedom(), unit * residualSquares());
    std::vector<AnovaRow> table;
    table.push_back(row("Model", fit.keptCount() - 1,
                        unit * std::max(output.totalSquares - residualSquares(), 0.0)));
    const std::pair<Kind, const char*> rows[] = {{Kind::Blocks, "Blocks"},
                                                 {Kind::Linear, "Linear"},
                                                 {Kind::Interaction, "Interaction"},
                                                 {Kind::Square, "Square"}};
    for (const auto& [kind, name] : rows) {
        const auto k = static_cast<std::size_t>(kind);
        if (counts[k] > 0) {
            table.push_back(row(name, counts[k], unit * squares[k]));
        }
    }
    for (AnovaRow& effect : table) {
        effect = tested(effect, residual);
    }
    table.push_back(residual);
    if (pureError.degreesOfFreedom > 0 && !pureError.isOfCopies()) {
        const AnovaRow error =
            row("Pure error", pureError.degreesOfFreedom, unit * pureError.squares);
        const AnovaRow lack =
            row("Lack of fit", fit.degreesOfFreedom() - pureError.degreesOfFreedom,
                unit * std::max(residualSquares() - pureError.squares, 0.0));
        table.push_back(tested(lack, error));
        table.push_back(error);
    }
    table.push_back(row("Total", fit.cases() - 1, unit * output.totalSquares));
    return table;
}

std::vector<PartialTest> ResponseSurfaceAnalysis::partialTests() const
{
    const Vector estimates = coefficientsOf(Inputs::Coded, output.coefficients);
    const Vector variances = coefficientVariances(Inputs::Coded);
    const double unit = output.scale.unit() * output.scale.unit();
    const AnovaRow residual = row("Residual", fit.degreesOfFreedom(), unit * residualSquares());
    std::vector<PartialTest> tests;
    if (fit.weightedBlocks().columns() > 0) {
        constexpr auto blocks = static_cast<std::size_t>(Kind::Blocks);
        const AnovaRow effect =
            row("Blocks", fit.weightedBlocks().columns(), unit * sequentialSquares(true)[blocks]);
        tests.push_back({{}, tested(effect, residual)});
    }
    for (std::size_t term = 1; term < estimates.size(); ++term) {
        if (!fit.isKept(term)) {
            continue;
        }
        const AnovaRow effect =
            row(fit.basis().name(term), 1, estimates[term] * estimates[term] / variances[term]);
        tests.push_back({fit.basis().terms()[term].inputs(), tested(effect, residual)});
    }
    return tests;
}

std::vector<double> ResponseSurfaceAnalysis::blockEffects() const
{
    std::vector<double> effects(output.coefficients.begin() +
                                    static_cast<std::ptrdiff_t>(fit.basis().size()),
                                output.coefficients.end());
    if (!fit.weightedBlocks().blocks().empty()) {
        effects.push_back(0.0 - std::accumulate(effects.begin(), effects.end(), 0.0));
    }
    return effects;
}

bool ResponseSurfaceAnalysis::isExact() const
{
    // Relative to the squares about the mean, and to the rounding of the values as given.
    constexpr double rounding = 1e-28;
    constexpr double roundings = 4.0;
    const double ofValues = roundings * output.scale.rounding();
    return residualSquares() <= std::max(rounding * output.totalSquares,
                                         static_cast<double>(fit.cases()) * ofValues * ofValues);
}

/** By the leverage h, e the residual: s^2 without the case has (n - p) s^2 - e^2 / (1 - h) in its
 *  numerator. */
std::vector<CaseDiagnostics> ResponseSurfaceAnalysis::caseDiagnostics() const
{
    const double squares = isExact() ? none : residualSquares();
    const auto degrees = static_cast<double>(fit.degreesOfFreedom());
    const double variance = degrees > 0.0 ? squares / degrees : none;
    std::vector<CaseDiagnostics> result;
    result.reserve(fit.sampledCount());
    for (std::size_t k = 0; k < fit.sampledCount(); ++k) {
        const double leverage = fit.leverages()[k];
        const double residual = output.residuals[k];
        CaseDiagnostics one;
        one.row = fit.sampledRow(k);
        one.output = output.values[k];
        one.residual = output.scale.unit() * residual / fit.rootOfSampledWeight(k);
        one.leverage = leverage;
        if (!PolynomialFit::isDeterminedAlone(leverage)) {
            const double oneMinusLeverage = 1.0 - leverage;
            one.internallyStudentised = residual / std::sqrt(variance * oneMinusLeverage);
            one.cooksDistance = one.internallyStudentised * one.internallyStudentised * leverage /
                                (oneMinusLeverage * static_cast<double>(fit.keptCount()));
            const double squaresOfOthers =
                std::max(squares - residual * residual / oneMinusLeverage, 0.0 * squares);
            if (degrees > 1.0) {
                one.externallyStudentised =
                    residual / std::sqrt(squaresOfOthers / (degrees - 1.0) * oneMinusLeverage);
            }
        }
        result.push_back(one);
    }
    return result;
}

double ResponseSurfaceAnalysis::outlierLimit() const
{
    constexpr double probability = 0.05; // of one among all cases
    const std::size_t degrees = fit.degreesOfFreedom();
    if (degrees <= 1 || isExact()) {
        return none;
    }
    return Distributions::studentQuantile(1.0 - probability / static_cast<double>(fit.cases()),
                                          static_cast<double>(degrees - 1));
}

double ResponseSurfaceAnalysis::aicc() const
{
    const double scaled = aicc(residualSquares(), fit.cases(), fit.keptCount());
    // log(u^2) as 2 log(u): the square of the unit may overflow.
    return isExact() || (std::isinf(scaled) && scaled > 0.0)
               ? none
               : scaled + 2.0 * static_cast<double>(fit.cases()) * std::log(output.scale.unit()) -
                     fit.weightedBlocks().logarithms();
}

double ResponseSurfaceAnalysis::aicc(double squares, std::size_t cases, std::size_t terms)
{
    const auto n = static_cast<double>(cases);
    const auto k = static_cast<double>(terms + 1);
    if (n - k <= 1.0) {
        return std::numeric_limits<double>::infinity();
    }
    return n * (std::log(squares / n) + std::log(two_pi) + 1.0) + 2.0 * k +
           2.0 * k * (k + 1.0) / (n - k - 1.0);
}

std::vector<CaseLeverage> ResponseSurfaceAnalysis::largestLeverages() const
{
    constexpr std::size_t most = 5; // as many as the quality text lists
    // Leverages that differ by less count as equal: rounding must not decide their order.
    constexpr double step = 1e-9;

    const std::vector<double>& leverages = fit.leverages();
    std::vector<std::size_t> order(leverages.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    const auto isBefore = [&](std::size_t left, std::size_t right) {
        const double difference =
            std::round(leverages[left] / step) - std::round(leverages[right] / step);
        return difference > 0.0 || (difference == 0.0 && left < right);
    };
    const auto end = order.begin() + static_cast<std::ptrdiff_t>(std::min(most, order.size()));
    std::partial_sort(order.begin(), end, order.end(), isBefore);
    std::vector<CaseLeverage> largest;
    for (auto position = order.begin(); position != end; ++position) {
        largest.push_back({fit.sampledRow(*position), leverages[*position]});
    }
    return largest;
}
