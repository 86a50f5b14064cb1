#include "session/report/FitReport.h"

#include "session/cases/VariableNames.h"
#include "session/diagnosis/FindingWords.h"
#include "session/model/CaseSession.h"
#include "session/report/FindingsReport.h"
#include "session/report/ReportHeading.h"
#include "session/report/StatisticsTables.h"
#include "session/text/JoinedText.h"
#include "session/text/NumberText.h"
#include "session/text/QuotedText.h"
#include "session/text/TextTable.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <sstream>

using ReportJson::Json;

namespace {
Json secondsJson(double readSeconds, double fitSeconds, const Evaluation* evaluation = nullptr)
{
    return {{"read", readSeconds},
            {"fit", fitSeconds},
            {"evaluate", evaluation == nullptr ? 0.0 : evaluation->seconds}};
}

Json metricsJson(const OutputFit& fit)
{
    const FitMetrics& metrics = fit.metrics;
    if (fit.kriging) {
        return {{"rmse", metrics.rmse}, {"looRmse", metrics.looRmse}, {"q2", metrics.q2}};
    }
    return {{"r2", metrics.r2},
            {"adjustedR2", metrics.adjustedR2},
            {"rmse", metrics.rmse},
            {"predictedR2", metrics.predictedR2}};
}

const char* boundName(KrigingReport::Bound bound)
{
    switch (bound) {
    case KrigingReport::Bound::Lower:
        return "lower";
    case KrigingReport::Bound::Upper:
        return "upper";
    default:
        return "none";
    }
}

KrigingReport::Bound lengthBound(const KrigingReport& report, std::size_t input)
{
    return input < report.lengthBounds.size() ? report.lengthBounds[input]
                                              : KrigingReport::Bound::None;
}

std::string boundText(KrigingReport::Bound bound)
{
    const std::string name = boundName(bound);
    return name == "none" ? "" : " (at its " + name + " bound)";
}

std::string lengthText(const KrigingReport& report, std::size_t input)
{
    const KrigingReport::Bound bound = lengthBound(report, input);
    if (bound != KrigingReport::Bound::Upper) {
        return boundText(bound);
    }
    const bool isWithout =
        input < report.isWithoutInfluence.size() && report.isWithoutInfluence[input];
    return isWithout ? " (no influence)" : " (no influence beyond the trend)";
}

/** The names of the inputs in "V1^2" or "V1 V2"; empty for the constant "1". */
std::string trendTermName(const std::string& term, const std::vector<std::string>& inputs)
{
    std::istringstream factors(term);
    std::string text;
    for (std::string factor; factors >> factor;) {
        if (factor.front() != 'V') {
            continue;
        }
        const std::size_t power = factor.find('^');
        const std::size_t input = std::stoul(factor.substr(1)) - 1;
        text += (text.empty() ? "" : " * ") +
                (input < inputs.size() ? inputs[input] : factor.substr(0, power)) +
                (power == std::string::npos ? "" : factor.substr(power));
    }
    return text;
}

Json krigingJson(const KrigingReport& report)
{
    Json bounds = Json::array();
    for (std::size_t i = 0; i < report.correlationLengths.size(); ++i) {
        bounds.push_back(boundName(lengthBound(report, i)));
    }
    Json worst = Json::array();
    for (const KrigingReport::LeftOutCase& one : report.worstCases) {
        worst.push_back(
            {{"case", one.row + 1}, {"output", one.output}, {"predicted", one.predicted}});
    }
    return {{"correlationLengths", report.correlationLengths},
            {"lengthBounds", bounds},
            {"nugget", report.nugget},
            {"nuggetBound", boundName(report.nuggetBound)},
            {"noiseDeviation", report.noiseDeviation},
            {"processVariance", report.processVariance},
            {"criterion", ReportHeading::criterionWord(report.criterion)},
            {"logLikelihood", report.logLikelihood},
            {"secondLogLikelihood", report.secondLogLikelihood},
            {"condition", report.condition},
            {"trend", report.trendTerms},
            {"trendCoefficients", report.trendCoefficients},
            {"worstCases", worst}};
}

const char* basisName(CalibrationReport::Basis basis)
{
    switch (basis) {
    case CalibrationReport::Basis::LeaveOneOut:
        return "leave-one-out";
    case CalibrationReport::Basis::Refits:
        return "refits";
    default:
        return "distribution";
    }
}

std::string percentText(double share)
{
    constexpr int digits = 3;
    return shownNumber(100.0 * share, digits);
}

Json calibrationJson(const CalibrationReport& calibration)
{
    const bool isCalibrated = calibration.basis != CalibrationReport::Basis::Distribution;
    Json held = Json::object();
    for (const CalibrationReport::Coverage& one : calibration.coverage) {
        held[percentText(one.level)] = one.share;
    }
    return {{"basis", basisName(calibration.basis)},
            {"factor", calibration.factor},
            {"cases", calibration.cases},
            {isCalibrated ? "heldByStudentsT" : "held", held}};
}

Json outputJson(const OutputFit& fit, const ResponseSurfaceStatistics* statistics)
{
    Json json = {{"name", fit.name},
                 {"metrics", metricsJson(fit)},
                 {"notes", FitReport::fitNotes(fit, statistics)},
                 {"warnings", fit.warnings}};
    json["transform"] = OutputTransforms::word(fit.modelled.transform);
    if (fit.modelled.profile) {
        json["boxCox"] = {{"power", fit.modelled.profile->power},
                          {"lower", fit.modelled.profile->lower},
                          {"upper", fit.modelled.profile->upper}};
    }
    if (fit.kriging) {
        json.update(krigingJson(*fit.kriging));
    }
    if (fit.calibration) {
        json["calibration"] = calibrationJson(*fit.calibration);
    }
    return json;
}

std::string leverageText(const ResponseSurfaceStatistics& statistics)
{
    constexpr int digits = 3;
    std::vector<std::string> texts;
    for (const CaseLeverage& one : statistics.largestLeverages) {
        texts.push_back(shownNumber(one.leverage, digits) + " of case " +
                        std::to_string(one.row + 1));
    }
    return joinedText(texts);
}

/** "Pressure 100 %, Power 42 % and 3 more below 10 %". */
std::string rankingText(const InputRanking& ranking, const std::vector<std::string>& inputs)
{
    constexpr std::size_t maxShown = 10;
    const auto percent = [](double share) {
        return std::to_string(std::lround(100.0 * share)) + " %";
    };
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < std::min(maxShown, ranking.size()); ++i) {
        texts.push_back(inputs[ranking[i].first] + ' ' + percent(ranking[i].second));
    }
    return joinedText(texts) + (ranking.size() > maxShown
                                    ? " and " + std::to_string(ranking.size() - maxShown) +
                                          " more of at most " + percent(ranking[maxShown].second)
                                    : "");
}

std::string outputText(const OutputFit& fit, const std::vector<std::string>& inputs,
                       const ResponseSurfaceStatistics* statistics, const InputRanking& ranking)
{
    TextTable table({false, false});
    for (const auto& [name, figure] : FitReport::figures(fit, inputs, statistics)) {
        table.add({name, figure});
    }
    if (!ranking.empty()) {
        table.add({"ranking of the inputs",
                   rankingText(ranking, inputs) + " (change along each, the others held)"});
    }
    std::string text = '\n' + shortText(fit.name) + '\n' + table.text("  ");
    for (const std::string& note : FitReport::fitNotes(fit, statistics)) {
        text += "  Note: " + note + '\n';
    }
    for (const std::string& warning : fit.warnings) {
        text += "  Warning: " + warning + '\n';
    }
    return text;
}
using Figures = std::vector<std::pair<std::string, std::string>>;

std::string widthText(const CalibrationReport& calibration)
{
    constexpr int digits = 3;
    const std::string times = shownNumber(calibration.factor, digits) +
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

Figures calibrationFigures(const CalibrationReport& calibration)
{
    Figures figures = {{"95 % intervals", widthText(calibration)}};
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
    for (std::size_t i = 0; i < report.trendTerms.size(); ++i) {
        const double coefficient = report.trendCoefficients[i];
        const bool isNegative = std::signbit(coefficient);
        text += i == 0 ? (isNegative ? "-" : "") : (isNegative ? " - " : " + ");
        text += shownFigure(std::abs(coefficient));
        const std::string name = trendTermName(report.trendTerms[i], inputs);
        text += name.empty() ? "" : " * " + name;
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
        descriptions.push_back(isInfinite ? " (no influence)" : lengthText(report, i));
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
                                       boundText(report.nuggetBound));
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

Figures surfaceFigures(const FitMetrics& metrics, const ResponseSurfaceStatistics* statistics)
{
    Figures figures = {{"R2", shownNumber(metrics.r2)},
                       {"adjusted R2", shownNumber(metrics.adjustedR2)},
                       {"Q2 (predicted R2)", shownNumber(metrics.predictedR2)},
                       {"residual standard deviation", shownNumber(metrics.rmse)},
                       {"leave-one-out RMSE", shownNumber(metrics.looRmse)},
                       {"PRESS", shownNumber(metrics.press)}};
    if (statistics != nullptr) {
        figures.emplace_back("AICc", shownNumber(statistics->aicc));
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
    constexpr int digits = 3;
    constexpr double end = BoxCoxProfile::largestPower * (1.0 - 1e-9);
    return (profile.lower <= -end ? "below " : "") + shownNumber(profile.lower, digits) + " to " +
           (profile.upper >= end ? "beyond " : "") + shownNumber(profile.upper, digits);
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
    constexpr int digits = 3;
    return "The power of greatest likelihood is " + shownNumber(profile.power, digits) +
           " (95 %: " + limitsText(profile) + ")" +
           (profile.isBetweenLimits ? "."
                                    : "; none of the powers 1, 1/2 and 0 (logarithm) is in "
                                      "between, and the nearest was "
                                      "taken." +
                                          otherPowerText(profile));
}
} // namespace

std::vector<std::pair<std::string, std::string>>
FitReport::figures(const OutputFit& fit, const std::vector<std::string>& inputs,
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

namespace {
/** Why figures are "-": empty where all are there. */
std::string missingFiguresNote(const OutputFit& fit, const ResponseSurfaceStatistics* statistics)
{
    const FitMetrics& metrics = fit.metrics;
    if (metrics.cases == 1) {
        return "There is only one case: figures that compare cases are \"-\".";
    }
    if (std::isnan(metrics.r2) && std::isnan(metrics.q2)) {
        return "The output is the same in all cases: figures that compare with its variation are "
               "\"-\".";
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

std::string transformNote(const OutputFit& fit)
{
    const std::string power = fit.modelled.profile ? powerText(*fit.modelled.profile) : "";
    if (fit.modelled.transform == OutputTransform::None) {
        return power.empty() ? "" : shortText(fit.name) + " itself was modelled. " + power;
    }
    const bool isLogarithm = fit.modelled.transform == OutputTransform::Logarithm;
    const std::string transform = isLogarithm ? "logarithm" : "square root";
    std::string text = "The " + transform + " of " + shortText(fit.name) + " was modelled";
    if (!std::isnan(fit.modelled.gain)) {
        constexpr int digits = 3;
        text += ", which describes the cases better (log-likelihood and left-out cases, by " +
                shownNumber(fit.modelled.gain, digits) + " or more)";
    }
    return text + ": " +
           (fit.kriging ? "likelihood, variance, nugget, noise, trend and correlation lengths"
                        : "coefficients, tests and AICc") +
           " are those of the " + transform + "; errors, R2 and Q2 are those of " +
           shortText(fit.name) + "." + (power.empty() ? "" : " " + power);
}
} // namespace

std::vector<std::string> FitReport::fitNotes(const OutputFit& fit,
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

std::string FitReport::text(CaseSession& session, const std::vector<InputRanking>& rankings)
{
    const std::vector<OutputFit>& fits = session.calibratedFit().outputs;
    const std::vector<ResponseSurfaceStatistics>& statistics = session.statistics();
    const std::vector<std::string> inputs = shownNamesOf(session.inputs());
    std::string text = "Cases   " + ReportHeading::caseText(session) + '\n';
    text += "Model   " + ReportHeading::modelText(session) + '\n';
    std::vector<std::string> legend;
    legend.reserve(inputs.size());
    for (const std::string& input : inputs) {
        legend.push_back(input + " (V" + std::to_string(legend.size() + 1) + ')');
    }
    text += "Inputs  " + joinedText(legend) + '\n';
    for (std::size_t i = 0; i < fits.size(); ++i) {
        text += outputText(fits[i], inputs, statistics.empty() ? nullptr : &statistics[i],
                           rankings.empty() ? InputRanking() : rankings[i]);
        if (!statistics.empty()) {
            text += StatisticsTables::text(statistics[i], inputs, fits[i].modelled.transform);
        }
    }
    const SessionFindings findings = SessionFindings::ofFit(session);
    return findings.findings.empty() ? text : text + '\n' + FindingsReport::text(findings);
}

ReportJson::Json FitReport::json(CaseSession& session)
{
    if (!session.exportedReport().is_null()) {
        return session.exportedReport();
    }
    const std::vector<OutputFit>& fits = session.calibratedFit().outputs;
    const std::vector<ResponseSurfaceStatistics>& statistics = session.statistics();
    const std::vector<std::string> inputs = namesOf(session.inputs());
    Json json = ReportHeading::modelJson(session);
    for (std::size_t i = 0; i < fits.size(); ++i) {
        Json output = outputJson(fits[i], statistics.empty() ? nullptr : &statistics[i]);
        if (!statistics.empty()) {
            output["metrics"]["press"] = fits[i].metrics.press;
            output["metrics"]["aicc"] = statistics[i].aicc;
            output["metrics"]["terms"] = fits[i].metrics.terms;
            output["metrics"]["residualDegreesOfFreedom"] = statistics[i].residualDegreesOfFreedom;
            output.update(StatisticsTables::json(statistics[i], inputs));
        }
        json["outputs"].push_back(std::move(output));
    }
    json["findings"] = FindingsReport::json(SessionFindings::ofFit(session));
    return json;
}

ReportJson::Json FitReport::runJson(CaseSession& session, double readSeconds,
                                    const Evaluation* evaluation,
                                    const std::vector<InputRanking>& rankings)
{
    Json json = FitReport::json(session);
    const std::vector<std::string> inputs = namesOf(session.inputs());
    for (std::size_t i = 0; i < rankings.size(); ++i) {
        for (const auto& [input, share] : rankings[i]) {
            json["outputs"][i]["ranking"].push_back({{"name", inputs[input]}, {"share", share}});
        }
    }
    if (evaluation != nullptr) {
        for (const HeldInput& input : evaluation->held) {
            json["held"].push_back({{"name", input.name}, {"value", input.value}});
        }
    }
    if (evaluation != nullptr && !evaluation->extrapolation.empty()) {
        json["extrapolation"] = evaluation->extrapolation;
    }
    if (evaluation != nullptr && !evaluation->intervalFaults.empty()) {
        json["intervalFaults"] = evaluation->intervalFaults;
    }
    json["seconds"] = secondsJson(readSeconds, session.fit().seconds, evaluation);
    return json;
}

ReportJson::Json FitReport::equationsJson(CaseSession& session, double readSeconds)
{
    const std::vector<std::string> equations = session.equations();
    const std::vector<std::string> outputs = namesOf(session.outputs());
    Json json = ReportHeading::modelJson(session);
    for (std::size_t i = 0; i < equations.size(); ++i) {
        json["outputs"].push_back({{"name", outputs[i]}, {"equation", equations[i]}});
    }
    json["seconds"] = secondsJson(readSeconds, session.fit().seconds);
    return json;
}

namespace {
/** What holds for several outputs is said once. */
struct SentenceOfOutputs
{
    std::string kind;
    std::string sentence;
    std::vector<std::string> outputs;
};

using GroupedSentences = std::vector<SentenceOfOutputs>;

void addTo(GroupedSentences& groups, const std::string& kind, const std::string& sentence,
           const std::string& output)
{
    const auto found = std::find_if(groups.begin(), groups.end(), [&](const auto& group) {
        return group.kind == kind && group.sentence == sentence;
    });
    if (found == groups.end()) {
        groups.push_back({kind, sentence, {output}});
    } else {
        found->outputs.push_back(output);
    }
}
} // namespace

std::string FitReport::notes(CaseSession& session, const Evaluation* evaluation)
{
    std::string text;
    if (session.counts().invalid > 0) {
        text += "Cases: " + ReportHeading::caseText(session) + ".\n";
    }
    GroupedSentences groups;
    for (const OutputFit& fit : session.fit().outputs) {
        const std::string note = transformNote(fit);
        text += note.empty() ? note : "Note: " + note + '\n';
        for (const std::string& sentence : fit.notes) {
            addTo(groups, "Note", sentence, shortText(fit.name));
        }
        for (const std::string& sentence : fit.warnings) {
            addTo(groups, "Warning", sentence, shortText(fit.name));
        }
    }
    if (evaluation != nullptr && !evaluation->intervals.empty()) {
        for (const OutputFit& fit : session.calibratedFit().outputs) {
            if (fit.calibration &&
                fit.calibration->basis != CalibrationReport::Basis::Distribution) {
                addTo(groups, "Note", "95 % intervals are " + widthText(*fit.calibration) + ".",
                      shortText(fit.name));
            }
        }
    }
    for (const SentenceOfOutputs& group : groups) {
        text += group.kind + " for " + joinedText(group.outputs) + ": " + group.sentence + '\n';
    }
    if (session.exportedReport().empty()) {
        text += FindingsReport::severeNotes(session);
    }
    if (evaluation == nullptr) {
        return text;
    }
    if (!evaluation->extrapolation.empty()) {
        text += "Warning: " + evaluation->extrapolation + '\n';
    }
    for (const std::string& fault : evaluation->intervalFaults) {
        text += "Warning: " + fault + '\n';
    }
    return text;
}
