#include "session/report/FitFigures.h"

#include "session/diagnosis/FindingWords.h"
#include "session/model/Evaluator.h"
#include "session/report/ReportHeading.h"
#include "session/text/DecimalText.h"
#include "session/text/QuotedText.h"

#include <mirel_fitting/ResponseSurfaceStatistics.h>
#include <mirel_fitting/numerics/TextPieces.h>
#include <mirel_modelexport/FitReportParts.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>

using FitFigures::Figures;

namespace {
/** Of a share, a factor or a power: more are never of use. */
constexpr int fewDigits = 3;

/** A share, 0 to 1, in percent. */
std::string percentText(double share)
{
    return shownNumber(100.0 * share, fewDigits);
}

std::string leverageText(const ResponseSurfaceStatistics& statistics)
{
    std::vector<std::string> texts;
    for (const CaseLeverage& one : statistics.largestLeverages) {
        texts.push_back(shownNumber(one.leverage, fewDigits) + " of case " +
                        std::to_string(one.row + 1));
    }
    return joinedText(texts);
}

Figures calibrationFigures(const CalibrationReport& calibration)
{
    Figures figures = {{"95 % intervals", FitFigures::widthText(calibration)}};
    std::vector<std::string> levels;
    std::vector<std::string> held;
    for (const CalibrationReport::Coverage& one : calibration.coverage) {
        levels.push_back(percentText(one.level));
        held.push_back(percentText(one.share));
    }
    if (!levels.empty()) {
        const bool isCalibrated = calibration.basis != CalibrationReport::Basis::Distribution;
        figures.emplace_back(isCalibrated ? "by Student's t they would hold" : "intervals held",
                             joinedText(held) + " % of the left-out cases (" + joinedText(levels) +
                                 " % intervals)");
    }
    return figures;
}

/** "64.9 + 0.0182 * Pressure - 0.31 * H2/WF6". */
std::string trendText(const KrigingReport& report, const std::vector<std::string>& inputs)
{
    std::string text;
    for (std::size_t i = 0; i < report.trendFactors.size(); ++i) {
        const double coefficient = report.trendCoefficients[i];
        const bool isNegative = std::signbit(coefficient);
        text += i == 0 ? (isNegative ? "-" : "") : (isNegative ? " - " : " + ");
        text += shownFigure(std::abs(coefficient));
        const std::vector<std::size_t>& factors = report.trendFactors[i];
        text += factors.empty() ? "" : " * " + FitReportParts::termName(factors, inputs);
    }
    return text;
}

/** A figure for each input, but one for many whose lengths are described the same way. */
void addLengths(const KrigingReport& report, const std::vector<std::string>& inputs,
                Figures& figures)
{
    constexpr std::size_t many = 10;

    const std::size_t count = std::min(report.correlationLengths.size(), inputs.size());
    std::map<std::string, std::vector<std::string>> described; // without influence, at a bound
    std::vector<std::string> descriptions;
    for (std::size_t i = 0; i < count; ++i) {
        const bool isInfinite = std::isinf(report.correlationLengths[i]);
        descriptions.push_back(isInfinite ? " (no influence)" : report.lengthBoundText(i));
        described[descriptions[i]].push_back(inputs[i]);
    }
    for (std::size_t i = 0; i < count; ++i) {
        const double length = report.correlationLengths[i];
        if (descriptions[i].empty() || described[descriptions[i]].size() < many) {
            figures.emplace_back("correlation length of " + inputs[i],
                                 (std::isinf(length) ? "infinite" : shownNumber(length)) +
                                     descriptions[i]);
        }
    }
    for (const auto& [description, names] : described) {
        if (!description.empty() && names.size() >= many) {
            figures.emplace_back(std::to_string(names.size()) + " correlation lengths",
                                 FindingWords::names(names) + description);
        }
    }
}

Figures krigingFigures(const FitMetrics& metrics, const KrigingReport& report,
                       const std::vector<std::string>& inputs)
{
    Figures figures = {{"RMSE at the cases", shownNumber(metrics.rmse)},
                       {"leave-one-out RMSE", shownNumber(metrics.looRmse)},
                       {"Q2", shownNumber(metrics.q2)}};
    figures.emplace_back("criterion", report.criterionText());
    if (std::isfinite(report.logLikelihood)) {
        figures.emplace_back("log-likelihood", shownNumber(report.logLikelihood));
    }
    if (!std::isnan(report.secondLogLikelihood)) {
        figures.emplace_back("of the second-best maximum", shownNumber(report.secondLogLikelihood));
    }
    figures.emplace_back("process variance", shownNumber(report.processVariance));
    figures.emplace_back("nugget", shownNumber(report.nugget) + " of the process variance" +
                                       KrigingReport::boundText(report.nuggetBound));
    if (report.noiseDeviation > 0.0) {
        figures.emplace_back("noise, standard deviation", shownNumber(report.noiseDeviation));
    }
    if (std::isfinite(report.condition)) {
        figures.emplace_back("condition of the correlations", shownNumber(report.condition));
    }
    figures.emplace_back("trend", trendText(report, inputs));
    addLengths(report, inputs, figures);
    for (const KrigingReport::LeftOutCase& worst : report.worstCases) {
        constexpr int minDigits = 6;
        const int digits = worst.digits(minDigits);
        figures.emplace_back("left out, case " + std::to_string(worst.row + 1),
                             shownNumber(worst.predicted, digits) + " instead of " +
                                 shownNumber(worst.output, digits));
    }
    return figures;
}

std::string aiccText(const ResponseSurfaceStatistics& statistics, const FitMetrics& metrics)
{
    const std::size_t fewest = metrics.terms + 3; // AICc divides by cases - terms - 2
    return metrics.cases < fewest
               ? "not available: " + std::to_string(metrics.terms) + " coefficients need " +
                     std::to_string(fewest) + " cases or more"
               : shownNumber(statistics.aicc);
}

Figures surfaceFigures(const FitMetrics& metrics, const ResponseSurfaceStatistics* statistics)
{
    Figures figures = {{"R2", shownNumber(metrics.r2)},
                       {"adjusted R2", shownNumber(metrics.adjustedR2)},
                       {"Q2 (predicted R2)", shownNumber(metrics.predictedR2)},
                       {"residual standard deviation", shownNumber(metrics.rmse)},
                       {"leave-one-out RMSE", shownNumber(metrics.looRmse)},
                       {"PRESS", shownNumber(metrics.press)}};
    if (statistics != nullptr) {
        figures.emplace_back("AICc", aiccText(*statistics, metrics));
        figures.emplace_back("residual degrees of freedom",
                             std::to_string(statistics->residualDegreesOfFreedom));
    }
    figures.emplace_back("coefficients", std::to_string(metrics.terms));
    if (statistics != nullptr) {
        figures.emplace_back("mean leverage", shownNumber(statistics->meanLeverage));
        figures.emplace_back("largest leverages", leverageText(*statistics));
    }
    return figures;
}

/** Likelihoods are known between the largest powers only. */
std::string limitsText(const BoxCoxProfile& profile)
{
    constexpr double end = BoxCoxProfile::largestPower * (1.0 - 1e-9);
    return (profile.lower <= -end ? "below " : "") + shownNumber(profile.lower, fewDigits) +
           " to " + (profile.upper >= end ? "beyond " : "") + shownNumber(profile.upper, fewDigits);
}

/** What to do where a customary power that is not offered suits. */
std::string otherPowerText(const BoxCoxProfile& profile)
{
    const std::pair<double, const char*> powers[] = {
        {-1.0, "the reciprocal, 1 / y"}, {-0.5, "1 / sqrt(y)"}, {2.0, "the square, y^2"}};
    for (const auto& [power, name] : powers) {
        if (power >= profile.lower && power <= profile.upper) {
            return " The cases agree with " + std::string(name) +
                   ": a column of it can be modelled as an output of its own.";
        }
    }
    return "";
}

/** What the choice by Box and Cox rests on, a sentence. */
std::string powerText(const BoxCoxProfile& profile)
{
    return "The power of greatest likelihood is " + shownNumber(profile.power, fewDigits) +
           " (95 %: " + limitsText(profile) + ")" +
           (profile.isBetweenLimits ? "."
                                    : "; none of the powers 1, 1/2 and 0 (logarithm) is in "
                                      "between, and the nearest was "
                                      "taken." +
                                          otherPowerText(profile));
}

/** Why figures are "-": empty where all are there. */
std::string missingFiguresNote(const OutputFit& fit, const ResponseSurfaceStatistics* statistics)
{
    const FitMetrics& metrics = fit.metrics;
    if (metrics.cases == 1) {
        return "There is only one case: figures that compare cases are \"-\".";
    }
    if (std::isnan(metrics.r2) && std::isnan(metrics.q2)) {
        return "The output is the same in all cases: tests and figures that compare with its "
               "variation are \"-\".";
    }
    if (statistics != nullptr && statistics->residualDegreesOfFreedom == 0) {
        return "There are as many terms as cases: no case is left to estimate the error from, and "
               "figures that need it are \"-\".";
    }
    if (statistics != nullptr && std::isnan(metrics.predictedR2)) {
        return "A case alone determines a term of the polynomial: Q2 and PRESS are "
               "\"-\", since leaving it out leaves no such fit.";
    }
    return "";
}
} // namespace

std::string FitFigures::widthText(const CalibrationReport& calibration)
{
    const std::string times = shownNumber(calibration.factor, fewDigits) +
                              " times as wide as by Student's t, calibrated by ";
    switch (calibration.basis) {
    case CalibrationReport::Basis::LeaveOneOut:
        return times + "leave-one-out";
    case CalibrationReport::Basis::Refits:
        return times + "refits without the left-out cases";
    default:
        return "by Student's t";
    }
}

Figures FitFigures::of(const OutputFit& fit, const std::vector<std::string>& inputs,
                       const ResponseSurfaceStatistics* statistics)
{
    Figures figures = fit.kriging ? krigingFigures(fit.metrics, *fit.kriging, inputs)
                                  : surfaceFigures(fit.metrics, statistics);
    if (fit.calibration) {
        const Figures more = calibrationFigures(*fit.calibration);
        figures.insert(figures.end(), more.begin(), more.end());
    }
    return figures;
}

std::string FitFigures::transformNote(const OutputFit& fit)
{
    const std::string power = fit.modelled.profile ? powerText(*fit.modelled.profile) : "";
    if (fit.modelled.transform == OutputTransform::None) {
        return power.empty() ? "" : shortText(fit.name) + " itself was modelled. " + power;
    }
    const std::string transform = ReportHeading::transformName(fit.modelled.transform);
    std::string text = "The " + transform + " of " + shortText(fit.name) + " was modelled";
    if (!std::isnan(fit.modelled.gain)) {
        text += ", which describes the cases better (log-likelihood and left-out cases, by " +
                shownNumber(fit.modelled.gain, fewDigits) + " or more)";
    }
    return text + ": " +
           (fit.kriging ? "likelihood, variance, nugget, noise, trend and correlation lengths"
                        : "coefficients, tests and AICc") +
           " are those of the " + transform + "; errors, R2 and Q2 are those of " +
           shortText(fit.name) + "." + (power.empty() ? "" : " " + power);
}
std::vector<std::string> FitFigures::notes(const OutputFit& fit,
                                           const ResponseSurfaceStatistics* statistics)
{
    std::vector<std::string> notes = fit.notes;
    for (std::string note : {transformNote(fit), missingFiguresNote(fit, statistics)}) {
        if (!note.empty()) {
            notes.push_back(std::move(note));
        }
    }
    return notes;
}
