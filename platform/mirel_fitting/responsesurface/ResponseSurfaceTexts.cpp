#include <mirel_fitting/responsesurface/ResponseSurfaceTexts.h>

#include <mirel_fitting/numerics/NumberText.h>
#include <mirel_fitting/numerics/TextPieces.h>
#include <mirel_fitting/polynomial/EquationText.h>
#include <mirel_fitting/polynomial/PolynomialUnits.h>

#include <algorithm>
#include <cmath>

namespace {

/** Eight digits distinguish the fits of almost any two tables of cases. */
std::string figure(double value, int digits = 8)
{
    return NumberText::rounded(value, digits);
}

std::string line(const std::string& name, double value, const std::string& reasonForNone)
{
    return name + ": " +
           (std::isnan(value) ? "not available (" + reasonForNone + ")" : figure(value)) + "\n";
}

/** A p-value, as tables print it. */
std::string probability(double p)
{
    constexpr double smallest = 1e-4;
    return p < smallest ? "p < 0.0001" : "p " + figure(p, 3);
}

std::string coefficientLines(const std::vector<CoefficientStatistics>& coefficients, bool isCoded)
{
    std::string text;
    for (const CoefficientStatistics& one : coefficients) {
        if (std::isnan(one.p)) {
            continue;
        }
        const bool isConstant = one.term == "1";
        const std::string name = isConstant ? "Intercept" : "Coefficient of " + one.term;
        text += name + (isCoded ? ", inputs coded" : "") + ": " + figure(one.estimate) +
                ", standard error " + figure(one.standardError) + ", t " + figure(one.t, 4) + ", " +
                probability(one.p) + ", 95 % limits " + figure(one.lower) + " and " +
                figure(one.upper);
        if (isCoded && !isConstant) {
            text += ", variance inflation " + figure(one.varianceInflation, 4);
        }
        text += "\n";
    }
    return text;
}

std::string anovaLines(const std::vector<AnovaRow>& anova)
{
    std::string text;
    for (const AnovaRow& row : anova) {
        if (row.degreesOfFreedom == 0) {
            continue;
        }
        text += row.source + ": sum of squares " + figure(row.sumOfSquares) + " on " +
                std::to_string(row.degreesOfFreedom) +
                (row.degreesOfFreedom == 1 ? " degree of freedom" : " degrees of freedom");
        if (!std::isnan(row.p)) {
            text += ", F " + figure(row.f, 4) + ", " + probability(row.p);
        }
        text += "\n";
    }
    return text;
}

/** Cases are counted from 1. */
std::string leverageLine(const ResponseSurfaceStatistics& statistics)
{
    std::string text = "Leverage: mean " + figure(statistics.meanLeverage, 4);
    for (const CaseLeverage& one : statistics.largestLeverages) {
        text += (&one == &statistics.largestLeverages.front() ? ", largest " : ", ") +
                figure(one.leverage, 4) + " of case " + std::to_string(one.row + 1);
    }
    return text + "\n";
}

std::string stationaryLine(const ResponseSurfaceStatistics& statistics)
{
    const bool isWithheld = statistics.isCurved && statistics.canonicalDirections.empty();
    if (!statistics.stationaryPoint && isWithheld) {
        return "Stationary point: not available (the cases cannot separate the second-order terms "
               "from each other)\n";
    }
    if (!statistics.stationaryPoint) {
        return statistics.isCurved ? "Stationary point: none, the polynomial rises along a "
                                     "direction in which it is not curved\n"
                                   : "Stationary point: none, the polynomial is not curved\n";
    }
    const StationaryPoint& point = *statistics.stationaryPoint;
    std::string place;
    std::vector<std::string> anywhere;
    for (std::size_t input = 0; input < point.coordinates.size(); ++input) {
        const std::string name = "V" + std::to_string(input + 1);
        if (std::isnan(point.coordinates[input])) {
            anywhere.push_back(name);
        } else {
            place += (place.empty() ? "" : ", ") + name + " = " + figure(point.coordinates[input]);
        }
    }
    return std::string("Stationary point: ") + natureName(point.nature) + " of " +
           figure(point.value) + " at " + place +
           (anywhere.empty() ? "" : ", any " + listedText(anywhere)) +
           (point.isInsideData ? ", inside" : ", outside") + " the ranges of the cases\n";
}

/** A bound on half the range of a term of unscaled inputs over the cases. */
double variation(const PolynomialFit& fit, std::size_t term)
{
    const QuadraticBasis::Term& inputs = fit.basis().terms()[term];
    if (inputs.order() == 0) {
        return 0.0;
    }
    const ColumnScale& first = fit.inputScales()[inputs.first];
    if (inputs.order() == 1) {
        return first.halfRange();
    }
    const ColumnScale& second = fit.inputScales()[inputs.second];
    return first.halfRange() * second.largest() + second.halfRange() * first.largest();
}

/** The terms of unscaled inputs in the combination that equals a dependent one, without the
 *  constant. */
std::vector<std::string> partsOf(const PolynomialFit& fit,
                                 const PolynomialFit::Dependence& dependence,
                                 const InputNames& inputNames)
{
    constexpr double rounding = PolynomialFit::Dependence::rounding; // also of the largest share

    // Term minus combination is 0 at all cases, also when expanded to unscaled inputs.
    const QuadraticBasis& basis = fit.basis();
    const PolynomialUnits units(basis, fit.inputScales());
    std::vector<double> relation = dependence.combination;
    relation[dependence.term] -= 1.0;
    const std::vector<double> expanded = units.expanded(relation);
    std::vector<double> shares(basis.size(), 0.0);
    const std::vector<double> cancelled = units.expandedMagnitudes(relation);
    double largest = 0.0;
    for (std::size_t term = 1; term < basis.size(); ++term) {
        const bool isRounding = std::fabs(expanded[term]) <= rounding * cancelled[term];
        shares[term] = isRounding ? 0.0 : std::fabs(expanded[term]) * variation(fit, term);
        largest = std::max(largest, shares[term]);
    }
    std::vector<std::string> names;
    for (std::size_t term = 1; term < basis.size(); ++term) {
        if (term != dependence.term && shares[term] > rounding * largest) {
            names.push_back(basis.name(term, inputNames));
        }
    }
    if (dependence.involvesBlocks(basis)) {
        names.emplace_back("the blocks");
    }
    return names;
}

/** The terms of second order that are dropped with an input. */
std::vector<std::string> termsWith(const PolynomialFit& fit, std::size_t input,
                                   const InputNames& inputNames)
{
    std::vector<std::string> names;
    for (std::size_t term = 1 + fit.basis().inputs(); term < fit.basis().size(); ++term) {
        const QuadraticBasis::Term& inputs = fit.basis().terms()[term];
        if (inputs.has(input) && fit.isWanted(term)) {
            names.push_back(fit.basis().name(term, inputNames));
        }
    }
    return names;
}

/** Dropped terms that no other sentence names. */
std::vector<std::string> unnamedTerms(const PolynomialFit& fit, const InputNames& inputNames)
{
    const QuadraticBasis& basis = fit.basis();
    std::vector<char> isNamed(basis.size(), 0);
    for (const PolynomialFit::Dependence& dependence : fit.dependences()) {
        isNamed[dependence.term] = 1;
    }
    for (std::size_t input = 0; basis.order() > 0 && input < basis.inputs(); ++input) {
        if (fit.inputScales()[input].isConstantUpToRounding()) {
            isNamed[1 + input] = 1;
        }
    }
    std::vector<std::string> names;
    for (std::size_t term = 1; term < basis.size(); ++term) {
        const QuadraticBasis::Term& inputs = basis.terms()[term];
        const bool isNamedWithInput =
            inputs.order() == 2 && (isNamed[1 + inputs.first] || isNamed[1 + inputs.second]);
        if (fit.isWanted(term) && !fit.isKept(term) && !isNamed[term] && !isNamedWithInput) {
            names.push_back(basis.name(term, inputNames));
        }
    }
    return names;
}

std::string leftOut(const std::vector<std::string>& with)
{
    return " and was left out" + (with.empty() ? "" : ", and with it " + listedText(with)) + ".";
}

} // namespace

std::string ResponseSurfaceTexts::equation(const PolynomialFit& fit,
                                           const PolynomialFit::Output& output)
{
    const PolynomialUnits units(fit.basis(), fit.inputScales());
    EquationForms forms{units.expanded(output.coefficients),
                        units.expansionLoss(output.coefficients),
                        units.centred(output.coefficients),
                        {},
                        {}};
    for (const ColumnScale& scale : fit.inputScales()) {
        forms.centres.push_back(scale.centre());
    }
    for (std::size_t term = 0; term < fit.basis().size(); ++term) {
        forms.isWritten.push_back(fit.isKept(term) ? 1 : 0);
    }
    return equationText(fit.basis(), forms, output.scale.spread(), output.scale.centre()) + "\n";
}

std::vector<std::string> ResponseSurfaceTexts::dependences(const PolynomialFit& fit,
                                                           const InputNames& names)
{
    constexpr std::size_t maxSentences = 5;

    std::vector<std::string> sentences;
    const QuadraticBasis& basis = fit.basis();
    std::vector<std::string> constant;
    for (std::size_t input = 0; basis.order() > 0 && input < basis.inputs(); ++input) {
        if (fit.inputScales()[input].isConstantUpToRounding()) {
            constant.push_back(basis.name(1 + input, names));
            sentences.push_back(constant.back() + " is the same in every case" +
                                leftOut(termsWith(fit, input, names)));
        }
    }
    if (constant.size() > maxSentences) {
        sentences = {listedText(constant) +
                     " are the same in every case and were left out, with all terms of them."};
    }
    if (fit.dependences().size() > maxSentences) {
        std::vector<std::string> dependent;
        for (const PolynomialFit::Dependence& dependence : fit.dependences()) {
            dependent.push_back(basis.name(dependence.term, names));
        }
        sentences.push_back(listedText(dependent) +
                            " cannot be separated from other terms by these cases and were left "
                            "out.");
        return sentences;
    }
    for (const PolynomialFit::Dependence& dependence : fit.dependences()) {
        const std::vector<std::string> parts = partsOf(fit, dependence, names);
        const bool isLinear = dependence.term <= basis.inputs();
        sentences.push_back(basis.name(dependence.term, names) + " cannot be separated from " +
                            (parts.empty() ? "the constant" : listedText(parts)) +
                            " by these cases" +
                            leftOut(isLinear ? termsWith(fit, dependence.term - 1, names)
                                             : std::vector<std::string>()));
    }
    const std::vector<std::string> others = unnamedTerms(fit, names);
    if (!others.empty()) {
        sentences.push_back(
            "Terms that these cases cannot separate from the others were left out: " +
            listedText(others) + ".");
    }
    return sentences;
}

std::string ResponseSurfaceTexts::quality(const PolynomialFit& fit, const std::string& order,
                                          const FitMetrics& metrics,
                                          const ResponseSurfaceStatistics& statistics)
{
    const bool isConstant = std::isnan(metrics.r2);
    const std::string noSpread = "the output is the same in every case";
    const std::string noFreedom = "there are as many terms as cases";
    const std::string noPress = fit.degreesOfFreedom() == 0
                                    ? noFreedom
                                    : "a case alone determines a term, and leaving it out leaves "
                                      "no such fit";

    std::string text = "Cases: " + std::to_string(metrics.cases) + "\n";
    const std::size_t wanted = statistics.coefficients.size() + fit.weightedBlocks().columns();
    text += "Terms: " + std::to_string(metrics.terms) +
            (metrics.terms < wanted ? " of " + std::to_string(wanted) : "") + "\n";
    text += "Order: " + order + "\n";
    text += line("R2", metrics.r2, noSpread);
    text += line("Adjusted R2", metrics.adjustedR2, isConstant ? noSpread : noFreedom);
    text += line("RMSE", metrics.rmse, noFreedom);
    text += line("PRESS", metrics.press, noPress);
    text += line("Predicted R2", metrics.predictedR2, isConstant ? noSpread : noPress);
    if (std::isfinite(statistics.aicc)) {
        text += line("AICc", statistics.aicc, "");
    }
    text += anovaLines(statistics.anova);
    if (statistics.repeatsAreCopies) {
        text += "Lack of fit: not available (the repeats are exact copies)\n";
    }
    text += coefficientLines(statistics.coefficients, false);
    text += coefficientLines(statistics.codedCoefficients, true);
    text += leverageLine(statistics);
    text += stationaryLine(statistics);
    return text;
}
